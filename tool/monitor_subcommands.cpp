#include <CLI/CLI.hpp>
#include <limits>
#include <memory>
#include <string>

#include "monitor.h"
#include "monitor_kind.h"
#include "monitor_watch.h"
#include "numbers.h"
#include "subcommands.h"

namespace orvctl {
namespace {

struct monitor_options {
  std::string monitor;
  int interval_ms = default_cpu_interval_ms;
};

std::string check_monitor(const std::string& name) {
  return find_monitor(name) != nullptr ? "" : "no monitor \"" + name + "\"; cpu, heap or stack";
}

std::string check_duration(const std::string& text) {
  return parse_duration(text) ? "" : "\"" + text + "\" is no time, as in 30s, 500ms, 2m or 1h";
}

void add_name(CLI::App& command, monitor_options& given) {
  command.add_option("MONITOR", given.monitor, "cpu, heap or stack")
      ->required()
      ->check(CLI::Validator{check_monitor, ""});
}

CLI::Option* add_interval(CLI::App& command, int& interval_ms, int longest_ms) {
  return command.add_option("--interval", interval_ms, "Milliseconds between two ticks of cpu")
      ->check(CLI::Range(1, longest_ms))
      ->capture_default_str();
}

// Where no monitor takes it, an interval was given by mistake.
void refuse_interval_without_cpu(const CLI::Option& interval, bool has_cpu) {
  if (interval.count() != 0 && !has_cpu) {
    throw CLI::ValidationError{"--interval", "heap ticks every 1000 ms and stack every 2000 ms"};
  }
}

void add_start(CLI::App& monitor, context& shared) {
  const auto given = std::make_shared<monitor_options>();
  CLI::App* command = monitor.add_subcommand("start", "Start a monitor");
  command->footer(
      "heap ticks every 1000 ms and stack every 2000 ms. A monitor that runs already keeps its\n"
      "interval: stop it first to give it another.");
  add_name(*command, *given);
  const CLI::Option* interval =
      add_interval(*command, given->interval_ms, std::numeric_limits<int>::max());
  command->callback([&shared, interval, given] {
    refuse_interval_without_cpu(*interval, given->monitor == "cpu");
    start_monitor(shared, *find_monitor(given->monitor), given->interval_ms);
  });
}

void add_stop(CLI::App& monitor, context& shared) {
  const auto given = std::make_shared<monitor_options>();
  CLI::App* command = monitor.add_subcommand("stop", "Stop a monitor");
  command->footer("Exit status 1: stopped, but the camera application is not well.");
  add_name(*command, *given);
  command->callback([&shared, given] { stop_monitor(shared, *find_monitor(given->monitor)); });
}

void add_watch(CLI::App& app, CLI::App& monitor, context& shared) {
  const auto given = std::make_shared<watch_options>();
  CLI::App* watch = monitor.add_subcommand("watch", "Run monitors and show what they see");
  watch->footer(
      "Without a MONITOR all three are watched, without --for until Ctrl-C. Monitors that ran\n"
      "before are stopped, and so are the watched ones at the end. Meanwhile other orvctl\n"
      "commands work but for those to the monitors; a query waits for a tick of the slowest\n"
      "monitor. Times are since the agent's start, free memory is told modulo 4 GiB. A tick of\n"
      "stack takes the target about 20 ms for each of its threads: unless --timeout says\n"
      "otherwise, an answer is waited for 30 s then. Exit status 1: items may be missing.");
  watch->add_option("MONITOR", given->monitors, "cpu, heap, stack")
      ->check(CLI::Validator{check_monitor, ""});
  watch->add_option("--for", given->duration, "How long, as in 30s, 500ms, 2m or 1h")
      ->check(CLI::Validator{check_duration, ""});
  const CLI::Option* interval = add_interval(*watch, given->interval_ms, longest_watch_interval_ms);
  CLI::Option* json = watch->add_flag("--json", given->json, "Print a JSON object a line");
  watch->add_option("--csv", given->csv_path, "Write the items as CSV into this file instead")
      ->excludes(json);
  watch->callback([&app, &shared, interval, given] {
    refuse_interval_without_cpu(*interval, watches(*given, "cpu"));
    if (watches(*given, "stack")) {
      allow_for_stacks(app, shared);
    }
    watch_monitors(shared, *given);
  });
}

}  // namespace

void add_monitor(CLI::App& app, context& shared) {
  CLI::App* monitor = app.add_subcommand("monitor", "Start, stop and watch the monitors");
  monitor->require_subcommand(1);
  add_start(*monitor, shared);
  add_stop(*monitor, shared);
  add_watch(app, *monitor, shared);
}

}  // namespace orvctl
