#include "exit_status.h"

#include <errno.h>
#include <orv/protocol.h>
#include <signal.h>
#include <string.h>

namespace orvctl {
namespace {

struct status_row {
  exit_status status;
  const char* meaning;
};

constexpr status_row statuses[] = {
    {exit_status::done, "done"},
    {exit_status::refused, "the agent or the camera said no; items of a watch may be missing"},
    {exit_status::usage, "wrong usage"},
    {exit_status::may_have_run, "may have run: no answer in time"},
    {exit_status::not_run,
     "certainly not run: the camera is not there, is in use, or was silent before"},
    {exit_status::output_lost, "some of the output could not be written"},
};

bool is_wrong_usage(orv_why why) {
  return why == ORV_WHY_BAD_REQUEST || why == ORV_WHY_BAD_ADDRESS || why == ORV_WHY_UNKNOWN_SCHEME;
}

}  // namespace

std::string exit_statuses() {
  std::string lines;
  for (const status_row& row : statuses) {
    lines += "  " + std::to_string(static_cast<int>(row.status)) + "  " + row.meaning + "\n";
  }
  return lines + "  128 and a signal's number: ended by that signal\n";
}

exit_status status_of_result(int32_t result) {
  return result == ORV_RESULT_OK ? exit_status::done : exit_status::refused;
}

exit_status status_of(const orv_reply* found) {
  if (found == nullptr || found->outcome == ORV_MAY_HAVE_RUN) {
    return exit_status::may_have_run;
  }
  if (found->outcome == ORV_NOT_RUN) {
    return is_wrong_usage(found->why) ? exit_status::usage : exit_status::not_run;
  }
  return found->why == ORV_WHY_NONE ? status_of_result(found->result) : exit_status::refused;
}

exit_status finish(const output& out, exit_status so_far) {
  const int error = out.close();
  if (error == 0) {
    return so_far;
  }
  if (error == EPIPE) {
    return by_signal(SIGPIPE);
  }
  complain(out.name() + ": " + strerror(error) + "; output is lost");
  return exit_status::output_lost;
}

int end_with(exit_status status) {
  const int number = static_cast<int>(status) - static_cast<int>(by_signal(0));
  if (number > 0) {
    signal(number, SIG_DFL);
    raise(number);
  }
  return static_cast<int>(status);
}

}  // namespace orvctl
