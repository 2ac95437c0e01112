// The log's shared ring: a file that every process maps, so a record costs no system call.
//
// A writer reserves its bytes by moving the head, which only grows, and then copies the record into
// place. Each record carries a checksum over its position and its bytes: one that is half written,
// was left by a killed writer, or was overtaken by newer ones does not verify and is never shown.
#ifndef ORV_DLOG_RING_H
#define ORV_DLOG_RING_H

#include <stddef.h>
#include <stdint.h>
#include <time.h>

#include <atomic>
#include <optional>
#include <string_view>
#include <vector>

namespace dlog {

constexpr size_t ring_size = size_t{1} << 20U;
constexpr size_t max_text_size = 4000;
constexpr size_t max_tag_size = 63;

struct ring_header {
  uint64_t magic;
  std::atomic<uint64_t> head;     // bytes ever reserved
  std::atomic<uint32_t> awaited;  // 1 while a reader sleeps on it
};
static_assert(std::atomic<uint64_t>::is_always_lock_free);

struct record_header {
  uint64_t checksum;
  uint32_t size;  // of the whole record, a multiple of 8
  uint16_t tag_size;
  uint16_t text_size;
  int64_t time_ns;  // since the epoch
  int32_t pid;
  int32_t tid;
  int32_t log_id;
  int32_t priority;
};
static_assert(sizeof(record_header) % 8 == 0);

struct record {
  record_header header;
  char tag[max_tag_size + 1];    // NUL-terminated
  char text[max_text_size + 1];  // NUL-terminated
};

// A part of the log as it was at one time: the records in it stay while writers go on.
class snapshot {
 public:
  [[nodiscard]] uint64_t begin() const noexcept { return begin_; }
  [[nodiscard]] uint64_t end() const noexcept { return end_; }

  // The whole record at this position, if one stands there.
  [[nodiscard]] bool read(uint64_t position, record& result) const noexcept;

  // The position of the next whole record from here on, or the end.
  [[nodiscard]] uint64_t find_record(uint64_t from) const noexcept;

 private:
  friend class ring;

  uint64_t begin_{0};
  uint64_t end_{0};
  // Has its room before it is needed: while a page is made for it, writers could pass all around.
  std::vector<char> bytes_ = std::vector<char>(ring_size);
};

class ring {
 public:
  // Maps the log under the platform's root, which is made when missing. Empty when that fails.
  static std::optional<ring> open();

  void append(record_header header, std::string_view tag, std::string_view text) noexcept;

  [[nodiscard]] uint64_t head() const noexcept { return header_->head.load(); }

  // The first position that still holds records.
  [[nodiscard]] uint64_t tail() const noexcept {
    const uint64_t end = head();
    return end > ring_size ? end - ring_size : 0;
  }

  // Takes what the log holds from this position on, or from its tail when that is further.
  void copy_from(uint64_t position, snapshot& copy) const noexcept;

  // Sleeps until the head has moved on from `seen`, no longer than `longest` unless that is null.
  void wait_beyond(uint64_t seen, const timespec* longest) const noexcept;

 private:
  ring(ring_header* header, char* data) : header_{header}, data_{data} {}

  ring_header* header_;
  char* data_;  // mapped twice in a row, so that no record is split
};

}  // namespace dlog

#endif
