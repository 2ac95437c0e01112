// liborv-client for C++17: handles that release themselves, and functions as callbacks.
//
// All that is said in client.h holds here as well. A function that is given for a reply, a watch
// or a log is kept until its last call, runs on the thread of the default GLib main context and
// may not throw. What cannot be opened or made is an exception; how a request ended never is.
// Header only: it is compiled into the program.
#ifndef ORV_CLIENT_HPP
#define ORV_CLIENT_HPP

#include <orv/client.h>

#include <chrono>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace orv::client {

using milliseconds = std::chrono::milliseconds;

// The camera could not be opened.
class open_error : public std::runtime_error {
 public:
  open_error(orv_why why, const char* message) : std::runtime_error{message}, why_{why} {}
  [[nodiscard]] orv_why why() const noexcept { return why_; }

 private:
  orv_why why_;
};

struct thread_range {
  const orv_thread* first;
  const orv_thread* last;
  [[nodiscard]] const orv_thread* begin() const noexcept { return first; }
  [[nodiscard]] const orv_thread* end() const noexcept { return last; }
};

// Of a threads request; empty for any other reply.
inline thread_range threads_of(const orv_reply& reply) noexcept {
  const orv_threads* all = reply.threads;
  return all != nullptr ? thread_range{all->list, all->list + all->listed}
                        : thread_range{nullptr, nullptr};
}

// Whether the agent ran it, and with success.
inline bool succeeded(const orv_reply& reply) noexcept {
  return reply.outcome == ORV_RAN && reply.why == ORV_WHY_NONE && reply.result == 0;
}

// What a call that waits returns.
class reply {
 public:
  explicit reply(orv_reply* owned) : owned_{owned} {
    if (!owned_) {
      throw std::bad_alloc{};
    }
  }
  const orv_reply& operator*() const noexcept { return *owned_; }
  const orv_reply* operator->() const noexcept { return owned_.get(); }
  [[nodiscard]] bool succeeded() const noexcept { return client::succeeded(*owned_); }
  [[nodiscard]] thread_range threads() const noexcept { return threads_of(*owned_); }

 private:
  struct freer {
    void operator()(orv_reply* one) const noexcept { orv_reply_free(one); }
  };
  std::unique_ptr<orv_reply, freer> owned_;
};

using reply_function = std::function<void(const orv_reply&)>;
using event_function = std::function<void(const orv_watch_event&)>;
// As orv_log_fn: at the end `line` is null.
using line_function = std::function<void(const char* line, const char* message)>;

namespace detail {

// What a watch's or a log's callback is given. The handle may go first; it then reports nothing.
template <class Session, class Function>
struct session_state {
  Function function;
  Session* session = nullptr;  // until its last event
  bool silent = false;
};

template <class Session, class Function, void (*stop_session)(Session*)>
class session {
 public:
  session(session&&) noexcept = default;
  session& operator=(session&& from) noexcept {
    session gone{std::move(*this)};
    state_ = std::move(from.state_);
    return *this;
  }
  ~session() {
    if (running()) {
      state_->silent = true;
      stop();
    }
  }

  // Its last event is still to come.
  [[nodiscard]] bool running() const noexcept { return state_ && state_->session != nullptr; }
  // Begins the end; its events go on until then.
  void stop() const {
    if (running()) {
      stop_session(state_->session);
    }
  }

 protected:
  using state = session_state<Session, Function>;

  template <class Start>
  session(Function function, Start start)
      : state_{std::make_shared<state>(state{std::move(function)})} {
    auto kept = std::make_unique<std::shared_ptr<state>>(state_);
    state_->session = start(kept.get());
    if (state_->session == nullptr) {
      throw std::bad_alloc{};
    }
    static_cast<void>(kept.release());
  }

  // `last`: nothing follows, and what was kept goes.
  template <class... Event>
  static void report(void* kept, bool last, const Event&... event) noexcept {
    auto* owner = static_cast<std::shared_ptr<state>*>(kept);
    const std::shared_ptr<state> one = *owner;
    if (last) {
      one->session = nullptr;
      delete owner;
    }
    if (!one->silent && one->function) {
      one->function(event...);
    }
  }

 private:
  std::shared_ptr<state> state_;
};

}  // namespace detail

// Closed when it goes; what is in flight then gets its last call before.
class camera {
 public:
  explicit camera(const char* address = nullptr) {
    orv_reply* failure = nullptr;
    owned_.reset(orv_camera_open(address, &failure));
    if (!owned_) {
      const reply why{failure};
      throw open_error{why->why, why->message};
    }
  }
  explicit camera(const std::string& address) : camera{address.c_str()} {}

  [[nodiscard]] orv_camera* get() const noexcept { return owned_.get(); }

  [[nodiscard]] reply ask(const orv_request& request, milliseconds timeout) const {
    return reply{orv_ask(get(), &request, static_cast<uint32_t>(timeout.count()))};
  }

  void send(const orv_request& request, milliseconds timeout, reply_function on_reply) const {
    auto kept = std::make_unique<reply_function>(std::move(on_reply));
    orv_send(get(), &request, static_cast<uint32_t>(timeout.count()), replied, kept.release());
  }

  // Both wait for the end.
  [[nodiscard]] reply watch_for(
      const orv_watch_options& options, milliseconds duration,
      std::function<void(orv_watch*, const orv_watch_event&)> on_event) const {
    return reply{orv_watch_for(get(), &options, static_cast<uint64_t>(duration.count()), happened,
                               &on_event)};
  }
  [[nodiscard]] reply read_log(line_function on_line) const {
    return reply{orv_log_read(get(), 0, line_came, &on_line)};
  }

 private:
  static void replied(const orv_reply* one, void* kept) noexcept {
    const std::unique_ptr<reply_function> function{static_cast<reply_function*>(kept)};
    if (*function) {
      (*function)(*one);
    }
  }
  static void happened(orv_watch* watch, const orv_watch_event* event, void* function) noexcept {
    (*static_cast<std::function<void(orv_watch*, const orv_watch_event&)>*>(function))(watch,
                                                                                       *event);
  }
  static void line_came(orv_log*, const char* line, const char* message, void* function) noexcept {
    (*static_cast<line_function*>(function))(line, message);
  }

  struct closer {
    void operator()(orv_camera* one) const noexcept { orv_camera_close(one); }
  };
  std::unique_ptr<orv_camera, closer> owned_;
};

// A watch of the monitors, and below the log as it grows. They are made and destroyed on the thread
// of the default main context, before or after their camera; what is still running is then stopped,
// and its function is not called any more.
class watch : public detail::session<orv_watch, event_function, orv_watch_stop> {
 public:
  watch(const camera& of, const orv_watch_options& options, event_function on_event)
      : session{std::move(on_event),
                [&](void* kept) { return orv_watch_start(of.get(), &options, happened, kept); }} {}

  // A set of ORV_MONITOR_*; all else is the library's choice.
  watch(const camera& of, uint32_t monitors, event_function on_event)
      : watch{of, orv_watch_options{monitors, 0, 0, 0}, std::move(on_event)} {}

 private:
  static void happened(orv_watch*, const orv_watch_event* event, void* kept) noexcept {
    report(kept, event->kind == ORV_WATCH_ENDED, *event);
  }
};

class log : public detail::session<orv_log, line_function, orv_log_stop> {
 public:
  log(const camera& of, line_function on_line)
      : session{std::move(on_line),
                [&](void* kept) { return orv_log_start(of.get(), 1, line_came, kept); }} {}

 private:
  static void line_came(orv_log*, const char* line, const char* message, void* kept) noexcept {
    report(kept, line == nullptr, line, message);
  }
};

}  // namespace orv::client

#endif
