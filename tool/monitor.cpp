#include <stdio.h>

#include <CLI/CLI.hpp>
#include <limits>
#include <memory>

#include "monitor_kind.h"
#include "monitor_options.h"
#include "subcommand.h"

namespace orvctl {
namespace {

struct options {
  std::string monitor;
  int interval_ms = default_cpu_interval_ms;
};

void start(context& shared, const options& given) {
  const monitor_kind& kind = *find_monitor(given.monitor);
  const int interval_ms = interval_of(kind, given.interval_ms);
  if (ask(shared, start_command(kind, interval_ms))) {
    printf("%s monitor started, every %d ms unless it ran already\n", given.monitor.c_str(),
           interval_ms);
  }
}

void stop(context& shared, const options& given) {
  if (const auto answered = ask(shared, stop_command(*find_monitor(given.monitor)))) {
    const bool well = answered->result == ORV_RESULT_OK;
    printf("%s monitor stopped%s\n", given.monitor.c_str(),
           well ? "" : "; the camera application is not well");
  }
}

void add_name(CLI::App& command, options& given) {
  command.add_option("MONITOR", given.monitor, "cpu, heap or stack")
      ->required()
      ->check(is_monitor());
}

void add_start(CLI::App& monitor, context& shared) {
  const auto given = std::make_shared<options>();
  CLI::App* command = monitor.add_subcommand("start", "Start a monitor");
  command->footer(
      "heap ticks every 1000 ms and stack every 2000 ms. A monitor that runs already keeps its\n"
      "interval: stop it first to give it another.");
  add_name(*command, *given);
  const CLI::Option* interval =
      add_interval(*command, given->interval_ms, std::numeric_limits<int>::max());
  command->callback([&shared, interval, given] {
    refuse_interval_without_cpu(*interval, given->monitor == "cpu");
    start(shared, *given);
  });
}

void add_stop(CLI::App& monitor, context& shared) {
  const auto given = std::make_shared<options>();
  CLI::App* command = monitor.add_subcommand("stop", "Stop a monitor");
  command->footer("Exit status 1: stopped, but the camera application is not well.");
  add_name(*command, *given);
  command->callback([&shared, given] { stop(shared, *given); });
}

}  // namespace

void add_monitor(CLI::App& app, context& shared) {
  CLI::App* monitor = app.add_subcommand("monitor", "Start, stop and watch the monitors");
  monitor->require_subcommand(1);
  add_start(*monitor, shared);
  add_stop(*monitor, shared);
  add_monitor_watch(app, *monitor, shared);
}

}  // namespace orvctl
