// Reading and replacing a key's value.
//
// The type's letter and then the value as text are the target of a symbolic link that points
// nowhere, which is made and read in one system call each; a long value is the content of a regular
// file. Anything else that has a value's name is refused without waiting for it.
// Neither changes once it has its name: a writer makes a temporary one in the key's directory and
// renames it, so a reader sees a whole value whatever moment a writer is killed at.
#ifndef ORV_VCONF_VALUE_FILE_H
#define ORV_VCONF_VALUE_FILE_H

#include <stdlib.h>

#include <memory>
#include <string_view>

namespace vconf {

enum class value_type : char { integer = 'i', text = 's' };

constexpr size_t max_value_size = size_t{1} << 20U;

struct free_deleter {
  void operator()(char* text) const noexcept { free(text); }
};
using owned_text = std::unique_ptr<char, free_deleter>;

// A short value and its terminating NUL have room here: reading it needs no memory.
constexpr size_t max_link_size = 1024;

struct value {
  value_type type;
  char short_text[max_link_size];
  owned_text long_text;  // null when the text is short

  [[nodiscard]] const char* text() const { return long_text ? long_text.get() : short_text; }
};

// 0 or a negative VCONF_ERROR.
int read_value(const char* key, value& result);
int write_value(const char* key, value_type type, std::string_view text);

bool has_value(const char* key);

// A descriptor of the checked root, shared by all calls, or -1. One line on standard error says why
// a root is refused, once a process. `again` looks the root up anew: it may have been removed.
int root_descriptor(bool make, bool again = false);

// Makes the key's directory with its parents; the root must be there.
bool make_key_directory(int root, std::string_view key);

}  // namespace vconf

#endif
