// One command and its answer, over the store alone.
#ifndef ORV_TOOL_EXCHANGE_H
#define ORV_TOOL_EXCHANGE_H

#include <array>
#include <chrono>
#include <optional>
#include <string>

namespace orvctl {

struct command {
  int code;
  std::array<int, 4> parameters{};
  std::string data;
};

struct answer {
  int result;
  std::optional<std::string> text;
};

enum class exchange_error { none, no_answer, store_failed, busy };

struct exchange_outcome {
  exchange_error error;
  answer answered;  // when error is none
};

// Sends the command and waits for its own answer: not one that stood in the store before, nor the
// late one of an earlier command, nor a monitor's tick.
exchange_outcome exchange(const std::string& store, const command& sent,
                          std::chrono::milliseconds timeout);

}  // namespace orvctl

#endif
