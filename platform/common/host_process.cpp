#include "host_process.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "descriptor.h"

namespace platform {
namespace {

constexpr char variable[] = "ORV_HOST_PID";

// Of /proc/PID/stat: a process's name may hold blanks and parentheses, what follows its last one
// has neither. The state is the third field, the start time the twenty-second.
std::optional<unsigned long long> parse_start(const char* stat) {
  const char* name_end = strrchr(stat, ')');
  char state = '\0';
  unsigned long long start_ticks = 0;
  constexpr char format[] =
      ") %c %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %llu";
  const bool whole = name_end != nullptr && sscanf(name_end, format, &state, &start_ticks) == 2;
  return whole && state != 'Z' && state != 'X' ? std::optional{start_ticks} : std::nullopt;
}

}  // namespace

std::optional<process_identity> running_process(pid_t pid) {
  // An emulator makes up /proc/PID/stat for the process it runs, but not under this spelling.
  char text[1024];
  snprintf(text, sizeof text, "/proc/./%d/stat", pid);
  const descriptor file{open(text, O_RDONLY | O_CLOEXEC)};
  const ssize_t size = file ? read(file.get(), text, sizeof text - 1) : -1;
  if (size < 0) {
    return std::nullopt;
  }
  text[size] = '\0';
  const auto start_ticks = parse_start(text);
  return start_ticks ? std::optional{process_identity{pid, *start_ticks}} : std::nullopt;
}

void name_this_process_host() {
  if (const auto self = running_process(getpid())) {
    char text[64];
    snprintf(text, sizeof text, "%d %llu", self->pid, self->start_ticks);
    setenv(variable, text, 1);
  }
}

std::optional<process_identity> named_host() {
  const char* text = getenv(variable);
  if (text == nullptr) {
    return std::nullopt;
  }
  char* rest = nullptr;
  process_identity host{};
  host.pid = static_cast<pid_t>(strtol(text, &rest, 10));
  host.start_ticks = strtoull(rest, &rest, 10);
  return host.pid > 0 && host.start_ticks > 0 && *rest == '\0' ? std::optional{host} : std::nullopt;
}

bool still_runs(const process_identity& process) {
  const auto now = running_process(process.pid);
  return now && now->start_ticks == process.start_ticks;
}

}  // namespace platform
