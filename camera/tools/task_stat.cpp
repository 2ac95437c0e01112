#include "task_stat.h"

#include <array>

#include "text.h"

namespace orv::camera {

// Fields count from 1 in the kernel's documentation; the first after the name is field 3.
std::optional<task_stat> parse_task_stat(std::string_view line) {
  constexpr std::size_t user = 14, system = 15, start = 22, stack = 28;
  const std::size_t open = line.find('(');
  const std::size_t close = line.rfind(')');
  if (open == line.npos || close == line.npos || close < open) return std::nullopt;

  std::string_view rest = line.substr(close + 1);
  std::array<std::string_view, stack + 1> field;
  for (std::size_t i = 3; i <= stack; ++i) field[i] = take_word(rest);
  const auto user_ticks = to_number(field[user]), system_ticks = to_number(field[system]);
  const auto start_ticks = to_number(field[start]), start_stack = to_number(field[stack]);
  if (field[3].size() != 1 || !user_ticks || !system_ticks || !start_ticks || !start_stack) {
    return std::nullopt;
  }
  return task_stat{line.substr(open + 1, close - open - 1), field[3].front(),
                   *user_ticks + *system_ticks, *start_ticks, *start_stack};
}

}  // namespace orv::camera
