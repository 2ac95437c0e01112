#include "packet_right.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

namespace orvctl {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr char file_name[] = "/.orvctl-packet";
constexpr auto retry_interval = milliseconds{5};

// Bytes of the file, each a lock of its own. Who wants the packet shares `wanting` from before it
// has it until after.
enum byte : off_t { monitors, packet, wanting };

flock range(byte which, short type) {
  struct flock lock {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = which;
  lock.l_len = 1;
  return lock;
}

bool set(int fd, byte which, short type) {
  struct flock lock = range(which, type);
  return fcntl(fd, F_OFD_SETLK, &lock) == 0;
}

bool take(int fd, byte which, milliseconds patience) {
  const auto deadline = steady_clock::now() + patience;
  while (!set(fd, which, F_WRLCK)) {
    if (steady_clock::now() >= deadline) {
      return false;
    }
    std::this_thread::sleep_for(retry_interval);
  }
  return true;
}

}  // namespace

packet_right::packet_right(const std::string& store)
    : fd_{open((store + file_name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
               S_IRUSR | S_IWUSR)} {}

packet_right::~packet_right() {
  if (fd_ >= 0) {
    close(fd_);
  }
}

bool packet_right::take_monitors(milliseconds patience) const {
  return take(fd_, monitors, patience);
}

bool packet_right::share_monitors() const {
  return set(fd_, monitors, F_RDLCK);
}

bool packet_right::take_packet(milliseconds patience) const {
  return set(fd_, wanting, F_RDLCK) && take(fd_, packet, patience);
}

bool packet_right::packet_wanted() const {
  struct flock lock = range(wanting, F_WRLCK);
  return fcntl(fd_, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

bool packet_right::lend_packet(milliseconds at_most, milliseconds patience) const {
  const auto end = steady_clock::now() + at_most;
  set(fd_, packet, F_UNLCK);
  while (packet_wanted() && steady_clock::now() < end) {
    std::this_thread::sleep_for(retry_interval);
  }
  return take(fd_, packet, patience);
}

}  // namespace orvctl
