#include "handler/x_guard.h"

#include <time.h>

#include <atomic>

namespace orv {
namespace {

// The host's, while a guard lives. Another thread may come for them.
std::atomic<XErrorHandler> host_error{nullptr};
std::atomic<XIOErrorHandler> host_io_error{nullptr};

sigset_t broken_pipe() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  return signals;
}

// Without it, Xlib exits once the handler for lost connections has returned.
void stay(Display* /*display*/, void* /*user_data*/) {}

}  // namespace

thread_local x_guard* x_guard::active = nullptr;

// A write to a server that is gone raises SIGPIPE.
x_guard::x_guard() noexcept {
  active = this;
  const sigset_t blocked = broken_pipe();
  pthread_sigmask(SIG_BLOCK, &blocked, &host_signals_);
  host_error = XSetErrorHandler(error);
  host_io_error = XSetIOErrorHandler(io_error);
}

x_guard::~x_guard() {
  XSetIOErrorHandler(host_io_error);
  XSetErrorHandler(host_error);
  if (failed_ && sigismember(&host_signals_, SIGPIPE) == 0) {
    const sigset_t raised = broken_pipe();
    const timespec at_once{};
    sigtimedwait(&raised, nullptr, &at_once);
  }
  pthread_sigmask(SIG_SETMASK, &host_signals_, nullptr);
  active = nullptr;
}

x_display x_guard::open() noexcept {
  opening_ = true;
  x_display display{open_or_escape()};
  opening_ = false;
  if (display) {
    XSetIOErrorExitHandler(display.get(), stay, nullptr);
  }
  if (failed_) {
    display.reset();
  }
  return display;
}

// A display can be told not to exit only once it is open, and opening it takes several exchanges
// with the server. If the server is lost between them, a jump is the only way out.
Display* x_guard::open_or_escape() noexcept {
  if (setjmp(escape_) != 0) {  // NOLINT(cert-err52-cpp): past C functions only
    return half_open_;
  }
  return XOpenDisplay(nullptr);
}

int x_guard::error(Display* display, XErrorEvent* event) {
  if (active == nullptr) {
    const XErrorHandler host = host_error;
    return host != nullptr ? host(display, event) : 0;
  }
  active->failed_ = true;
  return 0;
}

int x_guard::io_error(Display* display) {
  if (active == nullptr) {
    const XIOErrorHandler host = host_io_error;
    return host != nullptr ? host(display) : 0;
  }
  active->failed_ = true;
  if (active->opening_) {
    active->half_open_ = display;
    longjmp(active->escape_, 1);  // NOLINT(cert-err52-cpp)
  }
  return 0;
}

}  // namespace orv
