// The camera's ps: with the agent's arguments it lists every thread with a stack pointer, which an
// ordinary ps cannot on a kernel of today. With any others it is the ordinary one, next in PATH.
// Left out: characters of more than one byte count by their bytes in the name's width.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

#include "next_in_path.h"
#include "procfs.h"
#include "task_row.h"
#include "task_stat.h"
#include "text.h"
#include "thread_stack.h"

namespace {

using namespace orv::camera;

bool asks_for_stack_pointers(int argc, char** argv) {
  return argc == 3 && std::string_view{argv[1]} == "-eLo" &&
         std::string_view{argv[2]} == "pid,tid,pcpu,esp,comm,state";
}

clock_reading read_clock() {
  const auto ticks_per_second = static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK));
  timespec now;
  clock_gettime(CLOCK_BOOTTIME, &now);  // as the kernel counts start times: suspended time included
  const auto seconds = static_cast<std::uint64_t>(now.tv_sec);
  const auto nanoseconds = static_cast<std::uint64_t>(now.tv_nsec);
  return {seconds * ticks_per_second + nanoseconds * ticks_per_second / 1'000'000'000,
          ticks_per_second};
}

int read_id_width() {
  constexpr int usual_width = 5;
  std::array<char, 32> buffer;
  auto largest = read_file(AT_FDCWD, "/proc/sys/kernel/pid_max", buffer);
  return largest ? static_cast<int>(take_word(*largest).size()) : usual_width;
}

class listing {
 public:
  explicit listing(FILE* out) : out_(out), id_width_(read_id_width()), clock_(read_clock()) {}

  void print_all(DIR* proc) const {
    print_header(out_, id_width_);
    while (const auto pid = next_id(proc)) print_process(proc, *pid);
  }

 private:
  // Processes and threads that end meanwhile are left out.
  void print_process(DIR* proc, pid_t pid) const {
    std::array<char, 32> path;
    snprintf(path.data(), path.size(), "%d/task", pid);
    const auto tasks = open_directory(dirfd(proc), path.data());
    if (!tasks) return;
    while (const auto tid = next_id(tasks.get())) print_thread(dirfd(tasks.get()), pid, *tid);
  }

  void print_thread(int tasks, pid_t pid, pid_t tid) const {
    std::array<char, 32> path;
    snprintf(path.data(), path.size(), "%d/stat", tid);
    std::array<char, 1024> buffer;
    const auto line = read_file(tasks, path.data(), buffer);
    const auto stat = line ? parse_task_stat(*line) : std::nullopt;
    if (!stat) return;
    const auto esp = esp_column(stack_address(tasks, pid, tid, *stat), stat->start_stack);
    print_row(out_, id_width_, pid, tid, esp, *stat, clock_);
  }

  FILE* out_;
  int id_width_;
  clock_reading clock_;
};

}  // namespace

int main(int argc, char** argv) {
  if (!asks_for_stack_pointers(argc, argv)) return exec_next_in_path("ps", argv);
  const auto proc = open_directory(AT_FDCWD, "/proc");
  if (!proc) {
    fprintf(stderr, "ps: /proc: %s\n", strerror(errno));
    return 1;
  }
  listing{stdout}.print_all(proc.get());
  if (fflush(stdout) != 0 || ferror(stdout) != 0) {
    fprintf(stderr, "ps: write error: %s\n", strerror(errno));
    return 1;
  }
  return 0;
}
