#include "heap.h"

#include <stdio.h>

#include <nlohmann/json.hpp>

#include "ask.h"
#include "command_names.h"
#include "memory_size.h"
#include "numbers.h"

#include <orv/protocol.h>

namespace orvctl {
namespace {

void print_json(const heap& found) {
  const nlohmann::ordered_json object{{"total_bytes", found.total_bytes}};
  puts(object.dump(2).c_str());
}

void print_table(const heap& found) {
  printf("total  %s (%u bytes)\n", memory_size(found.total_bytes).c_str(), found.total_bytes);
}

}  // namespace

std::optional<heap> parse_heap(std::string_view text) {
  const std::string_view start = describe(ORV_COMMAND_HEAP_INFO).text_start;
  if (!text.starts_with(start)) {
    return std::nullopt;
  }
  const auto total = parse_int(text.substr(start.size()));
  return total ? std::optional{heap{static_cast<uint32_t>(*total)}} : std::nullopt;
}

void show_heap(context& shared, bool json) {
  if (const auto found = ask_for(shared, "memory summary", ORV_COMMAND_HEAP_INFO, parse_heap)) {
    json ? print_json(*found) : print_table(*found);
  }
}

}  // namespace orvctl
