#include "injection.h"

#include <stdio.h>

#include "ask.h"

#include <orv/protocol.h>

namespace orvctl {

bool inject(context& shared, const std::string& what, const command& sent) {
  const int before = shared.status;
  const auto answered = ask(shared, sent);
  if (!answered) {
    return false;
  }
  if (answered->result == ORV_RESULT_OK) {
    printf("%s: done\n", what.c_str());
    shared.status = before;
    return true;
  }
  fflush(stdout);
  const bool touched = sent.parameters.front() == ORV_EVENT_TOUCH;
  fprintf(stderr,
          "orvctl: %s: the agent answered %d: the camera application is gone, /sdcard has more "
          "entries than at first, the X display is out of reach, %sor an earlier failure was not "
          "cleared yet, which this command did\n",
          what.c_str(), answered->result, touched ? "" : "the agent does not know the name, ");
  return true;
}

}  // namespace orvctl
