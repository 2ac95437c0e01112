#include "version_info.h"

#include <fcntl.h>
#include <stdio.h>
#include <string.h>

#include <memory>
#include <string_view>

#include "descriptor.h"
#include "platform_root.h"

namespace {

struct version_texts {
  char project[256] = "LUMEN-ONE";
  char board[256] = "EVT2";
  char firmware[256] = "LUMEN-ONE_1.04.2_20260830";
};

struct closer {
  void operator()(FILE* file) const noexcept { fclose(file); }
};

void take(std::string_view line, std::string_view name, char (&text)[256]) {
  if (line.ends_with('\n')) {
    line.remove_suffix(1);
  }
  if (line.starts_with(name)) {
    const std::string_view value = line.substr(name.size());
    text[value.copy(text, sizeof text - 1)] = '\0';
  }
}

std::unique_ptr<FILE, closer> open_version_file() {
  platform::root_check why{};
  const platform::descriptor root{platform::open_root(false, why)};
  const int fd = root ? openat(root.get(), "version-info", O_RDONLY | O_CLOEXEC) : -1;
  return std::unique_ptr<FILE, closer>{fd >= 0 ? fdopen(fd, "r") : nullptr};
}

version_texts read_texts() {
  version_texts texts;
  const auto file = open_version_file();
  char line[300];
  while (file && fgets(line, sizeof line, file.get()) != nullptr) {
    take(line, "project=", texts.project);
    take(line, "board=", texts.board);
    take(line, "firmware=", texts.firmware);
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
