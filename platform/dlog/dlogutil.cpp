// dlogutil: prints records of the system log and follows it.

#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <span>
#include <string_view>

#include "dlog.h"
#include "ring.h"

namespace {

// Between looks at a log that grows: writers then wake a sleeping reader this often at most.
constexpr long look_interval_ns = 10'000'000;
// A record that stays unfinished this long was left by a killed writer.
constexpr int unfinished_looks = 20;

constexpr char usage[] =
    "Usage: dlogutil [-d] [TAG ...]\n"
    "Print the system log's records with these tags, or all, oldest first, and follow the log\n"
    "until stopped.\n"
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

uint64_t next_record(const dlog::ring& log, uint64_t from, uint64_t end, dlog::record& scratch) {
  while (from < end && !log.read(from, scratch)) {
    from += sizeof(uint64_t);
  }
  return from;
}

// Prints from `position` to where the log is whole; returns where it stopped.
uint64_t print_from(const dlog::ring& log, uint64_t position, std::span<char*> tags) {
  dlog::record found;
  if (position < log.tail()) {
    position = next_record(log, log.tail(), log.head(), found);
  }
  while (position < log.head() && log.read(position, found)) {
    if (wanted(found, tags)) {
      print(found);
    }
    position += found.header.size;
  }
  fflush(stdout);
  return position;
}

void follow(const dlog::ring& log, uint64_t position, std::span<char*> tags) {
  int looks = 0;
  while (ferror(stdout) == 0) {
    const uint64_t end = log.head();
    if (position >= end) {
      log.wait_beyond(end);
    }
    const timespec pause{0, look_interval_ns};
    nanosleep(&pause, nullptr);
    const uint64_t reached = print_from(log, position, tags);
    looks = reached == position ? looks + 1 : 0;
    position = reached;
    if (looks >= unfinished_looks) {
      dlog::record scratch;
      position = next_record(log, position, end, scratch);
      looks = 0;
    }
  }
}

void print_all(const dlog::ring& log, std::span<char*> tags) {
  const uint64_t end = log.head();
  uint64_t position = print_from(log, 0, tags);
  while (position < end) {
    dlog::record scratch;
    position = print_from(log, next_record(log, position, end, scratch), tags);
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
    print_all(*log, words.subspan(1));
  } else {
    follow(*log, print_from(*log, 0, words), words);
  }
  return 0;
}
