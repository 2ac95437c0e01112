// The agent's commands as a user names them, and what each one answers with.
#ifndef ORV_TOOL_COMMAND_NAMES_H
#define ORV_TOOL_COMMAND_NAMES_H

#include <optional>
#include <string>
#include <string_view>

namespace orvctl {

enum class reply {
  none,    // accepted without an answer
  result,  // the result key alone
  text,    // the result data key, then the result key
  unknown  // a code that this tool has no row for
};

struct command_name {
  int code;
  std::string_view name;
  reply answers_with;
  std::string_view text_start;  // how every text answer begins, empty where it may begin anyhow
};

// A name, or a code in decimal or hexadecimal (0x...). Empty when it is neither.
std::optional<int> parse_code(std::string_view text);

// The row of the code, or a row of its own with reply::unknown.
command_name describe(int code);

// Whether a text answer begins as those of a query with a beginning of its own.
bool begins_like_a_query(std::string_view text);

// "0x208 (target_info)"
std::string to_text(int code);

// All names, for help.
std::string name_list();

}  // namespace orvctl

#endif
