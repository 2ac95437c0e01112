#include "handler/thread_stat.h"

#include <string.h>

#include <string_view>

#include "common/bounded_text.h"

namespace orv {
namespace {

constexpr size_t id_size = 50;
constexpr size_t state_size = 10;

// Fields one after the other; null at the line's end, or for one that needs `size` bytes or more.
class field_splitter {
 public:
  explicit field_splitter(char* text) noexcept : text_{text} {}

  const char* next(size_t size) noexcept {
    const char* field = strtok_r(text_, " ", &rest_);
    text_ = nullptr;
    return field != nullptr && strlen(field) < size ? field : nullptr;
  }

 private:
  char* text_;
  char* rest_ = nullptr;
};

bool take_name(field_splitter& fields, thread_stat& line) noexcept {
  bounded_text name{line.name};
  const char* field = fields.next(sizeof line.name);
  if (field == nullptr || !name.append(field)) {
    return false;
  }
  while (name.view().back() != ')') {
    field = fields.next(sizeof line.name);
    if (field == nullptr || !name.append(" ") || !name.append(field)) {
      return false;
    }
    line.name_tails[line.tail_count++] = field;
  }
  return true;
}

}  // namespace

std::optional<thread_stat> split_thread_stat(char* text) noexcept {
  field_splitter fields{text};
  thread_stat line{};
  line.id = fields.next(id_size);
  if (line.id == nullptr || !take_name(fields, line)) {
    return std::nullopt;
  }
  const char* state = fields.next(state_size);
  if (state == nullptr) {
    return std::nullopt;
  }
  line.state = *state;
  return line;
}

}  // namespace orv
