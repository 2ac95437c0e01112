#include "stacks.h"

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>
#include <tuple>

#include "subcommands.h"
#include "text.h"

namespace orvctl {
namespace {

using nlohmann::ordered_json;

const std::vector<std::string> sort_names = {"base", "name", "size", "tid"};  // as sort_key

uint32_t largest_size(const orv_threads& found) {
  uint32_t largest = 0;
  for (const orv_thread& one : std::span{found.list, found.listed}) {
    largest = std::max(largest, one.stack_size_bytes);
  }
  return largest;
}

std::string row_of(const orv_thread& one, uint32_t largest) {
  const bool known = one.stack_size_bytes != 0;
  const char* remark = known && one.stack_size_bytes == largest ? "  largest" : "";
  return format("%7d  %-15s  %10s  %10s%s\n", one.tid, printable(one.name).c_str(),
                known ? memory_size(one.stack_size_bytes).c_str() : "?",
                known ? hexadecimal(static_cast<int32_t>(one.stack_base)).c_str() : "?", remark);
}

std::string table_of(const orv_threads& found, sort_key order) {
  const uint32_t largest = largest_size(found);
  std::string table = format("%7s  %-15s  %10s  %10s\n", "TID", "NAME", "STACK", "BASE");
  for (const orv_thread& one : sorted(found, order)) {
    table += row_of(one, largest);
  }
  const bool whole = found.listed == static_cast<size_t>(found.sampled);
  return table + (whole ? format("%zu threads\n", found.listed)
                        : format("%zu of %d threads; the answer has no room for the others\n",
                                 found.listed, found.sampled));
}

std::string json_of(const orv_threads& found, sort_key order) {
  const uint32_t largest = largest_size(found);
  auto threads = ordered_json::array();
  for (const orv_thread& one : sorted(found, order)) {
    ordered_json object{{"tid", one.tid}, {"name", one.name}};
    const bool known = one.stack_size_bytes != 0;
    object["size_bytes"] = known ? ordered_json(one.stack_size_bytes) : nullptr;
    object["base"] = known ? ordered_json(one.stack_base) : nullptr;
    object["largest"] = known && one.stack_size_bytes == largest;
    threads.push_back(std::move(object));
  }
  return json_text({{"count", found.sampled}, {"threads", std::move(threads)}}, 2);
}

exit_status show_stacks(const context& shared, sort_key order) {
  const answer got = camera{shared}.ask(orv_threads_request(), shared.timeout_ms(stack_timeout_ms));
  if (got) {
    shared.out.write(shared.json ? json_of(*got->threads, order) : table_of(*got->threads, order));
  }
  return got.status();
}

}  // namespace

std::vector<orv_thread> sorted(const orv_threads& found, sort_key key) {
  std::vector<orv_thread> threads{found.list, found.list + found.listed};
  std::sort(threads.begin(), threads.end(), [key](const auto& one, const auto& other) {
    switch (key) {
      case sort_key::name:
        return std::make_tuple(std::string_view{one.name}, one.tid) <
               std::make_tuple(std::string_view{other.name}, other.tid);
      case sort_key::size:
        return std::tie(other.stack_size_bytes, one.tid) <
               std::tie(one.stack_size_bytes, other.tid);
      case sort_key::base:
        return std::tie(one.stack_base, one.tid) < std::tie(other.stack_base, other.tid);
      case sort_key::tid:
        break;
    }
    return one.tid < other.tid;
  });
  return threads;
}

void add_stack(const subcommand& program, context& shared) {
  const subcommand stack = program.add("stack", "Ask for the stack of every thread on the target");
  stack.footer(
      "\"?\" (null in JSON): the target could not tell. The target needs about 20 ms for each\n"
      "of its threads, so this waits 30 s for an answer unless --timeout says otherwise.");
  const auto order = std::make_shared<sort_key>(sort_key::tid);
  stack.value(
      {.name = "--sort", .help = "Order of the threads", .choices = sort_names, .usual = "tid"},
      [order](const std::string& name) {
        const auto found = std::find(sort_names.begin(), sort_names.end(), name);
        *order = static_cast<sort_key>(found - sort_names.begin());
        return "";
      });
  stack.flag("--json", shared.json, "Print a JSON object");
  stack.run([&shared, order] { return show_stacks(shared, *order); });
}

}  // namespace orvctl
