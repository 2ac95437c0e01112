#include "common/stack_range.h"

#include <ctype.h>
#include <stdio.h>

#include <algorithm>
#include <memory>

#include "common/bounded_text.h"
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
  return command_pipe{popen(command.c_str(), "re")};
}

bool is_address(std::string_view text) {
  return text.size() == address_length &&
         std::all_of(text.begin(), text.end(), [](unsigned char c) { return isxdigit(c); });
}

}  // namespace

std::optional<stack_range> parse_stack_range(std::string_view line) noexcept {
  const std::string_view range = line.substr(0, line.find_first_of(" \n"));
  const size_t hyphen = range.find('-');
  if (hyphen == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view start = range.substr(0, hyphen);
  std::string_view end = range;
  end.remove_prefix(hyphen + 1);
  if (!is_address(start) || !is_address(end)) {
    return std::nullopt;
  }
  return stack_range{hex_address(start), hex_address(end)};
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
