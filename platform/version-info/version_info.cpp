#include "version_info.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <span>
#include <string_view>

#include "descriptor.h"
#include "platform_root.h"

namespace {

struct version_texts {
  char project[256] = "LUMEN-ONE";
  char board[256] = "EVT2";
  char firmware[256] = "LUMEN-ONE_1.04.2_20260830";
};

void take(std::string_view line, std::string_view name, char (&text)[256]) {
  if (line.starts_with(name)) {
    const std::string_view value = line.substr(name.size());
    text[value.copy(text, sizeof text - 1)] = '\0';
  }
}

// The file's beginning, as much as there is room for; empty when there is no such file. A fifo
// under this name would otherwise be waited for.
std::string_view read_version_file(std::span<char> room) {
  platform::root_check why{};
  const platform::descriptor root{platform::open_root(false, why)};
  constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const platform::descriptor file{root ? openat(root.get(), "version-info", flags) : -1};
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return {};
  }
  const ssize_t size = read(file.get(), room.data(), room.size());
  return {room.data(), size > 0 ? static_cast<size_t>(size) : 0};
}

version_texts read_texts() {
  version_texts texts;
  char room[4096];
  std::string_view rest = read_version_file(room);
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    take(line, "project=", texts.project);
    take(line, "board=", texts.board);
    take(line, "firmware=", texts.firmware);
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  return texts;
}

const version_texts& texts() {
  static const version_texts read_once = read_texts();
  return read_once;
}

}  // namespace

const char* get_project_name(void) {
  return texts().project;
}
const char* get_board_version_name(void) {
  return texts().board;
}
const char* get_fw_version_full(void) {
  return texts().firmware;
}
