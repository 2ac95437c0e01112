// A file descriptor that closes itself.
#ifndef ORV_COMMON_DESCRIPTOR_H
#define ORV_COMMON_DESCRIPTOR_H

#include <unistd.h>

namespace orv {

class descriptor {
 public:
  explicit descriptor(int fd) noexcept : fd_{fd} {}
  descriptor(const descriptor&) = delete;
  descriptor& operator=(const descriptor&) = delete;
  ~descriptor() {
    if (fd_ >= 0) {
      close(fd_);
    }
  }
  [[nodiscard]] int get() const noexcept { return fd_; }
  explicit operator bool() const noexcept { return fd_ >= 0; }

 private:
  int fd_;
};

}  // namespace orv

#endif
