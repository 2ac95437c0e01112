#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "subcommand.h"

namespace orvctl {
namespace {

void run(context& shared, bool dump) {
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

}  // namespace

void add_log(CLI::App& app, context& shared) {
  CLI::App* log = app.add_subcommand("log", "Print the agent's log and follow it until stopped");
  const auto dump = std::make_shared<bool>(false);
  log->add_flag("--dump", *dump, "Print what the log holds and end");
  log->callback([&shared, dump] { run(shared, *dump); });
}

}  // namespace orvctl
