#include "value_file.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <mutex>
#include <utility>

#include "descriptor.h"
#include "directory_watch.h"
#include "key_path.h"
#include "platform_root.h"
#include "vconf.h"

namespace vconf {
namespace {

using platform::descriptor;

constexpr time_t stale_after_s = 10;
constexpr uint32_t writes_per_sweep = 61;
constexpr int write_attempts = 3;
constexpr int read_attempts = 100;

void report_once(const platform::root_check& why) {
  static std::atomic_flag reported = ATOMIC_FLAG_INIT;
  if (why.state == platform::root_state::refused && !reported.test_and_set()) {
    fprintf(stderr, "vconf: %s\n", why.reason);
  }
}

bool root_was_removed(int root) {
  struct stat status {};
  return fstat(root, &status) == 0 && status.st_nlink == 0;
}

void remove_when_stale(int directory, const char* name) {
  struct stat status {};
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  if (fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
      now.tv_sec - status.st_mtim.tv_sec > stale_after_s) {
    unlinkat(directory, name, 0);
  }
}

// Temporary files that killed writers left. A write takes microseconds; should a stopped
// writer come back to a file that is gone, its rename fails and it starts over.
void sweep(int root, const char* key) {
  const int fd = openat(root, key, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) {
    return;
  }
  DIR* entries = fdopendir(fd);
  if (entries == nullptr) {
    close(fd);
    return;
  }
  while (const dirent* entry = readdir(entries)) {
    if (std::string_view{entry->d_name}.starts_with(temporary_prefix)) {
      remove_when_stale(dirfd(entries), entry->d_name);
    }
  }
  closedir(entries);
}

// Turns begin anywhere, so that a process that writes a few keys and ends takes its share, and come
// after a prime number of writes, so that they go round keys that are written in a rhythm.
void sweep_in_turn(int root, const char* key) {
  static std::atomic<uint32_t> writes{static_cast<uint32_t>(getpid())};
  if (writes.fetch_add(1, std::memory_order_relaxed) % writes_per_sweep == 0) {
    sweep(root, key);
  }
}

bool write_whole(int fd, value_type type, std::string_view text) {
  char letter = static_cast<char>(type);
  const iovec parts[] = {{&letter, 1}, {const_cast<char*>(text.data()), text.size()}};
  const auto size = static_cast<ssize_t>(text.size() + 1);
  return writev(fd, parts, 2) == size;
}

enum class attempt { done, no_directory, failed };

bool make_link(int root, const char* path, value_type type, std::string_view text) {
  char target[max_link_size + 1];
  target[0] = static_cast<char>(type);
  target[1 + text.copy(target + 1, text.size())] = '\0';
  return symlinkat(target, root, path) == 0;
}

bool make_file(int root, const char* path, value_type type, std::string_view text) {
  const descriptor file{
      openat(root, path, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR)};
  if (!file) {
    return false;
  }
  if (!write_whole(file.get(), type, text)) {
    unlinkat(root, path, 0);
    errno = ENOSPC;
    return false;
  }
  return true;
}

attempt replace_value(int root, std::string_view key, value_type type, std::string_view text) {
  const path_text temporary = temporary_path(key);
  const auto make = text.size() < max_link_size ? make_link : make_file;
  if (make(root, temporary.text, type, text)) {
    if (renameat(root, temporary.text, root, value_path(key).text) == 0) {
      return attempt::done;
    }
    const int error = errno;
    unlinkat(root, temporary.text, 0);
    errno = error;
  }
  return errno == ENOENT ? attempt::no_directory : attempt::failed;
}

// False also for a file that is shorter: somebody cut it after its size was read.
bool read_whole(int fd, char* place, size_t size) {
  while (size > 0) {
    const ssize_t got = read(fd, place, size);
    if (got <= 0) {
      return false;
    }
    place += got;
    size -= static_cast<size_t>(got);
  }
  return true;
}

int read_open_value(int fd, value& result) {
  struct stat status {};
  if (fstat(fd, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < 1 ||
      status.st_size > static_cast<off_t>(max_value_size + 1)) {
    return VCONF_ERROR_STORE;
  }
  const auto text_size = static_cast<size_t>(status.st_size) - 1;
  owned_text text{static_cast<char*>(malloc(text_size + 1))};
  char letter = '\0';
  if (!text || !read_whole(fd, &letter, 1) || !read_whole(fd, text.get(), text_size)) {
    return VCONF_ERROR_STORE;
  }
  text.get()[text_size] = '\0';
  result.type = static_cast<value_type>(letter);
  result.long_text = std::move(text);
  return 0;
}

// Without O_NONBLOCK, opening a fifo waits for a writer.
int read_file(int root, const char* path, value& result) {
  constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_NOFOLLOW | O_CLOEXEC;
  const descriptor file{openat(root, path, flags)};
  return file ? read_open_value(file.get(), result) : VCONF_ERROR_STORE;
}

// 0, or VCONF_ERROR_STORE with errno.
int read_link(int root, const char* path, value& result) {
  char target[max_link_size];
  const ssize_t length = readlinkat(root, path, target, sizeof target);
  if (length < 1) {
    return VCONF_ERROR_STORE;
  }
  const std::string_view text{target + 1, static_cast<size_t>(length) - 1};
  result.type = static_cast<value_type>(target[0]);
  result.short_text[text.copy(result.short_text, text.size())] = '\0';
  return 0;
}

// Short values are the common ones. Between the two looks a value may change from one to the other.
int read_either(int root, const char* path, value& result) {
  int outcome = VCONF_ERROR_STORE;
  for (int tried = 0; tried < read_attempts && outcome != 0; ++tried) {
    outcome = read_link(root, path, result);
    if (outcome != 0 && errno == EINVAL) {
      outcome = read_file(root, path, result);
    }
    if (outcome != 0 && errno != ELOOP) {
      break;
    }
  }
  return outcome;
}

}  // namespace

int root_descriptor(bool make, bool again) {
  static std::mutex guard;
  static int root = -1;
  static std::atomic<int> checked{-1};
  const int known = checked.load(std::memory_order_acquire);
  if (known >= 0 && !again) {
    return known;
  }
  const std::lock_guard lock{guard};
  platform::root_check why{};
  const int fresh = open_root(make, why);
  report_once(why);
  if (root >= 0 && fresh >= 0) {
    dup3(fresh, root, O_CLOEXEC);  // other threads may be using the number
    close(fresh);
  } else if (fresh >= 0) {
    root = fresh;
  }
  checked.store(fresh >= 0 ? root : -1, std::memory_order_release);
  return checked;
}

bool make_key_directory(int root, std::string_view key) {
  path_text path;
  key.copy(path.text, key.size());
  for (size_t end = key.find('/'); true; end = key.find('/', end + 1)) {
    const size_t length = end == std::string_view::npos ? key.size() : end;
    path.text[length] = '\0';
    if (mkdirat(root, path.text, S_IRWXU) != 0 && errno != EEXIST) {
      return false;
    }
    if (length == key.size()) {
      return true;
    }
    path.text[length] = '/';
  }
}

int read_value(const char* key, value& result) {
  if (key == nullptr || !valid_key(key)) {
    return VCONF_ERROR_NO_KEY;
  }
  const int root = root_descriptor(false);
  if (root < 0) {
    return VCONF_ERROR_STORE;
  }
  const path_text path = value_path(key);
  int outcome = read_either(root, path.text, result);
  if (outcome != 0 && errno == ENOENT && root_was_removed(root)) {
    outcome = read_either(root_descriptor(false, true), path.text, result);
  }
  return outcome == 0 || errno != ENOENT ? outcome : VCONF_ERROR_NO_KEY;
}

bool has_value(const char* key) {
  struct stat status {};
  const int root = root_descriptor(false);
  return root >= 0 && fstatat(root, value_path(key).text, &status, AT_SYMLINK_NOFOLLOW) == 0;
}

int write_value(const char* key, value_type type, std::string_view text) {
  if (key == nullptr || !valid_key(key)) {
    return VCONF_ERROR_NO_KEY;
  }
  int root = root_descriptor(true);
  for (int tried = 0; root >= 0 && tried < write_attempts; ++tried) {
    const attempt outcome = replace_value(root, key, type, text);
    if (outcome == attempt::done) {
      sweep_in_turn(root, key);
      hold_directory(root, key);
    }
    if (outcome != attempt::no_directory) {
      return outcome == attempt::done ? 0 : VCONF_ERROR_STORE;
    }
    if (root_was_removed(root)) {
      root = root_descriptor(true, true);
    }
    if (root >= 0 && !make_key_directory(root, key) && errno != ENOENT) {
      break;
    }
  }
  return VCONF_ERROR_STORE;
}

}  // namespace vconf
