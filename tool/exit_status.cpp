#include "exit_status.h"

#include <errno.h>
#include <signal.h>
#include <string.h>

namespace orvctl {

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
