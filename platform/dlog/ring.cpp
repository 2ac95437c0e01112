#include "ring.h"

#include <errno.h>
#include <fcntl.h>
#include <linux/futex.h>
#include <stdio.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>

#include "descriptor.h"
#include "platform_root.h"

namespace dlog {
namespace {

using platform::descriptor;

constexpr uint64_t ring_magic = 0x31676f6c64767231ULL;
constexpr size_t header_size = 4096;
constexpr char file_name[] = "dlog";

// The file gets its name when it is whole; of several makers the first one wins. Its blocks are
// allocated at once: a full file system must show here and not as a fault in a mapped page.
int make_file(int root) {
  char temporary[64];
  snprintf(temporary, sizeof temporary, ".dlog.%ld.%p", static_cast<long>(getpid()),
           static_cast<void*>(temporary));
  const descriptor file{openat(root, temporary, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600)};
  if (file.get() < 0) {
    return -1;
  }
  const uint64_t magic = ring_magic;
  const bool named =
      posix_fallocate(file.get(), 0, header_size + ring_size) == 0 &&
      pwrite(file.get(), &magic, sizeof magic, 0) == static_cast<ssize_t>(sizeof magic) &&
      (linkat(root, temporary, root, file_name, 0) == 0 || errno == EEXIST);
  unlinkat(root, temporary, 0);
  return named ? openat(root, file_name, O_RDWR | O_CLOEXEC | O_NOFOLLOW) : -1;
}

bool is_ring(int fd) {
  struct stat status {};
  uint64_t magic = 0;
  return fstat(fd, &status) == 0 && status.st_size == header_size + ring_size &&
         pread(fd, &magic, sizeof magic, 0) == static_cast<ssize_t>(sizeof magic) &&
         magic == ring_magic;
}

bool map_at(char* address, size_t size, int fd, off_t offset) {
  // Populated at once: a page's first touch would cost a writer more than a hundred records.
  constexpr int flags = MAP_SHARED | MAP_FIXED | MAP_POPULATE;
  return mmap(address, size, PROT_READ | PROT_WRITE, flags, fd, offset) == address;
}

char* map_ring(int fd) {
  constexpr size_t size = header_size + 2 * ring_size;
  void* reserved = mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (reserved == MAP_FAILED) {
    return nullptr;
  }
  auto* start = static_cast<char*>(reserved);
  if (map_at(start, header_size + ring_size, fd, 0) &&
      map_at(start + header_size + ring_size, ring_size, fd, header_size)) {
    return start;
  }
  munmap(reserved, size);
  return nullptr;
}

size_t whole_size(size_t tag_size, size_t text_size) {
  return (sizeof(record_header) + tag_size + text_size + 7) / 8 * 8;
}

uint64_t mix(uint64_t sum, uint64_t word) {
  sum = (sum ^ word) * 0x9e3779b97f4a7c15ULL;
  return sum ^ (sum >> 29U);
}

// Over everything behind the checksum field; `size` is a multiple of 8.
uint64_t checksum(uint64_t position, const char* bytes, size_t size) {
  uint64_t sum = mix(ring_magic, position);
  for (size_t at = sizeof(uint64_t); at < size; at += sizeof(uint64_t)) {
    uint64_t word = 0;
    memcpy(&word, bytes + at, sizeof word);
    sum = mix(sum, word);
  }
  return sum;
}

bool plausible(const record_header& header) {
  return header.tag_size <= max_tag_size && header.text_size <= max_text_size &&
         header.size == whole_size(header.tag_size, header.text_size);
}

long futex(std::atomic<uint32_t>& word, int operation, uint32_t value, const timespec* longest) {
  return syscall(SYS_futex, &word, operation, value, longest, nullptr, 0);
}

}  // namespace

std::optional<ring> ring::open() {
  platform::root_check why{};
  const descriptor root{platform::open_root(true, why)};
  if (root.get() < 0) {
    return std::nullopt;
  }
  const int existing = openat(root.get(), file_name, O_RDWR | O_CLOEXEC | O_NOFOLLOW);
  const descriptor file{existing >= 0 ? existing : make_file(root.get())};
  char* start = file.get() >= 0 && is_ring(file.get()) ? map_ring(file.get()) : nullptr;
  if (start == nullptr) {
    return std::nullopt;
  }
  return ring{static_cast<ring_header*>(static_cast<void*>(start)), start + header_size};
}

void ring::append(record_header header, std::string_view tag, std::string_view text) noexcept {
  alignas(uint64_t) char bytes[sizeof(record_header) + max_tag_size + max_text_size + 8];
  tag = tag.substr(0, max_tag_size);
  text = text.substr(0, max_text_size);
  const size_t size = whole_size(tag.size(), text.size());
  memset(bytes + size - sizeof(uint64_t), 0, sizeof(uint64_t));  // what rounding up adds
  header.size = static_cast<uint32_t>(size);
  header.tag_size = static_cast<uint16_t>(tag.size());
  header.text_size = static_cast<uint16_t>(text.size());
  memcpy(bytes, &header, sizeof header);
  tag.copy(bytes + sizeof header, tag.size());
  text.copy(bytes + sizeof header + tag.size(), text.size());

  const uint64_t position = header_->head.fetch_add(size);
  const uint64_t sum = checksum(position, bytes, size);
  memcpy(bytes, &sum, sizeof sum);
  memcpy(data_ + position % ring_size, bytes, size);

  // Sequentially consistent with wait_beyond: either this sees the sleeper or it saw the new head.
  if (header_->awaited.load() != 0 && header_->awaited.exchange(0) != 0) {
    futex(header_->awaited, FUTEX_WAKE, INT32_MAX, nullptr);
  }
}

// Newest bytes first: behind the tail writers are at work, and a copy that began there would chase
// them all the way.
void ring::copy_from(uint64_t position, snapshot& copy) const noexcept {
  constexpr size_t piece = 16384;
  copy.end_ = head();
  copy.begin_ = std::clamp(position, copy.end_ > ring_size ? copy.end_ - ring_size : 0, copy.end_);
  for (auto left = static_cast<size_t>(copy.end_ - copy.begin_); left > 0;) {
    const size_t size = std::min(left, piece);
    left -= size;
    memcpy(copy.bytes_.data() + left, data_ + (copy.begin_ + left) % ring_size, size);
  }
}

bool snapshot::read(uint64_t position, record& result) const noexcept {
  const auto available = static_cast<size_t>(end() - position);
  const char* place = bytes_.data() + (position - begin_);
  if (available < sizeof result.header) {
    return false;
  }
  memcpy(&result.header, place, sizeof result.header);
  const record_header& header = result.header;
  if (!plausible(header) || header.size > available ||
      checksum(position, place, header.size) != header.checksum) {
    return false;
  }
  const char* tag = place + sizeof header;
  *std::copy_n(tag, header.tag_size, result.tag) = '\0';
  *std::copy_n(tag + header.tag_size, header.text_size, result.text) = '\0';
  return true;
}

uint64_t snapshot::find_record(uint64_t from) const noexcept {
  record scratch;
  while (from < end() && !read(from, scratch)) {
    from += sizeof(uint64_t);
  }
  return from;
}

void ring::wait_beyond(uint64_t seen, const timespec* longest) const noexcept {
  header_->awaited.store(1);
  if (head() == seen) {
    futex(header_->awaited, FUTEX_WAIT, 1, longest);
  }
}

}  // namespace dlog
