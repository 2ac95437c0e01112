#include "handler/process_scan.h"

#include <fcntl.h>
#include <orv/health.h>

#include "common/bounded_text.h"
#include "common/descriptor.h"
#include "handler/entry_count.h"

namespace orv {
namespace {

constexpr size_t path_size = 40;
constexpr size_t stat_size = 512;

// What could be read of the stat file, up to the buffer's size.
std::string_view read_stat(const char* path, char (&buffer)[stat_size]) noexcept {
  const descriptor stat{open(path, O_RDONLY | O_CLOEXEC)};
  const ssize_t length = stat ? read(stat.get(), buffer, sizeof buffer) : -1;
  return {buffer, length > 0 ? static_cast<size_t>(length) : 0};
}

}  // namespace

process_scan::process_scan() noexcept : processes_{opendir("/proc")} {}

const char* process_scan::next_with(std::string_view text) noexcept {
  char buffer[stat_size];
  while (const dirent* entry = next_entry(processes_.get())) {
    char path_buffer[path_size];
    bounded_text path{path_buffer};
    const bool is_process = path.format("/proc/%s/stat", entry->d_name) &&
                            access(path.c_str(), F_OK) == 0 && IsDigit(entry->d_name) == 0;
    if (is_process && read_stat(path.c_str(), buffer).find(text) != std::string_view::npos) {
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
