#include "common/thread_lister.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orv {
namespace {

constexpr char lister_file[] = "/tmp/stackmon";
constexpr char lister_command[] = "ps -eLo pid,tid,pcpu,esp,comm,state > /tmp/stackmon";

// With NUL: what is longer is read, and taken, in pieces.
constexpr size_t piece_size = 82;

// The shell's ">" follows a link and writes into whatever stands at the path. Whoever can write to
// /tmp may plant something there, but cannot move a new file of our own away: /tmp is sticky.
bool make_lister_file() {
  remove(lister_file);
  const int fd = open(lister_file, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (fd < 0) {
    return false;
  }
  close(fd);
  return true;
}

handle<FILE> open_lister_file() {
  const int fd = open(lister_file, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) {
    return nullptr;
  }
  handle<FILE> file{fdopen(fd, "r")};
  if (!file) {
    close(fd);
  }
  return file;
}

handle<FILE> list_threads() {
  if (!make_lister_file()) {
    return nullptr;
  }
  // What it wrote counts, not how it ended.
  [[maybe_unused]] const int status = system(lister_command);
  return open_lister_file();
}

}  // namespace

thread_listing::thread_listing() noexcept : file_{list_threads()} {}

std::optional<listed_thread> thread_listing::next() noexcept {
  char piece[piece_size];
  while (file_ && taken_ < max_listed_threads && fgets(piece, sizeof piece, file_.get())) {
    if (const auto thread = parse_thread(piece)) {
      ++taken_;
      return thread;
    }
  }
  return std::nullopt;
}

}  // namespace orv
