#include "monitor_options.h"

#include "monitor_kind.h"

namespace orvctl {

CLI::Validator is_monitor() {
  return {[](const std::string& name) {
            return find_monitor(name) != nullptr
                       ? ""
                       : "no monitor \"" + name + "\"; cpu, heap or stack";
          },
          ""};
}

CLI::Option* add_interval(CLI::App& command, int& interval_ms, int longest_ms) {
  return command.add_option("--interval", interval_ms, "Milliseconds between two ticks of cpu")
      ->check(CLI::Range(1, longest_ms))
      ->capture_default_str();
}

void refuse_interval_without_cpu(const CLI::Option& interval, bool has_cpu) {
  if (interval.count() != 0 && !has_cpu) {
    throw CLI::ValidationError{"--interval", "heap ticks every 1000 ms and stack every 2000 ms"};
  }
}

}  // namespace orvctl
