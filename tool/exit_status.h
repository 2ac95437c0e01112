// What the program ends with.
#ifndef ORV_TOOL_EXIT_STATUS_H
#define ORV_TOOL_EXIT_STATUS_H

#include "output.h"

namespace orvctl {

// Or 128 and the number of the signal that ends it.
enum class exit_status { success = 0, failure = 1, usage = 2, no_answer = 3, output_lost = 5 };

constexpr exit_status by_signal(int number) {
  return static_cast<exit_status>(128 + number);
}

// Closes the output. If any of it is lost, prints that, and the status is output_lost; but a reader
// that has gone ends a program by SIGPIPE, without words.
exit_status finish(const output& out, exit_status so_far);

// Ends the process by its signal if the status is that of one; else the number that main returns.
int end_with(exit_status status);

}  // namespace orvctl

#endif
