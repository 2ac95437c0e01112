// Text with a bound: pieces go in whole or not at all, and the caller learns which; a copy may be
// cut.
#ifndef ORV_COMMON_BOUNDED_TEXT_H
#define ORV_COMMON_BOUNDED_TEXT_H

#include <stddef.h>

#include <string_view>

namespace orv {

// Builds a NUL-terminated text in the caller's buffer of `size` bytes, NUL included; size > 0.
class bounded_text {
 public:
  bounded_text(char* buffer, size_t size) noexcept : buffer_{buffer}, room_{size - 1} {
    buffer_[0] = '\0';
  }
  template <size_t N>
  explicit bounded_text(char (&buffer)[N]) noexcept : bounded_text{buffer, N} {}

  // False, and the text as before, when the piece does not fit.
  bool append(std::string_view piece) noexcept;
  bool format(const char* format, ...) noexcept __attribute__((format(printf, 2, 3)));

  [[nodiscard]] size_t size() const noexcept { return size_; }
  [[nodiscard]] size_t room() const noexcept { return room_ - size_; }
  [[nodiscard]] const char* c_str() const noexcept { return buffer_; }
  [[nodiscard]] std::string_view view() const noexcept { return {buffer_, size_}; }

 private:
  char* buffer_;
  size_t room_;
  size_t size_ = 0;
};

// Copies what fits, followed by a NUL, and returns its length.
size_t copy_cut(char* to, size_t size, std::string_view text) noexcept;
template <size_t N>
size_t copy_cut(char (&to)[N], std::string_view text) noexcept {
  return copy_cut(to, N, text);
}

}  // namespace orv

#endif
