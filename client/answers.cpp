#include "answers.h"

#include <orv/protocol.h>

#include <charconv>

#include "commands.h"

namespace orv_client {
namespace {

constexpr std::string_view separator = ",$,";

template <class Number>
std::optional<Number> parse_number(std::string_view text) {
  Number number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc{} && stop == end ? std::optional{number} : std::nullopt;
}

// What is before the first comma, or after the last one; the comma goes as well.
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

template <class Number>
std::optional<Number> number_of(std::optional<std::string_view> field) {
  return field ? parse_number<Number>(*field) : std::nullopt;
}

std::optional<thread_stack> parse_group(std::string_view group) {
  const auto tid = number_of<int32_t>(take_first(group));
  const auto base = number_of<uint32_t>(take_last(group));
  const auto size = number_of<uint32_t>(take_last(group));
  if (!tid || !base || !size) {
    return std::nullopt;
  }
  return thread_stack{*tid, std::string{group}, *size, *base};
}

bool may_follow_a_group(std::string_view rest) {
  return rest.empty() || number_of<int32_t>(take_first(rest)).has_value();
}

std::optional<thread_stack> take_group(std::string_view& text) {
  for (size_t at = text.find(separator); at != std::string_view::npos;
       at = text.find(separator, at + 1)) {
    const std::string_view rest = text.substr(at + separator.size());
    auto group = parse_group(text.substr(0, at));
    if (group && may_follow_a_group(rest)) {
      text = rest;
      return group;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<identity> parse_identity(std::string_view text) {
  const auto category = take_first(text);
  const auto platform = take_first(text);
  const auto model = take_first(text);
  const auto board = take_first(text);
  const auto cis_no = take_last(text);
  const auto build_type = take_last(text);
  const auto byte_order = take_last(text);
  const auto order = number_of<int32_t>(byte_order);
  const auto number = number_of<int32_t>(cis_no);
  if (!board || !order || !number) {
    return std::nullopt;
  }
  return identity{std::string{*category},   std::string{*platform},
                  std::string{*model},      std::string{*board},
                  std::string{text},        *order,
                  std::string{*build_type}, *number};
}

std::optional<uint32_t> parse_memory(std::string_view text) {
  const std::string_view start = describe(ORV_COMMAND_HEAP_INFO).text_start;
  if (!text.starts_with(start)) {
    return std::nullopt;
  }
  const auto total = parse_number<int32_t>(text.substr(start.size()));
  return total ? std::optional{static_cast<uint32_t>(*total)} : std::nullopt;
}

std::optional<thread_list> parse_threads(std::string_view text) {
  const std::string_view start = describe(ORV_COMMAND_STACK_INFO).text_start;
  if (!text.starts_with(start)) {
    return std::nullopt;
  }
  text.remove_prefix(start.size());
  thread_list list{number_of<int32_t>(take_first(text)).value_or(-1), {}};
  while (!text.empty()) {
    auto group = take_group(text);
    if (!group) {
      return std::nullopt;
    }
    list.threads.push_back(*std::move(group));
  }
  if (list.sampled < static_cast<int32_t>(list.threads.size())) {
    return std::nullopt;
  }
  return list;
}

}  // namespace orv_client
