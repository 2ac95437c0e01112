#include "common/meminfo_text.h"

#include <orv/meminfo.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>

namespace orv {
namespace {

constexpr ptrdiff_t name_size = 16;  // a name that does not fit with its NUL is not looked up

const char* find(char wanted, const char* from, const char* end) {
  const void* found = memchr(from, wanted, static_cast<size_t>(end - from));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

const char* next_line(const char* line, const char* end) {
  const char* const newline = find('\n', line, end);
  return newline != end ? newline + 1 : end;
}

// A line without a colon is a part of the next one's name.
const char* next_name(const char* name, const char* end) {
  return next_line(find(':', name, end), end);
}

// The row of the name that stands before the colon.
const meminfo_row* find_row(const char* name, const char* colon, const meminfo_row* table,
                            int count) {
  char key[name_size] = {};
  memcpy(key, name, static_cast<size_t>(colon - name));
  const auto* const end = table + count;
  const auto* const row = std::lower_bound(
      table, end, key,
      [](const meminfo_row& one, const char* other) { return strcmp(one.name, other) < 0; });
  return row != end && strcmp(row->name, key) == 0 ? row : nullptr;
}

// First letters; the few that share a bit are told apart by the whole name.
class letter_set {
 public:
  void add(char letter) { bits_ |= bit(letter); }
  [[nodiscard]] bool may_have(char letter) const { return (bits_ & bit(letter)) != 0; }

 private:
  static uint64_t bit(char letter) { return uint64_t{1} << (static_cast<unsigned>(letter) % 64U); }
  uint64_t bits_ = 0;
};

}  // namespace

void take_meminfo(char* text, const meminfo_row* table, int count) noexcept {
  count = std::max(count, 0);
  letter_set wanted;
  std::for_each(table, table + count, [&](const meminfo_row& row) { wanted.add(*row.name); });
  const char* const end = text + strlen(text);
  // Most lines are nobody's. That all before it had their colons is looked up where a wanted name
  // stands, and these are among the first.
  const char* name = text;
  for (const char* line = text; line != end; line = next_line(line, end)) {
    if (!wanted.may_have(*line)) {
      continue;
    }
    const char* const room = line + std::min(end - line, name_size);
    const char* const colon = find(':', line, room);
    const meminfo_row* const row = colon != room ? find_row(line, colon, table, count) : nullptr;
    if (row == nullptr) {
      continue;
    }
    while (name < line) {
      name = next_name(name, end);
    }
    if (name == line) {
      *row->slot = static_cast<uint32_t>(strtoul(colon + 1, nullptr, 10));
    }
  }
  *text = '\0';
}

}  // namespace orv
