#include "monitor_watch.h"

#include <signal.h>
#include <stdio.h>

#include <algorithm>
#include <memory>

#include "ask.h"
#include "item_text.h"
#include "numbers.h"
#include "stack.h"
#include "thread_list.h"
#include "watch_progress.h"
#include "watch_session.h"
#include "watch_summary.h"

#include <orv/protocol.h>

namespace orvctl {
namespace {

struct file_closer {
  void operator()(FILE* file) const noexcept { fclose(file); }
};
using file = std::unique_ptr<FILE, file_closer>;

// Where the items go: standard output or the CSV file.
class item_output {
 public:
  explicit item_output(const watch_options& given)
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

watch_settings settings_of(const watch_options& given) {
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

void watch(context& shared, const watch_options& given, const item_output& output) {
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

}  // namespace

bool watches(const watch_options& given, std::string_view name) {
  const auto& names = given.monitors;
  return names.empty() || std::find(names.begin(), names.end(), name) != names.end();
}

void watch_monitors(context& shared, const watch_options& given) {
  const item_output output{given};
  if (!given.csv_path.empty() && !output.has_csv()) {
    perror(("orvctl: " + given.csv_path).c_str());
    shared.status = status_usage;
  } else if (store_is_usable(shared)) {
    signal(SIGPIPE, SIG_IGN);  // a reader that has enough ends the watch in good order
    watch(shared, given, output);
  }
}

}  // namespace orvctl
