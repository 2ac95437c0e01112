// What a watch and a log have in common: they are in flight on a camera from their start to their
// last event, and end by themselves, by a stop or by the camera's close.
#ifndef ORV_CLIENT_SESSION_H
#define ORV_CLIENT_SESSION_H

#include <orv/client.h>

#include <functional>
#include <list>
#include <memory>
#include <utility>

#include "camera.h"
#include "ending.h"
#include "loop.h"

namespace orv_client {

// Part of a handle that a user has. All but the constructor belongs to the loop's thread.
class session {
 public:
  struct functions {
    std::function<void*()> start;                   // null where there is no memory
    void (*stop)(void* carried);                    // begins the end
    void (*cancel)(void* carried);                  // ends it without an event
    std::function<void(const ending&)> report_end;  // and destroys the handle
  };

  session(std::shared_ptr<camera> of, functions does)
      : of_{std::move(of)}, does_{std::move(does)} {}
  session(const session&) = delete;
  session& operator=(const session&) = delete;
  ~session();

  // With a refusal it is not started, and its end is soon reported.
  void start(const ending* refusal);
  void stop();
  // The carrier's part has ended by itself; its last event is about to be reported.
  void ended() { of_->in_flight.erase(entry_); }

  [[nodiscard]] const std::shared_ptr<camera>& of() const { return of_; }

  // Null when the handle is gone: another thread can learn of that late.
  static session* find(const session* one);

 private:
  void close();
  void end_soon(ending how);

  std::shared_ptr<camera> of_;
  functions does_;
  std::list<std::function<void()>>::iterator entry_;
  void* carried_ = nullptr;
  source later_;
};

// Waits for the reply to something that ends without a deadline.
class endless_wait {
 public:
  void arrive(const orv_reply& how) {
    reply_ = make_reply(how, 0);
    arrived_.complete();
  }
  orv_reply* wait() {
    arrived_.wait(steady_clock::time_point::max());
    return reply_;
  }

 private:
  completion arrived_;
  orv_reply* reply_ = nullptr;
};

}  // namespace orv_client

#endif
