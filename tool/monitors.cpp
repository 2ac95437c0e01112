// Starting, stopping and watching the monitors, as words.

#include <algorithm>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "monitor_kinds.h"
#include "subcommands.h"
#include "text.h"
#include "watch.h"

namespace orvctl {
namespace {

using std::chrono::milliseconds;

// The watch waits for a tick of the slowest monitor to empty the packet after it. Any longer, and
// the others could fill the packet meanwhile, and another tool's query would give up waiting.
constexpr int longest_watch_interval_ms = 4000;

struct monitor_words {
  const monitor_kind* kind = nullptr;
  std::optional<int> interval_ms;
};

exit_status start_monitor(const context& shared, const monitor_words& given) {
  const monitor_kind& kind = *given.kind;
  const int usual = kind.fixed_interval_ms != 0 ? kind.fixed_interval_ms : usual_cpu_interval_ms;
  const int interval_ms = given.interval_ms.value_or(usual);
  const answer got =
      camera{shared}.ask(orv_monitor_start_request(kind.monitor, interval_ms), shared.timeout_ms());
  if (got) {
    shared.out.print("%s monitor started, every %d ms unless it ran already\n", kind.name,
                     interval_ms);
  }
  return got.status();
}

exit_status stop_monitor(const context& shared, const monitor_kind& kind) {
  const answer got =
      camera{shared}.ask(orv_monitor_stop_request(kind.monitor), shared.timeout_ms());
  if (got) {
    const bool well = got.status() == exit_status::done;
    shared.out.print("%s monitor stopped%s\n", kind.name,
                     well ? "" : "; the camera application is not well");
  }
  return got.status();
}

std::string read_monitor(const std::string& name, const monitor_kind*& kind) {
  kind = find_monitor(name);
  return kind != nullptr ? "" : "no monitor \"" + name + "\"; " + monitor_names(" or ");
}

std::string read_duration(const std::string& text, std::optional<milliseconds>& duration) {
  duration = parse_duration(text);
  return duration ? "" : "\"" + text + "\" is no time, as in 30s, 1.5s, 500ms, 2m or 1h";
}

void add_kind(const subcommand& command, const monitor_kind*& kind) {
  command.value({.name = "MONITOR", .help = monitor_names(" or "), .required = true},
                [&kind](const std::string& name) { return read_monitor(name, kind); });
}

void add_interval(const subcommand& command, std::optional<int>& interval_ms, int longest_ms) {
  command.number({.name = "--interval",
                  .help = "Milliseconds between two ticks of cpu",
                  .least = 1,
                  .most = longest_ms,
                  .usual = std::to_string(usual_cpu_interval_ms)},
                 interval_ms);
}

// Where no monitor takes it, an interval was given by mistake.
exit_status refuse_interval() {
  return refuse_words("--interval: " + fixed_intervals());
}

void add_start(const subcommand& monitor, context& shared) {
  const subcommand start = monitor.add("start", "Start a monitor");
  start.footer(fixed_intervals() +
               ". A monitor that runs already keeps its\n"
               "interval: stop it first to give it another.");
  const auto given = std::make_shared<monitor_words>();
  add_kind(start, given->kind);
  add_interval(start, given->interval_ms, std::numeric_limits<int>::max());
  start.run([&shared, given] {
    const bool takes_interval = given->kind->fixed_interval_ms == 0 || !given->interval_ms;
    return takes_interval ? start_monitor(shared, *given) : refuse_interval();
  });
}

void add_stop(const subcommand& monitor, context& shared) {
  const subcommand stop = monitor.add("stop", "Stop a monitor");
  stop.footer("Exit status 1: stopped, but the camera application is not well.");
  const auto kind = std::make_shared<const monitor_kind*>();
  add_kind(stop, *kind);
  stop.run([&shared, kind] { return stop_monitor(shared, **kind); });
}

void add_watched(const subcommand& watch, std::vector<const monitor_kind*>& kinds) {
  watch.value(
      {.name = "MONITOR", .help = monitor_names(", "), .most = any_number},
      [&kinds](const std::string& name) { return read_monitor(name, kinds.emplace_back()); });
}

void add_watch(const subcommand& monitor, context& shared) {
  const subcommand watch = monitor.add("watch", "Run monitors and show what they see");
  watch.footer(
      "Without a MONITOR all three are watched, without --for until Ctrl-C. Monitors that ran\n"
      "before are stopped, and so are the watched ones at the end. Meanwhile other orvctl\n"
      "commands work but for those to the monitors; a query waits for a tick of the slowest\n"
      "monitor. Times are since the agent's start, and UTC by this machine's clock; free memory is "
      "told modulo 4 GiB. A tick of\n"
      "stack takes the target about 20 ms for each of its threads: unless --timeout says\n"
      "otherwise, an answer is waited for 30 s then. Exit status 1: items may be missing.\n"
      "Ctrl-C, with --for as without, ends a watch with its summary and then the program by that\n"
      "signal (130 in a shell); a second one ends it at once, with the monitors left running.");
  const auto given = std::make_shared<watch_words>();
  add_watched(watch, given->kinds);
  watch.value({.name = "--for", .help = "How long, as in 30s, 500ms, 2m or 1h"},
              [given](const std::string& text) { return read_duration(text, given->duration); });
  add_interval(watch, given->interval_ms, longest_watch_interval_ms);
  watch.flag("--json", shared.json, "Print a JSON object a line");
  watch.value(
      {.name = "--csv",
       .help = "Write the items as CSV into this file instead; - is standard output, and the "
               "summary then goes to standard error",
       .not_with = "--json"},
      any_words(given->csv_path));
  watch.run([&shared, given] {
    const bool takes_interval =
        given->kinds.empty() || !given->interval_ms ||
        std::any_of(given->kinds.begin(), given->kinds.end(),
                    [](const monitor_kind* kind) { return kind->fixed_interval_ms == 0; });
    return takes_interval ? watch_monitors(shared, *given) : refuse_interval();
  });
}

}  // namespace

void add_monitor(const subcommand& program, context& shared) {
  const subcommand monitor = program.add("monitor", "Start, stop and watch the monitors");
  monitor.require_one_below();
  add_start(monitor, shared);
  add_stop(monitor, shared);
  add_watch(monitor, shared);
}

}  // namespace orvctl
