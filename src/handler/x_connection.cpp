#include "handler/x_connection.h"

#include <time.h>

#include <atomic>

// Last: its macros take names of the standard library.
#include <X11/Xlibint.h>

namespace orv {
namespace {

// The host's, while a connection lives. Another thread may come for them.
std::atomic<XErrorHandler> host_error_handler{nullptr};
std::atomic<XIOErrorHandler> host_loss_handler{nullptr};

sigset_t broken_pipe() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGPIPE);
  return signals;
}

// XCloseDisplay sends requests first, for which a display that was lost while it opened may have no
// buffer: it would crash. With this flag it believes that it has sent them, those too that free the
// screens' graphics contexts. No library above Xlib has heard of the display yet, so none is told
// that it goes.
void close_half_open(Display* display) {
  for (int i = 0; i < display->nscreens; ++i) {
    XFree(display->screens[i].default_gc);
  }
  display->flags = display->flags | XlibDisplayClosing;
  XCloseDisplay(display);
}

// In place of the handler that exits once the one for lost connections has returned.
void stay(Display* /*display*/, void* /*user_data*/) {}

}  // namespace

thread_local x_connection* x_connection::current = nullptr;

// Writing to a server that is gone raises SIGPIPE.
x_connection::x_connection() noexcept {
  current = this;
  const sigset_t blocked = broken_pipe();
  pthread_sigmask(SIG_BLOCK, &blocked, &host_signals_);
  host_error_handler = XSetErrorHandler(note_error);
  host_loss_handler = XSetIOErrorHandler(note_loss);
}

x_connection::~x_connection() {
  XSetIOErrorHandler(host_loss_handler);
  XSetErrorHandler(host_error_handler);
  // Not only after a failure that Xlib told: a server may go while the connection is set up.
  if (sigismember(&host_signals_, SIGPIPE) == 0) {
    const sigset_t raised = broken_pipe();
    const timespec at_once{};
    sigtimedwait(&raised, nullptr, &at_once);
  }
  pthread_sigmask(SIG_SETMASK, &host_signals_, nullptr);
  current = nullptr;
}

// A display can be told not to exit only once it is open, and opening it takes several exchanges
// with the server.
x_display x_connection::open() noexcept {
  Display* display = nullptr;
  if (!until_lost([&] { return (display = XOpenDisplay(nullptr)) != nullptr; })) {
    if (lost_ != nullptr) {
      close_half_open(lost_);
    }
    return nullptr;
  }
  XSetIOErrorExitHandler(display, stay, nullptr);
  return x_display{display};
}

int x_connection::note_error(Display* display, XErrorEvent* event) {
  if (current == nullptr) {
    const XErrorHandler host = host_error_handler;
    return host != nullptr ? host(display, event) : 0;
  }
  current->failed_ = true;
  return 0;
}

int x_connection::note_loss(Display* display) {
  if (current == nullptr) {
    const XIOErrorHandler host = host_loss_handler;
    return host != nullptr ? host(display) : 0;
  }
  current->failed_ = true;
  current->lost_ = display;
  if (current->may_escape_) {
    longjmp(current->escape_, 1);  // NOLINT(cert-err52-cpp)
  }
  return 0;
}

}  // namespace orv
