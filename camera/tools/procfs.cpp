#include "procfs.h"

#include <fcntl.h>

#include "text.h"

namespace orv::camera {

handle<DIR> open_directory(int parent, const char* path) {
  const int fd = openat(parent, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return nullptr;
  handle<DIR> directory{fdopendir(fd)};
  if (!directory) close(fd);
  return directory;
}

std::optional<pid_t> next_id(DIR* directory) {
  while (const dirent* entry = readdir(directory)) {
    if (const auto id = to_number(entry->d_name)) return static_cast<pid_t>(*id);
  }
  return std::nullopt;
}

std::optional<std::string_view> read_file(int parent, const char* path, std::span<char> buffer) {
  const descriptor file{openat(parent, path, O_RDONLY | O_CLOEXEC)};
  if (!file) return std::nullopt;
  const ssize_t length = read(file.get(), buffer.data(), buffer.size());
  if (length < 0) return std::nullopt;
  return std::string_view{buffer.data(), static_cast<std::size_t>(length)};
}

}  // namespace orv::camera
