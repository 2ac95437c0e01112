// A file descriptor that closes itself.
#ifndef ORV_PLATFORM_DESCRIPTOR_H
#define ORV_PLATFORM_DESCRIPTOR_H

#include <unistd.h>

namespace platform {

class descriptor {
 public:
  explicit descriptor(int fd) : fd_{fd} {}
  descriptor(const descriptor&) = delete;
  descriptor& operator=(const descriptor&) = delete;
  ~descriptor() {
    if (fd_ >= 0) {
      close(fd_);
    }
  }
  [[nodiscard]] int get() const { return fd_; }
  explicit operator bool() const { return fd_ >= 0; }

 private:
  int fd_;
};

}  // namespace platform

#endif
