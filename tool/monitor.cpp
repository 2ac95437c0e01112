#include "monitor.h"

#include <stdio.h>

#include <string>

#include "ask.h"

namespace orvctl {

void start_monitor(context& shared, const monitor_kind& kind, int cpu_interval_ms) {
  const int interval_ms = interval_of(kind, cpu_interval_ms);
  if (ask(shared, start_command(kind, interval_ms))) {
    printf("%s monitor started, every %d ms unless it ran already\n",
           std::string{kind.name}.c_str(), interval_ms);
  }
}

void stop_monitor(context& shared, const monitor_kind& kind) {
  if (const auto answered = ask(shared, stop_command(kind))) {
    const bool well = answered->result == ORV_RESULT_OK;
    printf("%s monitor stopped%s\n", std::string{kind.name}.c_str(),
           well ? "" : "; the camera application is not well");
  }
}

}  // namespace orvctl
