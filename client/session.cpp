#include "session.h"

#include <algorithm>
#include <vector>

namespace orv_client {
namespace {

std::vector<session*> started;

}  // namespace

session::~session() {
  std::erase(started, this);
}

session* session::find(const session* one) {
  const auto found = std::find(started.begin(), started.end(), one);
  return found != started.end() ? *found : nullptr;
}

void session::start(const ending* refusal) {
  started.push_back(this);
  entry_ = of_->in_flight.insert(of_->in_flight.end(), [this] { close(); });
  if (of_->closed) {
    end_soon(not_run(ORV_WHY_CLOSED, "the camera was closed"));
  } else if (refusal != nullptr) {
    end_soon(*refusal);
  } else {
    carried_ = does_.start();
    if (carried_ == nullptr) {
      end_soon(not_run(ORV_WHY_NO_MEMORY, "out of memory"));
    }
  }
}

void session::stop() {
  if (carried_ != nullptr) {
    does_.stop(carried_);
  }
}

void session::close() {
  if (carried_ != nullptr) {
    does_.cancel(carried_);
  }
  const auto report_end = std::move(does_.report_end);
  report_end(may_have_run(ORV_WHY_CLOSED, "the camera was closed"));
}

void session::end_soon(ending how) {
  later_ = source::after(milliseconds::zero(), [this, how = std::move(how)]() mutable {
    ended();
    const ending last = std::move(how);
    const auto report_end = std::move(does_.report_end);
    report_end(last);
  });
}

}  // namespace orv_client
