// Work on the default GLib main context, and threads that hand work to it.
//
// All state of this library belongs to the thread that owns the default main context, for as long
// as it does. Sources that are made here run there, and let no exception out.
#ifndef ORV_CLIENT_LOOP_H
#define ORV_CLIENT_LOOP_H

#include <glib.h>
#include <stdint.h>

#include <chrono>
#include <functional>

namespace orv_client {

using steady_clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Until when something is waited for, and how long that was from the beginning, for messages.
struct time_limit {
  steady_clock::time_point end;
  uint32_t ms;

  static time_limit of(uint32_t ms) { return {steady_clock::now() + milliseconds{ms}, ms}; }
};

// Something to be done on the default main context; not at all once this is destroyed. What is done
// may destroy this.
class source {
 public:
  using action = std::function<void()>;

  source() = default;
  source(source&& from) noexcept;
  source& operator=(source&& from) noexcept;
  ~source();

  // Once.
  static source at(steady_clock::time_point when, action done);
  static source after(milliseconds wait, action done);
  // Once, when nothing is left that the store has to deliver: its source goes first.
  static source when_quiet(action done);
  // Again and again.
  static source every(milliseconds interval, action done);
  static source when_readable(int fd, action done);  // also at the end of what is read

  void cancel();
  [[nodiscard]] bool pending() const { return made_ != nullptr && !g_source_is_destroyed(made_); }

 private:
  explicit source(GSource* made) : made_{made} {}
  static source start(GSource* made, action done, bool once, int priority, GSourceFunc dispatcher);

  GSource* made_ = nullptr;
};

// Runs `work` on the default main context's thread before this returns; false if it threw.
bool run_on_loop(const source::action& work);

// The same, at once where the calling thread owns the context or no thread does, else later.
void post_to_loop(source::action work);

// Does now what other threads have posted; on the loop's thread.
void run_posted();

// Whether the calling thread runs a callback of the default main context, so that waiting for
// another callback would be for ever.
bool in_callback();

// What a calling thread waits for and the loop's thread brings about.
class completion {
 public:
  void complete();
  // Has the default main context run, by this thread or by the one that owns it, until it is
  // complete, or until `end` where another thread owns the context. Whether it is complete.
  bool wait(steady_clock::time_point end);

 private:
  bool complete_ = false;
};

// Around whatever runs on the loop's thread: hands this library's state over from the thread that
// owned the context before.
class loop_section {
 public:
  loop_section();
  loop_section(const loop_section&) = delete;
  loop_section& operator=(const loop_section&) = delete;
  ~loop_section();
};

}  // namespace orv_client

#endif
