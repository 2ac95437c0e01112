#include "common/thread_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "common/bounded_text.h"
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
bool take_id(std::string_view token, char (&text)[N], int32_t& id) {
  uint32_t number = 0;  // unsigned: no sign is taken
  const char* const token_end = token.data() + token.size();
  const auto [end, error] = std::from_chars(token.data(), token_end, number);
  copy_cut(text, token);
  id = static_cast<int32_t>(number);
  return error == std::errc{} && end == token_end && id >= 0;
}

bool is_state(std::string_view token) {
  const char letter = token.empty() ? '\0' : static_cast<char>(token[0] | 0x20);
  return letter >= 'a' && letter <= 'z' && token.size() == 2 && token[1] == '\n';
}

// A thread's name may be empty or blank: the state then comes right after the stack pointer. Any
// other line that lacks columns was cut, on a full file system.
bool complete(tokens& found) {
  if (found[state].empty() && is_state(found[comm])) {
    std::swap(found[comm], found[state]);
  }
  return !found[state].empty();
}

}  // namespace

std::optional<listed_thread> parse_thread(std::string_view line) noexcept {
  tokens found = split(line);
  if (!complete(found) || found[comm] == "ps" || found[comm] == "sh") {
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
