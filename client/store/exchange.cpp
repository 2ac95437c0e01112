#include "exchange.h"

#include <orv/protocol.h>
#include <vconf.h>

#include <iterator>
#include <utility>

#include "turn.h"

namespace orv_client::store {
namespace {

// Within a burst of late answers none is further from the next.
constexpr auto longest_lull = milliseconds{100};

// A key that holds its value already is not written: most parameters are what they were, and a
// look takes a fifth of a write.
bool put(const char* key, int32_t number) {
  int found = 0;
  return (vconf_get_int(key, &found) == 0 && found == number) || vconf_set_int(key, number) == 0;
}

bool put(const char* key, const std::string& text) {
  return read_text(key) == text || vconf_set_str(key, text.c_str()) == 0;
}

bool write_parameters(const command& sent) {
  constexpr const char* keys[] = {VCONFKEY_ORV_COMMAND_PARAM1, VCONFKEY_ORV_COMMAND_PARAM2,
                                  VCONFKEY_ORV_COMMAND_PARAM3, VCONFKEY_ORV_COMMAND_PARAM4};
  for (size_t i = 0; i < std::size(keys); ++i) {
    if (!put(keys[i], sent.parameters[i])) {
      return false;
    }
  }
  return put(VCONFKEY_ORV_COMMAND_DATA, sent.data);
}

ending no_answer(const command& sent, const std::string& directory, time_limit limit) {
  const bool silent = describe(sent.code).answers_with == answer_kind::none;
  return may_have_run(
      ORV_WHY_NO_ANSWER,
      "no answer in " + seconds(limit) +
          ": waited for " VCONFKEY_ORV_RESULT " to be written after command " + to_text(sent.code) +
          " in " + directory + "; " +
          (silent ? "the agent accepts this command without answering" : "is a host running?"));
}

}  // namespace

exchange::exchange(std::string directory, lock_file& file, command sent, int earlier, bool settles,
                   time_limit limit, ended_fn ended)
    : directory_{std::move(directory)},
      file_{file},
      sent_{std::move(sent)},
      outstanding_{earlier + 1},
      answers_wanted_{settles ? outstanding_ : 1},
      limit_{limit},
      ended_{std::move(ended)},
      filter_{sent_},
      heard_{[this](change what) { hear(what); }} {
  deadline_ = source::at(limit.end, [this] { give_up(); });
  if (heard_.listening() && write_parameters(sent_)) {
    write_when_quiet();
  } else {
    next_ = source::when_quiet([this] { finish(store_failed(directory_)); });
  }
}

exchange::~exchange() {
  if (phase_ == phase::waiting) {
    withdraw();
  }
}

// What is in the queue of changes right before the command is written answers something else, so it
// is taken out first. Afterwards it could not be distinguished from the answer: the kernel serves
// the watchers of a change one by one, so an agent on another processor can have answered before
// this process hears of its own write.
void exchange::write_when_quiet() {
  phase_ = phase::preparing;
  next_ = source::when_quiet([this] { write_command(); });
}

void exchange::write_command() {
  if (const auto wait = until_between_ticks(); wait != milliseconds::zero()) {
    phase_ = phase::joining;
    next_ = source::after(wait, [this] { write_when_quiet(); });
    return;
  }
  file_.set_answers_outstanding(outstanding_);
  filter_.command_sent();
  phase_ = phase::waiting;
  if (vconf_set_int(VCONFKEY_ORV_COMMAND, sent_.code) != 0) {
    finish(store_failed(directory_));
  }
}

void exchange::hear(change what) {
  if (phase_ == phase::answered) {
    overwritten_ = overwritten_ || what == change::result;
  } else if (phase_ != phase::over) {
    filter(what);
  }
}

void exchange::filter(change what) {
  int result = 0;
  if (what == change::text) {
    filter_.text_seen(read_text(VCONFKEY_ORV_RESULT_DATA));
  } else if (vconf_get_int(VCONFKEY_ORV_RESULT, &result) == 0) {
    if (auto found = filter_.result_seen(result)) {
      note_answer(*std::move(found));
      return;
    }
  }
  if (phase_ == phase::joining) {
    write_when_quiet();
  }
}

void exchange::note_answer(answer found) {
  if (!answer_) {
    answer_ = std::move(found);
  }
  if (--answers_wanted_ > 0) {
    next_ = source::after(longest_lull, [this] { finish(answered()); });
  } else if (answer_->text) {
    finish(answered());
  } else {
    phase_ = phase::answered;
    next_ = source::when_quiet([this] { finish(answered()); });
  }
}

// A tick's result is always a success, so any other result is the answer's.
ending exchange::answered() {
  if (overwritten_ && answer_->result == ORV_RESULT_OK && !answer_->text) {
    return may_have_run(ORV_WHY_OVERWRITTEN,
                        "a monitor's tick overwrote the answer before it was read; ask again");
  }
  return {ORV_RAN, ORV_WHY_NONE, {}, answer_->result, std::move(answer_->text)};
}

void exchange::give_up() {
  if (answer_) {
    finish(answered());
  } else if (sent()) {
    withdraw();
    finish(no_answer(sent_, directory_, limit_));
  } else {
    finish(busy(directory_, limit_));
  }
}

// An agent that was frozen reads the command key when it wakes. It is notified of this write too,
// so one more answer may come.
void exchange::withdraw() {
  if (sent_.code == ORV_COMMAND_EVENT) {
    file_.set_answers_outstanding(outstanding_ + 1);
    vconf_set_int(VCONFKEY_ORV_COMMAND, ORV_COMMAND_END);
  }
}

void exchange::finish(ending how) {
  phase_ = phase::over;
  next_.cancel();
  deadline_.cancel();
  const auto ended = std::move(ended_);
  ended(std::move(how));
}

}  // namespace orv_client::store
