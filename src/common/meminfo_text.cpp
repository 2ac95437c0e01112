#include "common/meminfo_text.h"

#include <orv/meminfo.h>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

namespace orv {
namespace {

constexpr ptrdiff_t name_size = 16;  // a name that does not fit with its NUL is not looked up

// strcmp, inline: names mostly differ in their first letters, and there are fifty to look up.
int compare(const char* one, const char* other) {
  while (*one == *other && *one != '\0') {
    ++one;
    ++other;
  }
  return static_cast<unsigned char>(*one) - static_cast<unsigned char>(*other);
}

const meminfo_row* find_row(const char* name, const meminfo_row* table, int count) {
  int low = 0;
  int high = count;
  while (low < high) {
    const int middle = low + (high - low) / 2;
    const int order = compare(name, table[middle].name);
    if (order == 0) {
      return &table[middle];
    }
    if (order < 0) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return nullptr;
}

}  // namespace

void take_meminfo(char* text, const meminfo_row* table, int count) noexcept {
  // Many names need no search: their first letter lies outside of the table's.
  const auto letter = [](const char* name) { return static_cast<unsigned char>(*name); };
  const int first = count > 0 ? letter(table[0].name) : 1;
  const int last = count > 0 ? letter(table[count - 1].name) : 0;
  char* const end = text + strlen(text);
  while (true) {
    char* const colon = std::find(text, end, ':');
    if (colon == end) {
      return;
    }
    *colon = '\0';
    const bool wanted = colon - text < name_size && letter(text) >= first && letter(text) <= last;
    if (const meminfo_row* row = wanted ? find_row(text, table, count) : nullptr) {
      *row->slot = static_cast<uint32_t>(strtoul(colon + 1, nullptr, 10));
    }
    void* const newline = memchr(colon + 1, '\n', static_cast<size_t>(end - (colon + 1)));
    if (newline == nullptr) {
      return;
    }
    text = static_cast<char*>(newline) + 1;
  }
}

}  // namespace orv
