#include "lock_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "../roster.h"
#include "directory.h"

namespace orv_client::store {
namespace {

constexpr char file_name[] = ".orv-tools";
constexpr auto retry_interval = milliseconds{5};

// A line of the file for each right, then one for the answers. A right's lock is on its line's
// first byte.
constexpr off_t line_size = 80;
constexpr const char* line_names[] = {"turn", "monitors", "packet", "wanting"};
constexpr off_t answers_line = line_size * 4;
constexpr char answers_format[] = "answers outstanding: %d";

constexpr off_t line_of(right which) {
  return line_size * static_cast<off_t>(which);
}

struct flock range(right which, short type) {
  struct flock lock {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = line_of(which);
  lock.l_len = 1;
  return lock;
}

// Padded to the whole line. What does not fit is cut.
void write_line(int fd, off_t at, const char* text) {
  char line[line_size + 1];
  snprintf(line, sizeof line, "%-*.*s", static_cast<int>(line_size) - 1,
           static_cast<int>(line_size) - 1, text);
  line[line_size - 1] = '\n';
  [[maybe_unused]] const ssize_t ignored = pwrite(fd, line, line_size, at);
}

// Formatted once a second: many commands fit into one. The C library's calendar would read the time
// zone's file first, although UTC needs none.
const char* utc_now() {
  using namespace std::chrono;
  static sys_seconds formatted{};
  static char text[32];
  const sys_seconds now = floor<seconds>(system_clock::now());
  if (now != formatted) {
    const sys_days day = floor<days>(now);
    const year_month_day date{day};
    const hh_mm_ss time{now - day};
    snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
             static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
             static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
             static_cast<int>(time.seconds().count()));
    formatted = now;
  }
  return text;
}

std::string fault_of(const struct stat& status) {
  if (!S_ISREG(status.st_mode)) {
    return "is no regular file";
  }
  if (status.st_uid != geteuid()) {
    return "belongs to user " + std::to_string(status.st_uid) + ", not to this one";
  }
  if (status.st_nlink > 1) {
    return "has " + std::to_string(status.st_nlink) + " links";
  }
  return (status.st_mode & (S_IRWXG | S_IRWXO)) != 0 ? "is open to others" : "";
}

std::string fault_of(int fd) {
  if (fd < 0) {
    return errno == ELOOP ? "is a symbolic link"
                          : std::string{"cannot be opened: "} + strerror(errno);
  }
  struct stat status {};
  return fstat(fd, &status) == 0 ? fault_of(status) : strerror(errno);
}

roster<claim> waiting;
source retry;
source soon;

}  // namespace

// The one loop in which rights are waited for.
class claims {
 public:
  static void add(claim& one) {
    if (!retry.pending()) {
      retry = source::every(retry_interval, look);
    }
    waiting.add(one);  // last: a claim whose making fails must not stay in there
  }
  static void remove(claim& one) {
    waiting.remove(one);
    if (waiting.empty()) {
      retry.cancel();
    }
  }
  static bool any(right which) {
    return waiting.any([which](const claim& one) { return one.which_ == which; });
  }
  static void look_soon(right which) {
    if (any(which)) {
      soon = source::after(milliseconds::zero(), look);
    }
  }
  static void look() {
    const auto now = steady_clock::now();
    waiting.for_each([now](claim& one) {
      const bool taken = one.file_.take_now(one.which_);
      if (taken || now >= one.end_) {
        const auto done = std::move(one.done_);
        remove(one);
        done(taken);
      }
    });
  }
};

lock_file::lock_file(const std::string& directory, std::string& why) {
  const int above = open_directory(directory, why);
  if (above < 0) {
    return;
  }
  fd_ = openat(above, file_name, O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
               S_IRUSR | S_IWUSR);
  const std::string fault = fault_of(fd_);
  close(above);
  if (!fault.empty()) {
    why = directory + "/" + file_name + " " + fault + "; remove it";
    close_file();
    return;
  }
  write_first_text();
}

lock_file::~lock_file() {
  close_file();
}

// Under the turn's lock, since whoever takes the turn next may write its own lines.
void lock_file::write_first_text() {
  struct stat status {};
  if (fstat(fd_, &status) != 0 || status.st_size != 0 || !set_lock(right::turn, F_WRLCK)) {
    return;
  }
  if (fstat(fd_, &status) == 0 && status.st_size == 0) {
    for (const right which : {right::turn, right::monitors, right::packet, right::wanting}) {
      write_line(fd_, line_of(which), line_names[static_cast<size_t>(which)]);
    }
    set_answers_outstanding(0);
  }
  set_lock(right::turn, F_UNLCK);
}

void lock_file::close_file() {
  if (fd_ >= 0) {
    close(std::exchange(fd_, -1));
  }
}

bool lock_file::in_place() const {
  struct stat status {};
  return fd_ >= 0 && fstat(fd_, &status) == 0 && status.st_nlink == 1;
}

bool lock_file::set_lock(right which, short type) {
  struct flock lock = range(which, type);
  return fcntl(fd_, F_OFD_SETLK, &lock) == 0;
}

bool lock_file::take_now(right which) {
  if (!set_lock(which, F_WRLCK)) {
    return false;
  }
  note_holder(which);
  return true;
}

bool lock_file::try_take(right which) {
  return !claims::any(which) && take_now(which);
}

bool lock_file::try_share(right which) {
  return set_lock(which, F_RDLCK);
}

void lock_file::release(right which) {
  set_lock(which, F_UNLCK);
  claims::look_soon(which);
}

bool lock_file::taken_by_others(right which) const {
  struct flock lock = range(which, F_WRLCK);
  return fcntl(fd_, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

void lock_file::note_holder(right which) const {
  char text[line_size];
  snprintf(text, sizeof text, "%-9s last taken by %d %.24s at %.20s",
           line_names[static_cast<size_t>(which)], static_cast<int>(getpid()),
           program_invocation_short_name, utc_now());
  write_line(fd_, line_of(which), text);
}

int lock_file::answers_outstanding() const {
  char line[line_size + 1]{};
  int answers = 0;
  return pread(fd_, line, line_size, answers_line) > 0 &&
                 sscanf(line, answers_format, &answers) == 1
             ? answers
             : 0;
}

void lock_file::set_answers_outstanding(int answers) {
  char text[line_size];
  snprintf(text, sizeof text, answers_format, answers);
  write_line(fd_, answers_line, text);
}

claim::claim(lock_file& file, right which, steady_clock::time_point end, function done)
    : file_{file}, which_{which}, end_{end}, done_{std::move(done)} {
  claims::add(*this);
}

claim::~claim() {
  claims::remove(*this);
}

}  // namespace orv_client::store
