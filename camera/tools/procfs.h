// Reading procfs with few system calls: files relative to an open directory, one read a file.
#pragma once

#include <dirent.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace orv::camera {

struct closer {
  void operator()(FILE* file) const noexcept { fclose(file); }
  void operator()(DIR* directory) const noexcept { closedir(directory); }
};
template <class T>
using handle = std::unique_ptr<T, closer>;

class descriptor {
 public:
  explicit descriptor(int fd) : fd_(fd) {}
  ~descriptor() {
    if (fd_ >= 0) close(fd_);
  }
  descriptor(const descriptor&) = delete;
  descriptor& operator=(const descriptor&) = delete;

  explicit operator bool() const { return fd_ >= 0; }
  int get() const { return fd_; }

 private:
  int fd_;
};

// The directory `path` below `parent` (a descriptor or AT_FDCWD), null when it is not there (any
// more).
handle<DIR> open_directory(int parent, const char* path);

// The next entry that is named by a number, as processes and threads are; none at the end.
std::optional<pid_t> next_id(DIR* directory);

// What one read of the file yields, cut at the buffer's size; none when there is no such file, it
// is not for us to read, or its thread has ended.
std::optional<std::string_view> read_file(int parent, const char* path, std::span<char> buffer);

}  // namespace orv::camera
