#include "handler/process_scan.h"

#include <fcntl.h>
#include <orv/health.h>

#include "common/bounded_text.h"
#include "common/descriptor.h"

namespace orv {
namespace {

constexpr size_t path_size = 34;
constexpr size_t stat_size = 512;

// What could be read of the process's stat text, up to the buffer's size.
std::string_view read_stat(int proc, const char* process, char (&buffer)[stat_size]) noexcept {
  char path_buffer[path_size];
  bounded_text path{path_buffer};
  if (!path.append(process) || !path.append("/stat")) {
    return {};  // too long a name for a process
  }
  const descriptor stat{openat(proc, path.c_str(), O_RDONLY | O_CLOEXEC)};
  const ssize_t length = stat ? read(stat.get(), buffer, sizeof buffer) : -1;
  return {buffer, length > 0 ? static_cast<size_t>(length) : 0};
}

}  // namespace

process_scan::process_scan() noexcept : processes_{opendir("/proc")} {}

const char* process_scan::next_with(std::string_view text) noexcept {
  char buffer[stat_size];
  while (const dirent* entry = readdir(processes_.get())) {
    if (IsDigit(entry->d_name) == 0 &&
        read_stat(dirfd(processes_.get()), entry->d_name, buffer).find(text) !=
            std::string_view::npos) {
      return entry->d_name;
    }
  }
  return nullptr;
}

}  // namespace orv

int IsDigit(const char* text) {
  for (; *text != '\0'; ++text) {
    if (*text < '0' || *text > '9') {
      return -1;
    }
  }
  return 0;
}
