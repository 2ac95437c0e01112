#include "loop.h"

#include <glib-unix.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace orv_client {
namespace {

// How long a thread waits for the context's owner before it looks whether there is still one.
constexpr auto owner_check_interval = milliseconds{50};

std::mutex room;
std::condition_variable changed;    // a completion, or the context was given back
std::deque<source::action> posted;  // by threads that do not own the context

struct task {
  source::action run;
  bool once;
};

// What is left undone by an exception, which is one of memory, ends at its time limit.
bool run_safely(const source::action& work) noexcept {
  try {
    work();
    return true;
  } catch (...) {
    return false;
  }
}

gboolean dispatch(gpointer data) {
  const loop_section in_loop;
  const auto* one = static_cast<const task*>(data);
  run_safely(one->run);
  return one->once ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
}

gboolean dispatch_readable(gint /*fd*/, GIOCondition /*condition*/, gpointer data) {
  return dispatch(data);
}

void delete_task(gpointer data) {
  delete static_cast<task*>(data);
}

guint until(steady_clock::time_point when) {
  const auto left = std::chrono::ceil<milliseconds>(when - steady_clock::now());
  return static_cast<guint>(std::max<int64_t>(left.count(), 0));
}

// The default main context, owned by this thread while this lives, if no other thread owns it.
class ownership {
 public:
  ownership() : owned_{g_main_context_acquire(nullptr) != FALSE} {}
  ownership(const ownership&) = delete;
  ownership& operator=(const ownership&) = delete;
  ~ownership() {
    if (owned_) {
      g_main_context_release(nullptr);
      const std::lock_guard lock{room};
      changed.notify_all();
    }
  }
  explicit operator bool() const { return owned_; }

 private:
  bool owned_;
};

gboolean run_posted_later(gpointer /*none*/) {
  const loop_section in_loop;
  run_posted();
  return G_SOURCE_REMOVE;
}

void post(source::action work) {
  {
    const std::lock_guard lock{room};
    posted.push_back(std::move(work));
  }
  g_idle_add_full(G_PRIORITY_DEFAULT, run_posted_later, nullptr, nullptr);
}

}  // namespace

loop_section::loop_section() {
  const std::lock_guard lock{room};
}

loop_section::~loop_section() {
  const std::lock_guard lock{room};
}

source::source(source&& from) noexcept : made_{std::exchange(from.made_, nullptr)} {}

source& source::operator=(source&& from) noexcept {
  if (this != &from) {
    cancel();
    made_ = std::exchange(from.made_, nullptr);
  }
  return *this;
}

source::~source() {
  cancel();
}

void source::cancel() {
  if (GSource* made = std::exchange(made_, nullptr)) {
    g_source_destroy(made);
    g_source_unref(made);
  }
}

source source::start(GSource* made, action done, bool once, int priority, GSourceFunc dispatcher) {
  source started{made};
  g_source_set_callback(made, dispatcher, new task{std::move(done), once}, delete_task);
  g_source_set_priority(made, priority);
  g_source_attach(made, nullptr);
  return started;
}

source source::at(steady_clock::time_point when, action done) {
  return start(g_timeout_source_new(until(when)), std::move(done), true, G_PRIORITY_DEFAULT,
               dispatch);
}

source source::after(milliseconds wait, action done) {
  return at(steady_clock::now() + wait, std::move(done));
}

// The context dispatches it only when no source of a higher priority was ready: the store's is of
// the default priority.
source source::when_quiet(action done) {
  return start(g_idle_source_new(), std::move(done), true, G_PRIORITY_HIGH_IDLE, dispatch);
}

source source::every(milliseconds interval, action done) {
  return start(g_timeout_source_new(static_cast<guint>(interval.count())), std::move(done), false,
               G_PRIORITY_DEFAULT, dispatch);
}

source source::when_readable(int fd, action done) {
  constexpr auto readable = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR);
  return start(g_unix_fd_source_new(fd, readable), std::move(done), false, G_PRIORITY_DEFAULT,
               G_SOURCE_FUNC(dispatch_readable));
}

void run_posted() {
  std::unique_lock lock{room};
  while (!posted.empty()) {
    source::action work = std::move(posted.front());
    posted.pop_front();
    lock.unlock();
    run_safely(work);
    work = nullptr;
    lock.lock();
  }
}

bool run_on_loop(const source::action& work) {
  if (const ownership owned; owned) {
    const loop_section in_loop;
    run_posted();
    return run_safely(work);
  }
  bool ran = false;
  completion done;
  post([&] {
    ran = run_safely(work);
    done.complete();
  });
  done.wait(steady_clock::time_point::max());
  return ran;
}

void post_to_loop(source::action work) {
  const ownership owned;
  if (!owned) {
    post(std::move(work));
    return;
  }
  const loop_section in_loop;
  run_posted();
  run_safely(work);
}

bool in_callback() {
  return g_main_depth() > 0 && g_main_context_is_owner(g_main_context_default()) != FALSE;
}

void completion::complete() {
  const std::lock_guard lock{room};
  complete_ = true;
  changed.notify_all();
}

bool completion::wait(steady_clock::time_point end) {
  const auto is_complete = [this] {
    const std::lock_guard lock{room};
    return complete_;
  };
  while (!is_complete()) {
    if (const ownership owned; owned) {
      while (!is_complete()) {
        g_main_context_iteration(nullptr, TRUE);
      }
      return true;
    }
    if (steady_clock::now() >= end) {
      return false;
    }
    std::unique_lock lock{room};
    if (!complete_) {
      changed.wait_for(lock, owner_check_interval);
    }
  }
  return true;
}

}  // namespace orv_client
