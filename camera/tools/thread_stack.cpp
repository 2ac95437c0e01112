#include "thread_stack.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "procfs.h"
#include "text.h"

namespace orv::camera {
namespace {

std::optional<std::uint64_t> read_stack_pointer(int task_directory, pid_t tid) {
  std::array<char, 32> path;
  snprintf(path.data(), path.size(), "%d/syscall", tid);
  std::array<char, 256> buffer;
  const auto line = read_file(task_directory, path.data(), buffer);
  return line ? parse_stack_pointer(*line) : std::nullopt;
}

// The C library registers each thread's list of robust futexes with the kernel. The list's head
// lies in the thread's descriptor, and that at the base of the stack. The kernel tells it of
// running threads too, and where it refuses the stack pointer because we are no ancestor.
std::optional<std::uint64_t> robust_list_head(pid_t tid) {
  void* head = nullptr;
  std::size_t length = 0;
  if (syscall(SYS_get_robust_list, tid, &head, &length) != 0 || head == nullptr) {
    return std::nullopt;
  }
  return reinterpret_cast<std::uintptr_t>(head);
}

}  // namespace

std::optional<std::uint64_t> parse_stack_pointer(std::string_view line) {
  // "running", "-1 SP PC" outside a system call, or "NUMBER ARG1 ... ARG6 SP PC" in one.
  std::array<std::string_view, 9> word;
  std::size_t count = 0;
  while (count < word.size() && !(word[count] = take_word(line)).empty()) ++count;
  if (count != 3 && count != 9) return std::nullopt;
  std::string_view stack_pointer = word[count - 2];
  if (!stack_pointer.starts_with("0x")) return std::nullopt;
  stack_pointer.remove_prefix(2);
  return to_number(stack_pointer, 16);
}

std::optional<std::uint64_t> stack_address(int task_directory, pid_t pid, pid_t tid,
                                           const task_stat& stat) {
  if (const auto pointer = read_stack_pointer(task_directory, tid)) return pointer;
  // A first thread's descriptor is elsewhere; its stack is the process's.
  return tid == pid ? stat.start_stack : robust_list_head(tid);
}

}  // namespace orv::camera
