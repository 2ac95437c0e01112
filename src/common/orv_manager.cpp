// The configuration-mode file.

#include <orv/config_mode.h>
#include <string.h>
#include <unistd.h>

#include <string_view>

#include "common/handle.h"
#include "common/log.h"

namespace orv {
namespace {

constexpr char config_file[] = "/sdcard/orv.conf";
constexpr size_t line_size = 80;

struct mode_row {
  const char* keyword;  // null: the end
  int mode;
};

constexpr mode_row modes[] = {
    {"normal", ORV_CONFIG_MODE_NORMAL},
    {"multi-lang-popup", ORV_CONFIG_MODE_MULTI_LANG_POPUP},
    {"multi-lang", ORV_CONFIG_MODE_MULTI_LANG},
    {nullptr, ORV_CONFIG_MODE_NORMAL},
};

// A keyword that stood behind a part of itself would never be found.
constexpr bool every_row_is_reached(const mode_row* rows) {
  for (const mode_row* later = rows; later->keyword != nullptr; ++later) {
    for (const mode_row* earlier = rows; earlier != later; ++earlier) {
      if (std::string_view{later->keyword}.find(earlier->keyword) != std::string_view::npos) {
        return false;
      }
    }
  }
  return true;
}
static_assert(every_row_is_reached(modes));

const mode_row* find_mode(const char* line) {
  const mode_row* row = modes;
  while (row->keyword != nullptr && strstr(line, row->keyword) == nullptr) {
    ++row;
  }
  return row;
}

// Leaves the line empty when there is nothing to read.
void read_first_line(char (&line)[line_size]) {
  const handle<FILE> file{closed_on_exec(fopen(config_file, "r"))};
  if (!file || fgets(line, line_size, file.get()) == nullptr) {
    line[0] = '\0';
  }
}

}  // namespace
}  // namespace orv

int orv_check_config_mode(int* mode) {
  orv_log_info(" orv_check_config_mode+\n");
  char line[orv::line_size] = {};
  if (access(orv::config_file, R_OK) == 0) {
    orv::read_first_line(line);
  } else {
    orv_log_info(" Could not access orv_file ===\n");
  }
  const orv::mode_row* found = orv::find_mode(line);
  if (mode != nullptr) {
    *mode = found->mode;
  }
  orv_log_info(" orv_check_config_mode-\n");
  return found->keyword != nullptr ? 1 : 0;
}
