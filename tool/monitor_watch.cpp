#include <signal.h>
#include <stdio.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "item_text.h"
#include "monitor_options.h"
#include "numbers.h"
#include "subcommand.h"
#include "thread_list.h"
#include "watch_progress.h"
#include "watch_session.h"
#include "watch_summary.h"

#include <orv/protocol.h>

namespace orvctl {
namespace {

// The tool waits for a tick of the slowest monitor to empty the key behind it. Any longer, and the
// others could fill the packet meanwhile, and a query would give up waiting for the key.
constexpr int longest_interval_ms = 4000;

// For a tick of the stack monitor the target runs a shell command a thread.
constexpr double stack_timeout_s = 30;
constexpr auto stack_timeout = std::chrono::seconds{30};

struct options {
  std::vector<std::string> monitors;
  int interval_ms = default_cpu_interval_ms;
  std::string duration;
  bool json = false;
  std::string csv_path;
};

struct file_closer {
  void operator()(FILE* file) const noexcept { fclose(file); }
};
using file = std::unique_ptr<FILE, file_closer>;

// Where the items go: standard output or the CSV file.
class item_output {
 public:
  explicit item_output(const options& given)
      : csv_{given.csv_path.empty() ? nullptr : fopen(given.csv_path.c_str(), "we")},
        to_text_{csv_ ? to_csv : (given.json ? to_json : to_line)} {
    if (csv_) {
      fputs(csv_head, csv_.get());
    }
  }

  // False when nothing can be written any more.
  bool write(const std::vector<packet_item>& items) const {
    FILE* out = csv_ ? csv_.get() : stdout;
    for (const packet_item& item : items) {
      fputs(to_text_(item).c_str(), out);
    }
    return fflush(out) == 0;
  }

  [[nodiscard]] bool has_csv() const { return csv_ != nullptr; }

 private:
  file csv_;
  std::string (*to_text_)(const packet_item&);
};

std::map<int, std::string> thread_names(const watch_session& session) {
  std::map<int, std::string> names;
  const auto answered = session.ask_afterwards({ORV_COMMAND_STACK_INFO, {}, {}}, stack_timeout);
  const auto list = answered ? parse_thread_list(*answered->text) : std::nullopt;
  if (list) {
    for (const thread_stack& one : list->threads) {
      names[one.tid] = one.name;
    }
  }
  return names;
}

bool watches(const options& given, std::string_view name) {
  const auto& names = given.monitors;
  return names.empty() || std::find(names.begin(), names.end(), name) != names.end();
}

watch_settings settings_of(const options& given) {
  watch_settings settings{{}, given.interval_ms, {}, {}, {}};
  for (const monitor_kind& kind : monitor_kinds) {
    if (watches(given, kind.name)) {
      settings.monitors.push_back(&kind);
    }
  }
  if (!given.duration.empty()) {
    settings.duration = parse_duration(given.duration);
  }
  return settings;
}

void name_threads(const watch_session& session, watch_summary& summary) {
  if (summary.tells_threads()) {
    summary.set_names(thread_names(session));
  }
}

void watch(context& shared, const options& given, const item_output& output) {
  watch_settings settings = settings_of(given);
  watch_progress progress{settings.duration};
  watch_summary summary;
  settings.show = [&](const std::vector<packet_item>& items) {
    progress.clear();
    std::for_each(items.begin(), items.end(), [&](const auto& one) { summary.add(one); });
    const bool written = output.write(items);
    if (!written && output.has_csv()) {
      perror(("orvctl: " + given.csv_path).c_str());
      shared.status = status_failure;
    }
    return written;
  };
  settings.every_second = [&](size_t packet_bytes) {
    progress.show(summary.items(), packet_bytes);
  };
  watch_session session{shared, std::move(settings)};
  const bool watched = session.run();
  progress.clear();
  if (watched) {
    name_threads(session, summary);
  }
  fputs((given.json ? summary.to_json() : summary.to_lines()).c_str(), stdout);
}

void run(context& shared, const options& given) {
  const item_output output{given};
  if (!given.csv_path.empty() && !output.has_csv()) {
    perror(("orvctl: " + given.csv_path).c_str());
    shared.status = status_usage;
  } else if (store_is_usable(shared)) {
    signal(SIGPIPE, SIG_IGN);  // a reader that has enough ends the watch in good order
    watch(shared, given, output);
  }
}

std::string check_duration(const std::string& text) {
  return parse_duration(text) ? "" : "\"" + text + "\" is no time, as in 30s, 500ms, 2m or 1h";
}

}  // namespace

void add_monitor_watch(CLI::App& app, CLI::App& monitor, context& shared) {
  const auto given = std::make_shared<options>();
  CLI::App* watch = monitor.add_subcommand("watch", "Run monitors and show what they see");
  watch->footer(
      "Without a MONITOR all three are watched, without --for until Ctrl-C. Monitors that ran\n"
      "before are stopped, and so are the watched ones at the end. Meanwhile other orvctl\n"
      "commands work but for those to the monitors; a query waits for a tick of the slowest\n"
      "monitor. Times are since the agent's start, free memory is told modulo 4 GiB. A tick of\n"
      "stack takes the target about 20 ms for each of its threads: unless --timeout says\n"
      "otherwise, an answer is waited for 30 s then. Exit status 1: items may be missing.");
  watch->add_option("MONITOR", given->monitors, "cpu, heap, stack")->check(is_monitor());
  watch->add_option("--for", given->duration, "How long, as in 30s, 500ms, 2m or 1h")
      ->check(CLI::Validator{check_duration, ""});
  const CLI::Option* interval = add_interval(*watch, given->interval_ms, longest_interval_ms);
  CLI::Option* json = watch->add_flag("--json", given->json, "Print a JSON object a line");
  watch->add_option("--csv", given->csv_path, "Write the items as CSV into this file instead")
      ->excludes(json);
  watch->callback([&app, &shared, interval, given] {
    refuse_interval_without_cpu(*interval, watches(*given, "cpu"));
    if (watches(*given, "stack") && app.get_option("--timeout")->count() == 0) {
      shared.timeout_s = stack_timeout_s;
    }
    run(shared, *given);
  });
}

}  // namespace orvctl
