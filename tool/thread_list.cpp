#include "thread_list.h"

#include <algorithm>
#include <charconv>
#include <tuple>

#include "command_names.h"

#include <orv/protocol.h>

namespace orvctl {
namespace {

constexpr std::string_view mark = ",$,";

template <class Number>
std::optional<Number> parse_number(std::string_view text) {
  Number number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc{} && stop == end ? std::optional{number} : std::nullopt;
}

// A number and the comma behind it, at the text's start.
template <class Number>
std::optional<Number> take_first(std::string_view& text) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) {
    return std::nullopt;
  }
  const auto number = parse_number<Number>(text.substr(0, comma));
  text.remove_prefix(comma + 1);
  return number;
}

// A number and the comma before it, at the text's end.
std::optional<uint32_t> take_last(std::string_view& text) {
  const size_t comma = text.rfind(',');
  if (comma == std::string_view::npos) {
    return std::nullopt;
  }
  const auto number = parse_number<uint32_t>(text.substr(comma + 1));
  text = text.substr(0, comma);
  return number;
}

std::optional<thread_stack> parse_group(std::string_view group) {
  const auto tid = take_first<int>(group);
  const auto base = take_last(group);
  const auto size = take_last(group);
  if (!tid || !base || !size) {
    return std::nullopt;
  }
  return thread_stack{*tid, std::string{group}, *size, *base};
}

bool may_follow_a_group(std::string_view rest) {
  return rest.empty() || take_first<int>(rest).has_value();
}

std::optional<thread_stack> take_group(std::string_view& text) {
  for (size_t at = text.find(mark); at != std::string_view::npos; at = text.find(mark, at + 1)) {
    const std::string_view rest = text.substr(at + mark.size());
    auto group = parse_group(text.substr(0, at));
    if (group && may_follow_a_group(rest)) {
      text = rest;
      return group;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<thread_list> parse_thread_list(std::string_view text) {
  const std::string_view start = describe(ORV_COMMAND_STACK_INFO).text_start;
  if (!text.starts_with(start)) {
    return std::nullopt;
  }
  text.remove_prefix(start.size());
  const auto count = take_first<int>(text);
  thread_list list{count.value_or(-1), {}};
  while (!text.empty()) {
    auto group = take_group(text);
    if (!group) {
      return std::nullopt;
    }
    list.threads.push_back(*std::move(group));
  }
  if (list.count < static_cast<int>(list.threads.size())) {
    return std::nullopt;
  }
  return list;
}

void sort_threads(std::vector<thread_stack>& threads, sort_key key) {
  std::sort(threads.begin(), threads.end(), [key](const auto& one, const auto& other) {
    switch (key) {
      case sort_key::name:
        return std::tie(one.name, one.tid) < std::tie(other.name, other.tid);
      case sort_key::size:
        return std::tie(other.size_bytes, one.tid) < std::tie(one.size_bytes, other.tid);
      case sort_key::base:
        return std::tie(one.base, one.tid) < std::tie(other.base, other.tid);
      case sort_key::tid:
        break;
    }
    return one.tid < other.tid;
  });
}

}  // namespace orvctl
