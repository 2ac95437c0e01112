#include "handler/x_connection.h"

#include <dlfcn.h>
#include <time.h>
#include <unistd.h>

// NOLINTBEGIN(readability-redundant-declaration): weak here, whatever the header says
extern "C" {
// Xlib has it since 1.7.0; the header of an older one does not declare it.
[[gnu::weak]] void XSetIOErrorExitHandler(Display* display, void (*handler)(Display*, void*),
                                          void* user_data);
[[gnu::weak]] int XConnectionNumber(Display* display);
}
// NOLINTEND(readability-redundant-declaration)

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

// A host may have its own functions in place of Xlib's: what those call a display only they may
// look into. So further functions are called only if they are of the library that opened it.
template <class Function>
bool knows_displays(Function* function) {
  Dl_info opener{};
  Dl_info other{};
  return function != nullptr && dladdr(reinterpret_cast<void*>(XOpenDisplay), &opener) != 0 &&
         dladdr(reinterpret_cast<void*>(function), &other) != 0 &&
         opener.dli_fbase == other.dli_fbase;
}

// XCloseDisplay sends requests first, for which a display that was lost may have no buffer or no
// way back: it would crash or exit. The socket is closed, the display's memory is left.
void give_up(Display* lost) {
  if (knows_displays(XConnectionNumber)) {
    ::close(XConnectionNumber(lost));
  }
}

// In place of the handler that exits once the one for lost connections has returned.
void stay(Display* /*display*/, void* /*user_data*/) {}

}  // namespace

std::atomic<pthread_t> x_connection::owner{};
x_connection* x_connection::current = nullptr;

// Writing to a server that is gone raises SIGPIPE.
x_connection::x_connection() noexcept {
  current = this;
  owner = pthread_self();
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
  owner = pthread_t{};
}

x_connection* x_connection::of_this_thread() noexcept {
  return owner == pthread_self() ? current : nullptr;
}

// A display can be told not to exit only once it is open, and opening it takes several exchanges
// with the server.
Display* x_connection::open() noexcept {
  Display* display = nullptr;
  if (!until_lost([&] { return (display = XOpenDisplay(nullptr)) != nullptr; })) {
    return nullptr;
  }
  outlives_loss_ = knows_displays(XSetIOErrorExitHandler);
  if (outlives_loss_) {
    XSetIOErrorExitHandler(display, stay, nullptr);
  }
  return display;
}

// Closing sends what is queued, so that the server may be lost here as well.
void x_connection::close(Display* display) noexcept {
  const auto close_it = [&] { return XCloseDisplay(display), true; };
  if (outlives_loss_) {
    close_it();
    return;
  }
  if (display != nullptr && lost_ == nullptr) {
    until_lost(close_it);
  }
  if (lost_ != nullptr) {
    give_up(lost_);
  }
}

int x_connection::note_error(Display* display, XErrorEvent* event) {
  x_connection* const own = of_this_thread();
  if (own == nullptr) {
    const XErrorHandler host = host_error_handler;
    return host != nullptr ? host(display, event) : 0;
  }
  own->failed_ = true;
  return 0;
}

int x_connection::note_loss(Display* display) {
  x_connection* const own = of_this_thread();
  if (own == nullptr) {
    const XIOErrorHandler host = host_loss_handler;
    return host != nullptr ? host(display) : 0;
  }
  own->failed_ = true;
  own->lost_ = display;
  if (own->may_escape_) {
    longjmp(own->escape_, 1);  // NOLINT(cert-err52-cpp)
  }
  return 0;
}

}  // namespace orv
