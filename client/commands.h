// The agent's commands, and what each one answers with.
#ifndef ORV_CLIENT_COMMANDS_H
#define ORV_CLIENT_COMMANDS_H

#include <stdint.h>

#include <array>
#include <string>
#include <string_view>

namespace orv_client {

struct command {
  int32_t code;
  std::array<int32_t, 4> parameters{};
  std::string data = {};
};

enum class answer_kind {
  none,    // accepted without an answer
  result,  // the result key alone
  text,    // the result data key, then the result key
  unknown  // a code that no row describes
};

struct command_row {
  const char* name;
  int32_t code;
  answer_kind answers_with;
  std::string_view text_start;  // of every text answer; empty where it may begin anyhow
};

// The code's row, or one with answer_kind::unknown and an empty name.
command_row describe(int32_t code);

// Whether a text begins like the answers of a query whose answers all begin alike.
bool begins_like_a_query(std::string_view text);

// "0x208 (target_info)"
std::string to_text(int32_t code);

}  // namespace orv_client

#endif
