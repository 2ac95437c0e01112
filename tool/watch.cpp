#include "watch.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "main_loop.h"
#include "text.h"
#include "watch_summary.h"

namespace orvctl {
namespace {

using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::seconds;
using clock = std::chrono::steady_clock;

constexpr char standard_path[] = "-";

size_t columns() {
  winsize size{};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 ? size.ws_col : 80;
}

// A line on standard error that says how a watch goes, when somebody sees it there.
class progress_line {
 public:
  explicit progress_line(std::optional<milliseconds> duration)
      : duration_{duration}, seen_{isatty(STDERR_FILENO) == 1} {}
  progress_line(const progress_line&) = delete;
  progress_line& operator=(const progress_line&) = delete;
  ~progress_line() { clear(); }

  void show(uint64_t items, size_t packet_bytes);
  // Makes room for other output.
  void clear();

 private:
  std::optional<milliseconds> duration_;
  clock::time_point start_ = clock::now();
  bool seen_;
  bool shown_ = false;
};

void progress_line::show(uint64_t items, size_t packet_bytes) {
  if (!seen_) {
    return;
  }
  clear();
  const auto gone = duration_cast<seconds>(clock::now() - start_);
  fputs(progress_text(gone, duration_, items, packet_bytes, columns() - 1).c_str(), stderr);
  shown_ = true;
}

void progress_line::clear() {
  if (shown_) {
    fputs("\r\033[K", stderr);
    shown_ = false;
  }
}

orv_watch_options options_of(const context& shared, const watch_words& given) {
  orv_watch_options options{};
  uint32_t usual_timeout = usual_timeout_ms;
  for (const monitor_kind& kind : monitor_kinds()) {
    const auto& wanted = given.kinds;
    if (wanted.empty() || std::find(wanted.begin(), wanted.end(), &kind) != wanted.end()) {
      options.monitors |= static_cast<uint32_t>(kind.monitor);
      options.name_threads |= kind.has_threads ? 1 : 0;
      usual_timeout = std::max(usual_timeout, kind.usual_timeout_ms);
    }
  }
  options.cpu_interval_ms =
      static_cast<uint32_t>(given.interval_ms.value_or(usual_cpu_interval_ms));
  options.timeout_ms = shared.timeout_ms(usual_timeout);
  return options;
}

class watching {
 public:
  watching(const context& shared, const watch_words& given, const output* csv);

  exit_status run();

 private:
  static void on_event(orv_watch* watch, const orv_watch_event* event, void* self);
  void begin();
  void take(const orv_item& item);
  void flush(size_t packet_bytes);
  void warn(const std::string& message);
  void end(const orv_reply& reply);
  void stop();

  const context& shared_;
  const watch_words& given_;
  const output* const csv_;  // null: the items are no CSV
  const output& items_;
  std::string (*to_text_)(const orv_item&);
  progress_line progress_;
  watch_summary summary_;
  std::unique_ptr<source> second_;
  std::unique_ptr<source> time_over_;
  orv_watch* watch_ = nullptr;
  size_t packet_bytes_ = 0;
  bool lost_ = false;  // items that could not be written
  exit_status status_ = exit_status::done;
};

watching::watching(const context& shared, const watch_words& given, const output* csv)
    : shared_{shared},
      given_{given},
      csv_{csv},
      items_{csv != nullptr ? *csv : shared.out},
      to_text_{csv != nullptr ? to_csv : (shared.json ? to_json : to_line)},
      progress_{given.duration} {}

exit_status watching::run() {
  items_.write(csv_ != nullptr ? csv_head : "");
  const camera target{shared_};
  if (target.get() == nullptr) {
    return refuse(target.failure());
  }
  const stop_signals signals{[this] { stop(); }};
  const orv_watch_options options = options_of(shared_, given_);
  watch_ = orv_watch_start(target.get(), &options, on_event, this);
  if (watch_ == nullptr) {
    refuse(nullptr);
    return exit_status::not_run;
  }
  while (watch_ != nullptr) {
    run_main_loop_once();
  }
  progress_.clear();
  const std::string summary = shared_.json ? summary_.to_json() : summary_.to_lines();
  given_.csv_path == standard_path ? remark(summary) : shared_.out.write(summary);
  return signals.status(status_);
}

void watching::on_event(orv_watch* /*watch*/, const orv_watch_event* event, void* self) {
  auto* own = static_cast<watching*>(self);
  switch (event->kind) {
    case ORV_WATCH_STARTED:
      return own->begin();
    case ORV_WATCH_ITEM:
      return own->take(*event->item);
    case ORV_WATCH_TICKED:
      return own->flush(event->packet_bytes);
    case ORV_WATCH_GAP:
    case ORV_WATCH_GARBLED:
      return own->warn(event->message);
    case ORV_WATCH_ENDED:
      return own->end(*event->reply);
  }
}

void watching::begin() {
  if (given_.duration) {
    const auto duration_ms = static_cast<uint32_t>(given_.duration->count());
    time_over_ = source::every(duration_ms, [this] { stop(); });
  }
  second_ = source::every(1000, [this] { progress_.show(summary_.items(), packet_bytes_); });
}

void watching::take(const orv_item& item) {
  progress_.clear();
  summary_.add(item);
  items_.write(to_text_(item));
}

// A reader that has enough ends the watch in good order, as does a file that takes no more.
void watching::flush(size_t packet_bytes) {
  packet_bytes_ = packet_bytes;
  if (lost_ || items_.flush()) {
    return;
  }
  lost_ = true;
  stop();
}

void watching::warn(const std::string& message) {
  progress_.clear();
  complain(message);
  status_ = exit_status::refused;
}

void watching::end(const orv_reply& reply) {
  watch_ = nullptr;
  progress_.clear();
  if (reply.why != ORV_WHY_NONE) {
    status_ = refuse(&reply);
  }
  flush(0);
}

void watching::stop() {
  if (watch_ != nullptr) {
    orv_watch_stop(watch_);
  }
}

}  // namespace

std::string progress_text(seconds gone, std::optional<milliseconds> duration, uint64_t items,
                          size_t packet_bytes, size_t columns) {
  const std::string whole =
      duration ? format(" of %g s", std::chrono::duration<double>{*duration}.count()) : "";
  const std::string text = format("%lld s%s, %llu items", static_cast<long long>(gone.count()),
                                  whole.c_str(), static_cast<unsigned long long>(items));
  const std::string titled = "watching: " + text;
  const std::string full = titled + ", packet " + memory_size(packet_bytes);
  return (full.size() <= columns     ? full
          : titled.size() <= columns ? titled
                                     : text)
      .substr(0, columns);
}

exit_status watch_monitors(const context& shared, const watch_words& given) {
  if (given.csv_path.empty() || given.csv_path == standard_path) {
    return watching{shared, given, given.csv_path.empty() ? nullptr : &shared.out}.run();
  }
  const output csv{given.csv_path};
  if (!csv) {
    complain(given.csv_path + ": " + strerror(errno));
    return exit_status::not_run;
  }
  return finish(csv, watching{shared, given, &csv}.run());
}

}  // namespace orvctl
