#include "task_row.h"

#include <array>
#include <cctype>
#include <string_view>

namespace orv::camera {
namespace {

constexpr int name_width = 15;
using name_text = std::array<char, 64 + 1>;

// As the ordinary ps shows names: no control characters, so that a line stays a line.
name_text shown_name(const task_stat& stat) {
  name_text name{};
  snprintf(name.data(), name.size(), "%.*s%s", static_cast<int>(stat.comm.size()), stat.comm.data(),
           stat.state == 'Z' ? " <defunct>" : "");
  for (char& c : name) {
    if (c != '\0' && iscntrl(static_cast<unsigned char>(c)) != 0) c = '?';
  }
  return name;
}

std::array<char, 16> cpu_text(unsigned permille) {
  std::array<char, 16> text{};
  // Four columns: a tenth is shown while there is room.
  if (permille > 999) {
    snprintf(text.data(), text.size(), "%u", permille / 10);
  } else {
    snprintf(text.data(), text.size(), "%u.%u", permille / 10, permille % 10);
  }
  return text;
}

}  // namespace

unsigned cpu_permille(const task_stat& stat, const clock_reading& clock) {
  if (clock.now_ticks <= stat.start_ticks) return 0;
  return static_cast<unsigned>(stat.cpu_ticks * 1000 / (clock.now_ticks - stat.start_ticks));
}

std::uint32_t esp_column(std::optional<std::uint64_t> address, std::uint64_t start_stack) {
  const std::uint64_t shown = address.value_or(start_stack);
  const auto low = static_cast<std::uint32_t>(shown);
  return shown != 0 && low == 0 ? 1 : low;
}

void print_header(FILE* out, int id_width) {
  fprintf(out, "%*s %*s %%CPU %8s %-*s S\n", id_width, "PID", id_width, "TID", "ESP", name_width,
          "COMMAND");
}

void print_row(FILE* out, int id_width, pid_t pid, pid_t tid, std::uint32_t esp,
               const task_stat& stat, const clock_reading& clock) {
  const auto cpu = cpu_text(cpu_permille(stat, clock));
  const name_text name = shown_name(stat);
  fprintf(out, "%*d %*d %4s %08x %-*.*s %c\n", id_width, pid, id_width, tid, cpu.data(), esp,
          name_width, name_width, name.data(), stat.state);
}

}  // namespace orv::camera
