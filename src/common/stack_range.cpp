#include "common/stack_range.h"

#include <ctype.h>
#include <stdio.h>

#include <algorithm>
#include <memory>

#include "common/bounded_text.h"
#include "common/handle.h"
#include "common/hex_address.h"

namespace orv {
namespace {

constexpr std::string_view monitored_application = "lumen-ui-host";
constexpr size_t address_length = 8;

struct pipe_closer {
  void operator()(FILE* pipe) const noexcept { pclose(pipe); }
};
using command_pipe = std::unique_ptr<FILE, pipe_closer>;

#define STACK_COMMAND "cat /proc/%s/task/%s/maps | grep stack | awk '{print $ 1}'"
constexpr size_t fixed_length = sizeof STACK_COMMAND - 1 - 2 * (sizeof "%s" - 1);
static_assert(fixed_length == 54);

command_pipe start_stack_command(const listed_thread& thread) {
  char buffer[fixed_length + sizeof thread.pid_text + sizeof thread.tid_text];
  bounded_text command{buffer};
  command.format(STACK_COMMAND, thread.pid_text, thread.tid_text);
  return command_pipe{closed_on_exec(popen(command.c_str(), "r"))};
}

bool is_digit(char c) {
  return isxdigit(static_cast<unsigned char>(c)) != 0;
}

bool starts_with_range(std::string_view line) {
  constexpr std::string_view shape = "dddddddd-dddddddd";
  return line.size() >= shape.size() &&
         std::equal(shape.begin(), shape.end(), line.begin(),
                    [](char wanted, char c) { return wanted == '-' ? c == '-' : is_digit(c); }) &&
         (line.size() == shape.size() || !is_digit(line[shape.size()]));
}

}  // namespace

std::optional<stack_range> parse_stack_range(std::string_view line) noexcept {
  if (!starts_with_range(line)) {
    return std::nullopt;
  }
  return stack_range{hex_address({line.data(), address_length}),
                     hex_address({line.data() + address_length + 1, address_length})};
}

std::optional<stack_line> ask_stack_line(const listed_thread& thread) noexcept {
  const command_pipe pipe = start_stack_command(thread);
  if (!pipe) {
    return std::nullopt;
  }
  stack_line kept{};
  const bool wants_last = std::string_view{thread.comm}.starts_with(monitored_application);
  while (fgets(kept.text, sizeof kept.text, pipe.get()) && wants_last) {
  }
  return kept;
}

}  // namespace orv
