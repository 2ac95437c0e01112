// What the program ends with.
#ifndef ORV_TOOL_EXIT_STATUS_H
#define ORV_TOOL_EXIT_STATUS_H

#include <orv/client.h>

#include <string>

#include "output.h"

namespace orvctl {

// Or 128 and the number of the signal that ends it. exit_statuses() says what each means.
enum class exit_status {
  done = 0,
  refused = 1,
  usage = 2,
  may_have_run = 3,
  not_run = 4,
  output_lost = 5,
};

// All of them for the help, a line each.
std::string exit_statuses();

constexpr exit_status by_signal(int number) {
  return static_cast<exit_status>(128 + number);
}

exit_status status_of_result(int32_t result);
// Without a reply there was no memory for one.
exit_status status_of(const orv_reply* found);

// Closes the output. If any of it is lost, prints that, and the status is output_lost; but a reader
// that has gone ends a program by SIGPIPE, without words.
exit_status finish(const output& out, exit_status so_far);

// Ends the process by its signal if the status is that of one; else the number that main returns.
int end_with(exit_status status);

}  // namespace orvctl

#endif
