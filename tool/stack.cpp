#include "stack.h"

#include <stdio.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "ask.h"
#include "memory_size.h"
#include "numbers.h"
#include "printable.h"

#include <orv/protocol.h>

namespace orvctl {
namespace {

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

}  // namespace

void show_stacks(context& shared, sort_key order, bool json) {
  if (auto list = ask_for(shared, "thread list", ORV_COMMAND_STACK_INFO, parse_thread_list)) {
    sort_threads(list->threads, order);
    json ? print_json(*list) : print_table(*list);
  }
}

}  // namespace orvctl
