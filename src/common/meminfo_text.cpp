#include "common/meminfo_text.h"

#include <orv/meminfo.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

namespace orv {
namespace {

constexpr size_t name_size = 16;  // a name that does not fit with its NUL is not looked up

void store(const char* name, const char* number, const meminfo_row* table, int count) {
  const meminfo_row* end = table + count;
  const meminfo_row* row = std::lower_bound(
      table, end, name,
      [](const meminfo_row& one, const char* wanted) { return strcmp(one.name, wanted) < 0; });
  if (row != end && strcmp(row->name, name) == 0) {
    *row->slot = static_cast<uint32_t>(strtoul(number, nullptr, 10));
  }
}

}  // namespace

void take_meminfo(char* text, const meminfo_row* table, int count) noexcept {
  while (char* colon = strchr(text, ':')) {
    *colon = '\0';
    if (static_cast<size_t>(colon - text) < name_size) {
      store(text, colon + 1, table, count);
    }
    char* newline = strchr(colon + 1, '\n');
    if (newline == nullptr) {
      return;
    }
    text = newline + 1;
  }
}

}  // namespace orv
