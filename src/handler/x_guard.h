// A connection to the X server whose failures never end the process.
//
// Xlib tells of errors through handlers of the whole process, and ends the process itself when the
// server goes away.
#ifndef ORV_HANDLER_X_GUARD_H
#define ORV_HANDLER_X_GUARD_H

#include <X11/Xlib.h>
#include <setjmp.h>
#include <signal.h>

#include <memory>

namespace orv {

struct display_closer {
  void operator()(Display* display) const noexcept { XCloseDisplay(display); }
};
using x_display = std::unique_ptr<Display, display_closer>;

// While it lives, errors of this thread's connections are noted and nothing more; those of other
// threads reach the handlers that the host has set, which stand again afterwards. One at a time in
// the process; a display opened through it is closed before it ends.
class x_guard {
 public:
  x_guard() noexcept;
  x_guard(const x_guard&) = delete;
  x_guard& operator=(const x_guard&) = delete;
  ~x_guard();

  // Connects to the display of the environment; null when it cannot be reached or is lost
  // meanwhile.
  [[nodiscard]] x_display open() noexcept;

  // Whether the server has refused a request, or was lost.
  [[nodiscard]] bool failed() const noexcept { return failed_; }

 private:
  static int error(Display* display, XErrorEvent* event);
  static int io_error(Display* display);

  Display* open_or_escape() noexcept;

  static thread_local x_guard* active;

  sigset_t host_signals_;
  jmp_buf escape_;
  bool opening_ = false;
  Display* half_open_ = nullptr;
  bool failed_ = false;
};

}  // namespace orv

#endif
