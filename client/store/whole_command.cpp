#include "whole_command.h"

#include <orv/protocol.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace orv_client::store {
namespace {

command copy_of(const orv_request& request) {
  command copy{request.code};
  std::copy(std::begin(request.parameters), std::end(request.parameters), copy.parameters.begin());
  copy.data = request.data != nullptr ? request.data : "";
  return copy;
}

bool overwrites_packet(const command& sent) {
  const answer_kind answers = describe(sent.code).answers_with;
  return answers == answer_kind::text || answers == answer_kind::unknown;
}

}  // namespace

whole_command::whole_command(connection& of, const orv_request& request, time_limit limit,
                             carried_reply_fn on_reply, void* user_data)
    : of_{of},
      sent_{copy_of(request)},
      limit_{limit},
      on_reply_{on_reply},
      user_data_{user_data},
      needs_packet_{overwrites_packet(sent_)},
      next_{source::at(limit.end, [this] { end_busy(); })} {}

whole_command::~whole_command() {
  packet_claim_.reset();
  const bool begun = std::exchange(turn_, nullptr) != nullptr;
  if (begun && needs_packet_) {
    of_.rights->release(right::packet);
    of_.rights->release(right::wanting);
  }
  if (begun && sent_.code == ORV_COMMAND_MONITOR) {
    of_.rights->release(right::monitors);
  }
}

whole_command* whole_command::add(connection& to, const orv_request& request, time_limit limit,
                                  carried_reply_fn on_reply, void* user_data) {
  auto made = std::make_unique<whole_command>(to, request, limit, on_reply, user_data);
  whole_command* added = made.get();
  to.commands.push_back(std::move(made));
  if (to.commands.size() == 1) {
    try {
      added->begin();
    } catch (...) {
      to.commands.pop_back();
      throw;
    }
  }
  return added;
}

void whole_command::begin() {
  std::string why;
  if (!open_rights(of_, why)) {
    end_soon(not_run(ORV_WHY_STORE_REFUSED, "store " + why));
    return;
  }
  turn_ = std::make_unique<turn>(of_.directory, *of_.rights);
  if (sent_.code == ORV_COMMAND_MONITOR && !of_.rights->try_share(right::monitors)) {
    end_soon(watched(of_.directory));
    return;
  }
  needs_packet_ ? take_packet() : take_turn();
  next_.cancel();  // from here on the claims and the exchange end at the limit
}

void whole_command::take_packet() {
  static_cast<void>(of_.rights->try_share(right::wanting));  // fails only with the file
  if (of_.rights->try_take(right::packet)) {
    take_turn();
    return;
  }
  packet_claim_ = std::make_unique<claim>(
      *of_.rights, right::packet, limit_.end,
      [this](bool taken) { taken ? go_on(&whole_command::take_turn) : end_busy(); });
}

void whole_command::take_turn() {
  if (turn_->try_take()) {
    use_turn();
  } else {
    turn_->take(limit_,
                [this](bool taken) { taken ? go_on(&whole_command::use_turn) : end_busy(); });
  }
}

// Settling overwrites the packet. Whoever has the packet may need the turn to give it away.
void whole_command::use_turn() {
  if (turn_->settled()) {
    ask();
  } else if (needs_packet_) {
    settle();
  } else {
    turn_->release();
    needs_packet_ = true;
    take_packet();
  }
}

void whole_command::settle() {
  turn_->settle(limit_, [this](ending how) {
    if (how.outcome == ORV_RAN) {
      go_on(&whole_command::ask);
    } else {
      end(not_run(how.why, std::move(how.message)));
    }
  });
}

void whole_command::ask() {
  asking_ = true;
  turn_->ask(sent_, limit_, [this](ending how) { end(std::move(how)); });
}

// In a callback, where an exception would leave this without an end. Nothing was sent then: that is
// the last of what the steps do.
void whole_command::go_on(step next) {
  try {
    (this->*next)();
  } catch (...) {
    end(not_run(ORV_WHY_NO_MEMORY, "out of memory"));
  }
}

void whole_command::end_busy() {
  end(busy(of_.directory, limit_));
}

void whole_command::end_soon(ending how) {
  next_ = source::after(milliseconds::zero(), [this, how = std::move(how)] { end(how); });
}

void whole_command::end(ending how) {
  const carried_reply_fn on_reply = on_reply_;
  void* user_data = user_data_;
  const ending last = std::move(how);
  leave();
  const orv_reply reply = last.view();
  on_reply(&reply, user_data);
}

orv_outcome whole_command::cancel() {
  const bool sent = asking_ && turn_->sent();
  leave();
  return sent ? ORV_MAY_HAVE_RUN : ORV_NOT_RUN;
}

// Destroys this, which gives its rights back, and has the next one begin.
void whole_command::leave() {
  auto& commands = of_.commands;
  const bool first = commands.front().get() == this;
  commands.erase(std::find_if(commands.begin(), commands.end(),
                              [this](const auto& one) { return one.get() == this; }));
  if (first && !commands.empty()) {
    try {
      commands.front()->begin();
    } catch (...) {  // memory ran out: it ends at its time limit
    }
  }
}

}  // namespace orv_client::store
