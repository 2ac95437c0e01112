// A connection to the X server whose failures never end the process.
//
// Xlib tells of errors through handlers of the whole process, and ends the process itself when the
// server goes away.
#ifndef ORV_HANDLER_X_CONNECTION_H
#define ORV_HANDLER_X_CONNECTION_H

#include <X11/Xlib.h>
#include <setjmp.h>
#include <signal.h>

#include <memory>

namespace orv {

struct display_closer {
  void operator()(Display* display) const noexcept { XCloseDisplay(display); }
};
using x_display = std::unique_ptr<Display, display_closer>;

// While it lives, errors of this thread's connection are noted and nothing more; those of other
// threads' connections reach the handlers that the host has set, which stand again afterwards. One
// at a time in the process.
class x_connection {
 public:
  x_connection() noexcept;
  x_connection(const x_connection&) = delete;
  x_connection& operator=(const x_connection&) = delete;
  ~x_connection();

  // Connects to the display of the environment, has `send` queue requests, which answers false when
  // it cannot, and closes the connection, which sends them and waits until the server has seen
  // them. True when all of that went well. `send` may be left in its midst, without its destructors
  // run.
  template <class Send>
  bool run(Send send) noexcept {
    x_display display = open();
    const bool queued = display && until_lost([&] { return send(display.get()); });
    display.reset();
    return queued && !failed_;
  }

 private:
  static int note_error(Display* display, XErrorEvent* event);
  static int note_loss(Display* display);

  x_display open() noexcept;

  // Runs the work, and leaves it by a jump when the server is lost: Xlib would go on to exit, and
  // the libraries above it would take replies for granted that never came.
  template <class Work>
  bool until_lost(Work work) noexcept {
    if (setjmp(escape_) != 0) {  // NOLINT(cert-err52-cpp): past frames of C and of `work`
      may_escape_ = false;
      return false;
    }
    may_escape_ = true;
    const bool done = work();
    may_escape_ = false;
    return done;
  }

  static thread_local x_connection* current;

  sigset_t host_signals_;
  jmp_buf escape_;
  bool may_escape_ = false;
  bool failed_ = false;
  Display* lost_ = nullptr;
};

}  // namespace orv

#endif
