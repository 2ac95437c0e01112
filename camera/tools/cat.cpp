// The camera's cat: procfs maps files come as on a 32-bit camera, with 8-digit addresses, and a
// thread's own with its stack marked. With any other arguments it is the ordinary one, next in
// PATH. Left out: a process's maps file keeps the marks of today's kernels, that is only its first
// stack's.
#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "maps_line.h"
#include "next_in_path.h"
#include "procfs.h"
#include "task_stat.h"
#include "text.h"
#include "thread_stack.h"

namespace {

using namespace orv::camera;

struct line_buffer {  // getline's own
  line_buffer() = default;
  line_buffer(const line_buffer&) = delete;
  line_buffer& operator=(const line_buffer&) = delete;
  ~line_buffer() { free(text); }

  char* text = nullptr;
  std::size_t size = 0;
};

std::optional<std::uint64_t> read_stack_address(const maps_file& file) {
  std::array<char, 64> path;
  snprintf(path.data(), path.size(), "/proc/%.*s/task", static_cast<int>(file.pid.size()),
           file.pid.data());
  const descriptor tasks{open(path.data(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  const auto pid = to_number(file.pid), tid = to_number(*file.tid);
  if (!tasks || !pid || !tid) return std::nullopt;

  snprintf(path.data(), path.size(), "%d/stat", static_cast<pid_t>(*tid));
  std::array<char, 1024> buffer;
  const auto line = read_file(tasks.get(), path.data(), buffer);
  const auto stat = line ? parse_task_stat(*line) : std::nullopt;
  if (!stat) return std::nullopt;
  return stack_address(tasks.get(), static_cast<pid_t>(*pid), static_cast<pid_t>(*tid), *stat);
}

bool complain(const char* path) {
  fprintf(stderr, "cat: %s: %s\n", path, strerror(errno));
  return false;
}

bool print_maps(const char* path, const maps_file& file) {
  const handle<FILE> maps{fopen(path, "re")};
  if (!maps) return complain(path);
  const auto stack = file.tid ? read_stack_address(file) : std::nullopt;

  line_buffer line;
  ssize_t length = 0;
  while ((length = getline(&line.text, &line.size, maps.get())) > 0) {
    auto shown = parse_mapping({line.text, static_cast<std::size_t>(length)});
    if (!shown) continue;
    if (file.tid) shown->name = name_for_thread(*shown, stack);
    print_mapping(stdout, *shown);
  }
  return ferror(maps.get()) == 0 || complain(path);
}

bool names_maps_file(const char* path) {
  return parse_maps_path(path).has_value();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || !std::all_of(argv + 1, argv + argc, names_maps_file)) {
    return exec_next_in_path("cat", argv);
  }
  bool is_complete = true;
  for (char** path = argv + 1; *path != nullptr; ++path) {
    if (!print_maps(*path, *parse_maps_path(*path))) is_complete = false;
  }
  if (fflush(stdout) != 0 || ferror(stdout) != 0) is_complete = complain("write error");
  return is_complete ? 0 : 1;
}
