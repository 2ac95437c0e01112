#include "tool_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

namespace orvctl {
namespace {

constexpr char lock_name[] = "/.orvctl";
constexpr auto retry_interval = std::chrono::milliseconds{5};

bool lock(int fd, std::chrono::milliseconds patience) {
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    std::this_thread::sleep_for(retry_interval);
  }
  return true;
}

}  // namespace

tool_lock::tool_lock(const std::string& store, std::chrono::milliseconds patience)
    : fd_{open((store + lock_name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
               S_IRUSR | S_IWUSR)},
      held_{fd_ >= 0 && lock(fd_, patience)} {}

tool_lock::~tool_lock() {
  if (fd_ >= 0) {
    close(fd_);
  }
}

bool tool_lock::answer_outstanding() const {
  struct stat status {};
  return fstat(fd_, &status) == 0 && status.st_size != 0;
}

void tool_lock::set_answer_outstanding(bool outstanding) const {
  [[maybe_unused]] const int ignored = ftruncate(fd_, outstanding ? 1 : 0);
}

}  // namespace orvctl
