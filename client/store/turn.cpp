#include "turn.h"

#include <orv/protocol.h>
#include <stdio.h>

#include <utility>

#include "exchange.h"

namespace orv_client::store {

turn::turn(std::string directory, lock_file& file)
    : directory_{std::move(directory)}, file_{file} {}

turn::~turn() {
  exchange_.reset();  // while the turn is held
  release();
}

bool turn::try_take() {
  held_ = held_ || file_.try_take(right::turn);
  return held_;
}

void turn::take(time_limit limit, taken_fn done) {
  claim_ = std::make_unique<claim>(file_, right::turn, limit.end,
                                   [this, done = std::move(done)](bool taken) {
                                     held_ = taken;
                                     done(taken);
                                   });
}

void turn::release() {
  if (std::exchange(held_, false)) {
    file_.release(right::turn);
  }
}

bool turn::settled() const {
  return file_.answers_outstanding() == 0;
}

// The agent runs commands in order, so once it answers a query, the answers of all earlier commands
// are out.
void turn::settle(time_limit limit, ended_fn done) {
  start({ORV_COMMAND_TARGET_INFO}, true, limit, std::move(done));
}

void turn::ask(command sent, time_limit limit, ended_fn done) {
  start(std::move(sent), false, limit, std::move(done));
}

void turn::start(command sent, bool settles, time_limit limit, ended_fn done) {
  const int earlier = file_.answers_outstanding();
  const bool clears = settles || earlier == 0;
  exchange_ = std::make_unique<exchange>(directory_, file_, std::move(sent), earlier, settles,
                                         limit, [this, clears, done = std::move(done)](ending how) {
                                           const bool answered = how.outcome == ORV_RAN ||
                                                                 how.why == ORV_WHY_OVERWRITTEN;
                                           if (clears && answered) {
                                             file_.set_answers_outstanding(0);
                                           }
                                           done(std::move(how));
                                         });
}

bool turn::sent() const {
  return exchange_ && exchange_->sent();
}

std::string seconds(time_limit limit) {
  char text[32];
  snprintf(text, sizeof text, "%g s", static_cast<double>(limit.ms) / 1000);
  return text;
}

ending busy(const std::string& directory, time_limit limit) {
  return not_run(ORV_WHY_BUSY, "another orvctl has been busy on " + directory + " for " +
                                   seconds(limit) + "; try again");
}

ending watched(const std::string& directory) {
  return not_run(ORV_WHY_WATCHED, "another orvctl watches the monitors of " + directory +
                                      "; they are its own until it ends");
}

ending store_failed(const std::string& directory) {
  return not_run(
      ORV_WHY_STORE_FAILED,
      "the store " + directory + " cannot be written or watched; is its file system full?");
}

}  // namespace orv_client::store
