// The camera that the user names, and what its answers mean for the exit status.
#ifndef ORV_TOOL_CAMERA_H
#define ORV_TOOL_CAMERA_H

#include <orv/client.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "exit_status.h"

namespace orvctl {

constexpr uint32_t usual_timeout_ms = 5000;
// Of what samples stacks: the target runs a shell command for each of its threads.
constexpr uint32_t stack_timeout_ms = 30000;

// What all subcommands share.
struct context {
  std::optional<std::string> address;  // none: the default
  std::optional<double> timeout_s;     // none: as usual
  bool json = false;
  output out;

  [[nodiscard]] uint32_t timeout_ms(uint32_t usual_ms = usual_timeout_ms) const;
};

struct reply_freer {
  void operator()(orv_reply* found) const noexcept { orv_reply_free(found); }
};
// Null where there was no memory for one.
using reply = std::unique_ptr<orv_reply, reply_freer>;

// Prints why there is no answer. The status.
exit_status refuse(const orv_reply* found);

// True when the agent answered what its command answers; then `->` is the reply.
class answer {
 public:
  explicit answer(reply found) : found_{std::move(found)} {}

  explicit operator bool() const { return found_ && found_->why == ORV_WHY_NONE; }
  [[nodiscard]] const orv_reply* get() const { return found_.get(); }
  const orv_reply* operator->() const { return found_.get(); }
  [[nodiscard]] exit_status status() const { return status_of(found_.get()); }

 private:
  reply found_;
};

class camera {
 public:
  explicit camera(const context& shared);

  // Null when it could not be opened; `failure` then says why.
  [[nodiscard]] orv_camera* get() const { return opened_.get(); }
  [[nodiscard]] const orv_reply* failure() const { return failure_.get(); }

  // Where it could not be opened, the reply is that failure, once.
  [[nodiscard]] reply send(const orv_request& request, uint32_t timeout_ms);
  // The same, and prints why there is no answer.
  [[nodiscard]] answer ask(const orv_request& request, uint32_t timeout_ms);

 private:
  struct closer {
    void operator()(orv_camera* opened) const noexcept { orv_camera_close(opened); }
  };

  reply failure_;
  std::unique_ptr<orv_camera, closer> opened_;
};

}  // namespace orvctl

#endif
