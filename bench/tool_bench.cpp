// The test tool as a whole process, beside a process that does nothing.

#include "child_process.h"
#include "ratio_table.h"
#include "serving_process.h"

namespace orv_bench {
namespace {

void orvctl_target(row& row) {
  const serving_process host{"agent"};
  row.alternate(
      [] {
        require(run_program({ORVCTL_PATH, "target"}) == 0, "orvctl target failed");
      },
      [] { require(run_program({"/bin/true"}) == 0, "/bin/true failed"); });
}

const bool registered = compare("tool/orvctl-target", "tool/bin-true", 2.7, orvctl_target);

}  // namespace
}  // namespace orv_bench
