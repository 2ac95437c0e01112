#include "ask.h"

#include <stdio.h>

#include "command_names.h"
#include "printable.h"

#include <orv/protocol.h>
#include <platform_root.h>

namespace orvctl {
namespace {

void tell_no_answer(const context& shared, const command& sent) {
  const bool silent = describe(sent.code).answers_with == reply::none;
  fprintf(stderr,
          "orvctl: no answer in %g s: waited for %s to be written after command %s in %s; %s\n",
          shared.timeout_s, VCONFKEY_ORV_RESULT, to_text(sent.code).c_str(), shared.store.c_str(),
          silent ? "the agent accepts this command without answering" : "is a host running?");
}

}  // namespace

int tell(const context& shared, const command& sent, exchange_error error) {
  switch (error) {
    case exchange_error::none:
      break;
    case exchange_error::no_answer:
      tell_no_answer(shared, sent);
      return status_no_answer;
    case exchange_error::busy:
      fprintf(stderr, "orvctl: another orvctl has been busy on %s for %g s; try again\n",
              shared.store.c_str(), shared.timeout_s);
      return status_no_answer;
    case exchange_error::watched:
      fprintf(stderr,
              "orvctl: another orvctl watches the monitors of %s; they are its own until it ends\n",
              shared.store.c_str());
      return status_no_answer;
    case exchange_error::store_failed:
      fprintf(stderr,
              "orvctl: the store %s cannot be written or watched; is its file system full?\n",
              shared.store.c_str());
      return status_usage;
  }
  return status_success;
}

bool store_is_usable(context& shared) {
  const platform::root_check store = platform::check_root(shared.store.c_str());
  if (store.state == platform::root_state::usable) {
    return true;
  }
  fprintf(stderr, "orvctl: store %s\n", store.reason);
  shared.status = status_usage;
  return false;
}

std::optional<answer> ask(context& shared, const command& sent) {
  if (!store_is_usable(shared)) {
    return std::nullopt;
  }
  exchange_outcome outcome = exchange(shared.store, sent, shared.timeout());
  if (outcome.error != exchange_error::none) {
    shared.status = tell(shared, sent, outcome.error);
    return std::nullopt;
  }
  // A tick's result is always a success, and so is a query's.
  const answer& answered = outcome.answered;
  if (answered.overwritten && answered.result == ORV_RESULT_OK && !answered.text) {
    fputs("orvctl: a monitor's tick overwrote the answer before it was read; ask again\n", stderr);
    shared.status = status_no_answer;
    return std::nullopt;
  }
  shared.status = answered.result == ORV_RESULT_OK ? status_success : status_failure;
  return std::move(outcome.answered);
}

void refuse_answer(context& shared, const char* what, const std::string& text) {
  fprintf(stderr, "orvctl: the agent's answer is no %s: %s\n", what, printable(text).c_str());
  shared.status = status_failure;
}

}  // namespace orvctl
