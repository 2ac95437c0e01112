// Requests in flight.

#include <orv/protocol.h>

#include <functional>
#include <mutex>
#include <new>
#include <utility>

#include "camera.h"
#include "commands.h"

namespace orv_client {
namespace {

// How much longer than its time limit a waiting call waits for a loop that another thread runs.
constexpr auto loop_patience = milliseconds{250};

constexpr int32_t least_place = -32768;
constexpr int32_t greatest_place = 32767;

struct reply_deleter {
  void operator()(orv_reply* reply) const noexcept { orv_reply_free(reply); }
};
using owned_reply = std::unique_ptr<orv_reply, reply_deleter>;

const char* fault_of(const orv_request& request, uint32_t timeout_ms) {
  const auto is_place = [](int32_t at) { return at >= least_place && at <= greatest_place; };
  if (timeout_ms == 0) {
    return "a timeout of 0 ms";
  }
  if (request.code == ORV_COMMAND_EVENT && request.parameters[0] == ORV_EVENT_TOUCH &&
      !(is_place(request.parameters[2]) && is_place(request.parameters[3]))) {
    return "a place on the screen is from -32768 to 32767";
  }
  return nullptr;
}

orv_reply no_memory(orv_outcome outcome) {
  return {outcome == ORV_NOT_RUN ? ORV_NOT_RUN : ORV_MAY_HAVE_RUN,
          ORV_WHY_NO_MEMORY,
          0,
          nullptr,
          "out of memory",
          nullptr,
          nullptr,
          nullptr};
}

// Belongs to itself from its start to its reply.
class call {
 public:
  // Without a reply where there is no memory for one, but with its outcome.
  using replied_fn = std::function<void(owned_reply, orv_outcome)>;

  call(std::shared_ptr<camera> of, const orv_request& request, uint32_t timeout_ms,
       replied_fn replied)
      : of_{std::move(of)},
        request_{request},
        data_{request.data != nullptr ? request.data : ""},
        limit_{time_limit::of(timeout_ms)},
        fault_{fault_of(request, timeout_ms)},
        replied_{std::move(replied)} {
    request_.data = data_.c_str();
  }
  call(const call&) = delete;
  call& operator=(const call&) = delete;

  void start() noexcept {
    const auto entered = of_->in_flight.end();
    entry_ = entered;
    try {
      entry_ = of_->in_flight.insert(entered, [this] { close(); });
      begin();
    } catch (...) {
      if (entry_ != entered) {
        of_->in_flight.erase(entry_);
      }
      g_idle_add_full(G_PRIORITY_DEFAULT, end_without_memory, this, nullptr);
    }
  }

 private:
  static constexpr char closed_text[] = "the camera was closed";

  void begin() {
    if (fault_ != nullptr) {
      end_soon(not_run(ORV_WHY_BAD_REQUEST, fault_));
    } else if (of_->closed) {
      end_soon(not_run(ORV_WHY_CLOSED, closed_text));
    } else {
      carried_ = of_->carried_by->command(of_->connection, &request_, limit_, carried_back, this);
      if (carried_ == nullptr) {
        throw std::bad_alloc{};
      }
    }
  }

  static gboolean end_without_memory(gpointer self) {
    const loop_section in_loop;
    static_cast<call*>(self)->end(no_memory(ORV_NOT_RUN));
    return G_SOURCE_REMOVE;
  }

  static void carried_back(const orv_reply* reply, void* self) {
    auto* ended = static_cast<call*>(self);
    ended->of_->in_flight.erase(ended->entry_);
    ended->end(*reply);
  }

  void end_soon(ending how) {
    later_ = source::after(milliseconds::zero(), [this, how = std::move(how)] {
      of_->in_flight.erase(entry_);
      end(how.view());
    });
  }

  void close() {
    const orv_outcome outcome =
        carried_ != nullptr ? of_->carried_by->cancel(carried_) : ORV_NOT_RUN;
    end(ending{outcome, ORV_WHY_CLOSED, closed_text}.view());
  }

  void end(const orv_reply& how) {
    const std::unique_ptr<call> self{this};
    owned_reply reply{make_reply(how, request_.code)};
    const user_callback around{of_};
    replied_(std::move(reply), how.outcome);
  }

  std::shared_ptr<camera> of_;
  orv_request request_;
  std::string data_;
  time_limit limit_;
  const char* fault_;
  replied_fn replied_;
  std::list<std::function<void()>>::iterator entry_;
  void* carried_ = nullptr;
  source later_;
};

void send(const orv_camera& to, const orv_request& request, uint32_t timeout_ms,
          call::replied_fn replied) {
  auto made = std::make_unique<call>(to.state, request, timeout_ms, std::move(replied));
  post_to_loop([started = made.get()] { started->start(); });
  static_cast<void>(made.release());
}

// The user's end of a request. What it needs when memory runs out is GLib's, which never fails.
struct receiver {
  orv_reply_fn on_reply;
  void* user_data;

  void reply(const orv_reply& how) const {
    if (on_reply != nullptr) {
      on_reply(&how, user_data);
    }
  }

  void refuse_later() const {
    auto* copy = g_new(receiver, 1);
    *copy = *this;
    g_idle_add_full(G_PRIORITY_DEFAULT, refuse, copy, g_free);
  }

 private:
  static gboolean refuse(gpointer self) {
    static_cast<const receiver*>(self)->reply(no_memory(ORV_NOT_RUN));
    return G_SOURCE_REMOVE;
  }
};

// What a waiting call and the loop's thread share. Either may be the last to need it.
class waited_reply {
 public:
  void arrive(owned_reply reply) {
    reply_ = std::move(reply);
    arrived_.complete();
  }

  orv_reply* wait(time_limit limit) {
    return arrived_.wait(limit.end + loop_patience)
               ? reply_.release()
               : make_reply(may_have_run(ORV_WHY_NO_ANSWER,
                                         "the thread that runs the program's main loop is stuck"));
  }

 private:
  completion arrived_;
  owned_reply reply_;
};

}  // namespace
}  // namespace orv_client

void orv_send(orv_camera* camera, const orv_request* request, uint32_t timeout_ms,
              orv_reply_fn on_reply, void* user_data) {
  using namespace orv_client;
  const receiver to{on_reply, user_data};
  try {
    send(*camera, *request, timeout_ms, [to](owned_reply reply, orv_outcome outcome) {
      to.reply(reply ? *reply : no_memory(outcome));
    });
  } catch (...) {
    to.refuse_later();
  }
}

orv_reply* orv_ask(orv_camera* camera, const orv_request* request, uint32_t timeout_ms) try {
  using namespace orv_client;
  if (in_callback()) {
    return make_reply(within_callback());
  }
  const auto waited = std::make_shared<waited_reply>();
  send(*camera, *request, timeout_ms,
       [waited](owned_reply reply, orv_outcome) { waited->arrive(std::move(reply)); });
  return waited->wait(time_limit::of(timeout_ms));
} catch (...) {
  return nullptr;
}
