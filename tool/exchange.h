// One command and its answer, over the store alone.
#ifndef ORV_TOOL_EXCHANGE_H
#define ORV_TOOL_EXCHANGE_H

#include <array>
#include <chrono>
#include <optional>
#include <string>

#include "tool_lock.h"

namespace orvctl {

struct command {
  int code;
  std::array<int, 4> parameters{};
  std::string data;
};

struct answer {
  int result;
  std::optional<std::string> text;
  bool overwritten = false;  // by a later result, before it was read: `result` may be that one
};

enum class exchange_error { none, no_answer, store_failed, busy, watched };

struct exchange_outcome {
  exchange_error error;
  answer answered;  // when error is none
};

// The tool's turn to send commands: while it lasts, no other tool sends any.
class turn {
 public:
  // Waits so long at most for the turn, and for each answer.
  turn(const std::string& store, std::chrono::milliseconds patience,
       std::chrono::milliseconds timeout);

  [[nodiscard]] bool held() const { return lock_.held(); }

  // Whether no late answer of an earlier command can come any more.
  [[nodiscard]] bool settled() const { return !lock_.answer_outstanding(); }
  // Makes it so, by a query, which overwrites the result data key.
  [[nodiscard]] exchange_error settle() const;

  // Sends the command and waits for its own answer: not one that stood in the store before, nor a
  // monitor's tick, nor, when settled, the late one of an earlier command.
  // `between_ticks`: the caller has followed the result keys and knows that no tick has written but
  // the first of them.
  [[nodiscard]] exchange_outcome ask(const command& sent, bool between_ticks = false) const;

 private:
  std::chrono::milliseconds timeout_;
  tool_lock lock_;
};

// One command in a turn of its own, settled first. A query waits until no watch has the packet; a
// command to the monitors is refused while a watch has them.
exchange_outcome exchange(const std::string& store, const command& sent,
                          std::chrono::milliseconds timeout);

}  // namespace orvctl

#endif
