#include <stdio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>

#include "memory_size.h"
#include "numbers.h"
#include "printable.h"
#include "subcommand.h"
#include "thread_list.h"

#include <orv/protocol.h>

namespace orvctl {
namespace {

const std::map<std::string, sort_key> sort_names = {{"tid", sort_key::tid},
                                                    {"name", sort_key::name},
                                                    {"size", sort_key::size},
                                                    {"base", sort_key::base}};

struct options {
  std::string sort = "tid";
  bool json = false;
};

// The target runs a shell command a thread.
constexpr double default_timeout_s = 30;

uint32_t largest_size(const std::vector<thread_stack>& threads) {
  uint32_t largest = 0;
  for (const thread_stack& one : threads) {
    largest = std::max(largest, one.size_bytes);
  }
  return largest;
}

void print_row(const thread_stack& one, uint32_t largest) {
  const bool known = one.size_bytes != 0;
  const char* remark = known && one.size_bytes == largest ? "  largest" : "";
  printf("%7d  %-15s  %10s  %10s%s\n", one.tid, printable(one.name).c_str(),
         known ? memory_size(one.size_bytes).c_str() : "?",
         known ? hexadecimal(static_cast<int>(one.base)).c_str() : "?", remark);
}

void print_table(const thread_list& list) {
  const uint32_t largest = largest_size(list.threads);
  printf("%7s  %-15s  %10s  %10s\n", "TID", "NAME", "STACK", "BASE");
  for (const thread_stack& one : list.threads) {
    print_row(one, largest);
  }
  const auto listed = list.threads.size();
  if (listed == static_cast<size_t>(list.count)) {
    printf("%zu threads\n", listed);
  } else {
    printf("%zu of %d threads; the answer has no room for the others\n", listed, list.count);
  }
}

void print_json(const thread_list& list) {
  const uint32_t largest = largest_size(list.threads);
  auto threads = nlohmann::ordered_json::array();
  for (const thread_stack& one : list.threads) {
    nlohmann::ordered_json object{{"tid", one.tid}, {"name", one.name}};
    const bool known = one.size_bytes != 0;
    object["size_bytes"] = known ? nlohmann::ordered_json(one.size_bytes) : nullptr;
    object["base"] = known ? nlohmann::ordered_json(one.base) : nullptr;
    object["largest"] = known && one.size_bytes == largest;
    threads.push_back(std::move(object));
  }
  const nlohmann::ordered_json whole{{"count", list.count}, {"threads", std::move(threads)}};
  puts(whole.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

void run(context& shared, const options& given) {
  const auto answered = ask(shared, {ORV_COMMAND_STACK_INFO, {}, {}});
  if (!answered) {
    return;
  }
  auto list = parse_thread_list(*answered->text);
  if (!list) {
    refuse_answer(shared, "thread list", *answered->text);
    return;
  }
  sort_threads(list->threads, sort_names.at(given.sort));
  given.json ? print_json(*list) : print_table(*list);
}

}  // namespace

void add_stack(CLI::App& app, context& shared) {
  CLI::App* stack = app.add_subcommand("stack", "Ask for the stack of every thread on the target");
  stack->footer(
      "\"?\" (null in JSON): the target could not tell. The target needs about 20 ms for each\n"
      "of its threads, so this waits 30 s for an answer unless --timeout says otherwise.");
  const auto given = std::make_shared<options>();
  stack->add_option("--sort", given->sort, "Order of the threads")
      ->check(CLI::IsMember(sort_names))
      ->capture_default_str();
  stack->add_flag("--json", given->json, "Print a JSON object");
  stack->callback([&app, &shared, given] {
    if (app.get_option("--timeout")->count() == 0) {
      shared.timeout_s = default_timeout_s;
    }
    run(shared, *given);
  });
}

}  // namespace orvctl
