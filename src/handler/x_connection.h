// A connection to the X server whose failures never end the process.
//
// Xlib tells of errors through handlers of the whole process, and ends the process itself when the
// server goes away.
#ifndef ORV_HANDLER_X_CONNECTION_H
#define ORV_HANDLER_X_CONNECTION_H

#include <X11/Xlib.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>

#include <atomic>

namespace orv {

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
    Display* const display = open();
    const bool queued = display != nullptr && until_lost([&] { return send(display); });
    close(display);
    return queued && !failed_;
  }

 private:
  static int note_error(Display* display, XErrorEvent* event);
  static int note_loss(Display* display);
  static x_connection* of_this_thread() noexcept;

  Display* open() noexcept;
  void close(Display* display) noexcept;

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

  // The owner is looked at first: no other thread may touch the connection. A thread-local pointer
  // would make the dynamic linker a library that the agent needs.
  static std::atomic<pthread_t> owner;
  static x_connection* current;

  sigset_t host_signals_;
  jmp_buf escape_;
  bool may_escape_ = false;
  bool outlives_loss_ = false;  // Xlib returns from the loss of the display, once that is open
  bool failed_ = false;
  Display* lost_ = nullptr;
};

}  // namespace orv

#endif
