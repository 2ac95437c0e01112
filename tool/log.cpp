#include "log.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "ask.h"

namespace orvctl {

void show_log(context& shared, bool dump) {
  if (!store_is_usable(shared)) {
    return;
  }
  if (dump) {
    execlp("dlogutil", "dlogutil", "-d", "ORV", nullptr);
  } else {
    execlp("dlogutil", "dlogutil", "ORV", nullptr);
  }
  fprintf(stderr, "orvctl: cannot run dlogutil, the log's reader: %s; is it in PATH?\n",
          strerror(errno));
  shared.status = status_usage;
}

}  // namespace orvctl
