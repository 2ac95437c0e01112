// Which of the store's changes are the answer to a command.
//
// All changes of the watched keys arrive in the order in which they were made. A query's answer
// and a monitor's tick write the result data key and then the result key; any other answer writes
// the result key alone. So a result that follows a text belongs to that text, and the text shows
// whose it is.
#ifndef ORV_CLIENT_STORE_ANSWER_FILTER_H
#define ORV_CLIENT_STORE_ANSWER_FILTER_H

#include <stdint.h>

#include <optional>
#include <string>
#include <string_view>

#include "../commands.h"

namespace orv_client::store {

// Whether a text in the result data key is a monitors' packet.
bool is_packet(std::string_view text);

struct answer {
  int32_t result;
  std::optional<std::string> text;
};

class answer_filter {
 public:
  explicit answer_filter(const command& sent);

  // The command is about to be written, and no tick is half written. What came before answers
  // something else.
  void command_sent();
  // The result data key was written and now holds this text.
  void text_seen(std::optional<std::string> text);
  // The result key was written and now holds this number. The answer, once it is complete.
  std::optional<answer> result_seen(int32_t result);

 private:
  [[nodiscard]] bool is_own_text(std::string_view text) const;

  bool wants_text_;
  bool takes_any_;
  std::string_view text_start_;
  int results_left_;
  bool sent_ = false;
  bool text_pending_ = false;
  std::optional<std::string> text_;
};

}  // namespace orv_client::store

#endif
