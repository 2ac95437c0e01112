#include "common/bounded_text.h"

#include <stdarg.h>
#include <stdio.h>

namespace orv {

bool bounded_text::append(std::string_view piece) noexcept {
  if (piece.size() > room()) {
    return false;
  }
  piece.copy(buffer_ + size_, piece.size());
  size_ += piece.size();
  buffer_[size_] = '\0';
  return true;
}

bool bounded_text::format(const char* format, ...) noexcept {
  va_list arguments;
  va_start(arguments, format);
  const int length = vsnprintf(buffer_ + size_, room() + 1, format, arguments);
  va_end(arguments);
  if (length < 0 || static_cast<size_t>(length) > room()) {
    buffer_[size_] = '\0';
    return false;
  }
  size_ += static_cast<size_t>(length);
  return true;
}

size_t copy_cut(char* to, size_t size, std::string_view text) noexcept {
  const size_t length = text.copy(to, size - 1);
  to[length] = '\0';
  return length;
}

}  // namespace orv
