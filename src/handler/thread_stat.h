// What a thread's stat file holds, as far as its health is told.
#ifndef ORV_HANDLER_THREAD_STAT_H
#define ORV_HANDLER_THREAD_STAT_H

#include <stddef.h>

#include <optional>

namespace orv {

inline constexpr size_t thread_name_size = 50;

struct thread_stat {
  const char* id;
  char name[thread_name_size];  // with its parentheses, blanks in it single
  char state;
  // The name's fields after the first. A blank goes before each of them, so there are fewer than
  // half as many as the name has characters.
  const char* name_tails[thread_name_size / 2];
  size_t tail_count;
};

// Splits the text at runs of blanks, in place; the line points into it. Empty for a text that has
// not three fields, or one of them too long: id and name have at most 49 characters, the state 9.
std::optional<thread_stat> split_thread_stat(char* text) noexcept;

}  // namespace orv

#endif
