#include "common/thread_line.h"

#include <stdlib.h>

#include <algorithm>
#include <array>

#include "common/hex_address.h"

namespace orv {
namespace {

enum column { pid, tid, pcpu, esp, comm, state, columns };
using tokens = std::array<std::string_view, columns>;

constexpr size_t esp_text_size = 16;

std::string_view take_token(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  const std::string_view token = rest.substr(0, rest.find(' '));
  rest.remove_prefix(token.size());
  return token;
}

tokens split(std::string_view line) {
  tokens found;
  for (std::string_view& token : found) {
    token = take_token(line);
  }
  return found;
}

template <size_t N>
void copy_cut(char (&text)[N], std::string_view token) {
  token.copy(text, N - 1);
}

bool is_number(std::string_view token) {
  return !token.empty() && token.find_first_not_of("0123456789") == std::string_view::npos;
}

template <size_t N>
bool take_id(std::string_view token, char (&text)[N], int32_t& id) {
  if (!is_number(token)) {
    return false;
  }
  copy_cut(text, token);
  const long long number = strtoll(text, nullptr, 10);
  id = static_cast<int32_t>(number);
  return number <= INT32_MAX;
}

}  // namespace

std::optional<listed_thread> parse_thread(std::string_view line) noexcept {
  const tokens found = split(line);
  // A line that was cut, on a full file system, lacks its last columns.
  if (found[state].empty() || found[comm] == "ps" || found[comm] == "sh") {
    return std::nullopt;
  }
  listed_thread thread{};
  thread.esp = hex_address(found[esp].substr(0, esp_text_size - 1));
  // The heading falls with all that is no number.
  if (thread.esp == 0 || !take_id(found[pid], thread.pid_text, thread.pid) ||
      !take_id(found[tid], thread.tid_text, thread.tid)) {
    return std::nullopt;
  }
  copy_cut(thread.pcpu, found[pcpu]);
  copy_cut(thread.comm, found[comm]);
  copy_cut(thread.state, found[state]);
  return thread;
}

}  // namespace orv
