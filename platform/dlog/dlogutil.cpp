// dlogutil: prints records of the system log and follows it.

#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <span>
#include <string_view>

#include "dlog.h"
#include "host_process.h"
#include "ring.h"

namespace {

// Between looks at a log that grows: writers then wake a sleeping reader this often at most.
constexpr timespec look_interval{0, 100'000'000};
// Between looks at a host while the log is at rest.
constexpr timespec host_look_interval{0, 250'000'000};
// A record that stays unfinished this long was left by a killed writer.
constexpr int unfinished_looks = 2;

constexpr char usage[] =
    "Usage: dlogutil [-d] [TAG ...]\n"
    "Print the system log's records with these tags, or all, oldest first, and follow the log\n"
    "until stopped; a reader that a host started ends with the host (ORV_HOST_PID).\n"
    "  -d      print what the log holds and end\n"
    "  --help  print this and end\n";

void print(const dlog::record& found) {
  const time_t seconds = static_cast<time_t>(found.header.time_ns / 1'000'000'000);
  const auto ms = static_cast<int>(found.header.time_ns / 1'000'000 % 1000);
  tm local{};
  localtime_r(&seconds, &local);
  char stamp[32];
  strftime(stamp, sizeof stamp, "%m-%d %H:%M:%S", &local);
  const std::string_view text{found.text, found.header.text_size};
  printf("%s.%03d %5d %5d %c/%s: %s%s", stamp, ms, found.header.pid, found.header.tid,
         found.header.priority >= DLOG_ERROR ? 'E' : 'I', found.tag, found.text,
         text.ends_with('\n') ? "" : "\n");
}

bool wanted(const dlog::record& found, std::span<char*> tags) {
  return tags.empty() || std::any_of(tags.begin(), tags.end(),
                                     [&](const char* tag) { return strcmp(tag, found.tag) == 0; });
}

// Prints what came since `position` and returns where it stopped: at the log's end, or before it at
// a record that its writer has yet to finish. `skip_unfinished` passes over such records.
uint64_t print_from(const dlog::ring& log, uint64_t position, bool skip_unfinished,
                    std::span<char*> tags, dlog::snapshot& shot) {
  log.copy_from(position, shot);
  const uint64_t overtaken = log.tail();
  dlog::record found;
  position = shot.begin();
  while (position < shot.end()) {
    if (shot.read(position, found)) {
      if (wanted(found, tags)) {
        print(found);
      }
      position += found.header.size;
    } else if (skip_unfinished || position < overtaken) {
      position = shot.find_record(position);
    } else {
      break;
    }
  }
  fflush(stdout);
  return position;
}

// A reader that a host's agent leaves in the background holds the host's output open: it ends with
// the host, even when that was killed, once it has printed what the host wrote.
void follow(const dlog::ring& log, std::span<char*> tags) {
  const auto host = platform::named_host();
  dlog::snapshot shot;
  uint64_t position = print_from(log, 0, false, tags, shot);
  int looks = 0;
  bool host_ended = false;
  while (ferror(stdout) == 0 && !host_ended) {
    if (position == log.head()) {
      log.wait_beyond(position, host ? &host_look_interval : nullptr);
    }
    nanosleep(&look_interval, nullptr);
    host_ended = host && !platform::still_runs(*host);
    const uint64_t reached = print_from(log, position, looks >= unfinished_looks, tags, shot);
    looks = reached == position ? looks + 1 : 0;
    position = reached;
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::span<char*> words{argv + 1, static_cast<size_t>(argc > 0 ? argc - 1 : 0)};
  const std::string_view first = words.empty() ? "" : words[0];
  if (first == "--help") {
    fputs(usage, stdout);
    return 0;
  }
  const bool dump = first == "-d";
  if (first.starts_with('-') && !dump) {
    fprintf(stderr, "dlogutil: unknown option %s; see dlogutil --help\n", words[0]);
    return 2;
  }
  const auto log = dlog::ring::open();
  if (!log) {
    fputs("dlogutil: the platform's root holds no usable log\n", stderr);
    return 1;
  }
  if (dump) {
    dlog::snapshot shot;
    print_from(*log, 0, true, words.subspan(1), shot);
    return 0;
  }
  follow(*log, words);
  return 0;
}
