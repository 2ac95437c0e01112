#include "target.h"

#include <stdio.h>

#include <nlohmann/json.hpp>
#include <utility>

#include "ask.h"
#include "numbers.h"
#include "printable.h"

#include <orv/protocol.h>

namespace orvctl {
namespace {

std::optional<std::string_view> take_first(std::string_view& text) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view field = text.substr(0, comma);
  text.remove_prefix(comma + 1);
  return field;
}

std::optional<std::string_view> take_last(std::string_view& text) {
  const size_t comma = text.rfind(',');
  if (comma == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view field = text.substr(comma + 1);
  text.remove_suffix(text.size() - comma);
  return field;
}

void print_table(const target& found) {
  const std::pair<const char*, std::string> rows[] = {
      {"category", found.category}, {"platform", found.platform},
      {"model", found.model},       {"board", found.board},
      {"firmware", found.firmware}, {"byte order", hexadecimal(found.byte_order)},
      {"build", found.build_type},  {"cis_no", std::to_string(found.cis_no)},
  };
  for (const auto& [name, value] : rows) {
    printf("%-10s  %s\n", name, printable(value).c_str());
  }
}

void print_json(const target& found) {
  const nlohmann::ordered_json object{
      {"category", found.category},     {"platform", found.platform},
      {"model", found.model},           {"board", found.board},
      {"firmware", found.firmware},     {"byte_order", found.byte_order},
      {"build_type", found.build_type}, {"cis_no", found.cis_no}};
  puts(object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
}

}  // namespace

std::optional<target> parse_target(std::string_view text) {
  const auto category = take_first(text);
  const auto platform = take_first(text);
  const auto model = take_first(text);
  const auto board = take_first(text);
  const auto cis_no = take_last(text);
  const auto build_type = take_last(text);
  const auto byte_order = take_last(text);
  if (!board || !byte_order) {
    return std::nullopt;
  }
  const auto order = parse_int(*byte_order);
  const auto number = parse_int(*cis_no);
  if (!order || !number) {
    return std::nullopt;
  }
  return target{std::string{*category},   std::string{*platform},
                std::string{*model},      std::string{*board},
                std::string{text},        *order,
                std::string{*build_type}, *number};
}

void show_target(context& shared, bool json) {
  if (const auto found =
          ask_for(shared, "target identity", ORV_COMMAND_TARGET_INFO, parse_target)) {
    json ? print_json(*found) : print_table(*found);
  }
}

}  // namespace orvctl
