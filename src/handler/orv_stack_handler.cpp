// The stack query: the stack of every thread on the target.

#include <orv/command.h>
#include <orv/stack.h>

#include "common/answer.h"
#include "common/bounded_text.h"
#include "common/log.h"

thread_stack_info res_stack_info[ORV_STACK_INFO_RECORDS];

namespace orv {
namespace {

constexpr size_t answer_size = 4096;

bool append_group(bounded_text& text, const thread_stack_info& thread) {
  return text.format("%d,%s,%lu,%lu,%s,", thread.tid, thread.comm,
                     static_cast<unsigned long>(thread.stack_size),
                     static_cast<unsigned long>(thread.stack_start), "$");
}

}  // namespace
}  // namespace orv

void orv_stack_handler(orv_command* /*record*/, const char* /*data*/) {
  char buffer[orv::answer_size];
  orv::bounded_text text{buffer};
  const int32_t count = orv_get_stack_info(res_stack_info);
  text.format("%d,%d,", ORV_COMMAND_STACK_INFO, count);

  bool has_room = true;
  for (int32_t i = 0; i < count; ++i) {
    const thread_stack_info& thread = res_stack_info[i];
    orv_log_info("TASK ID:      %d\n", thread.tid);
    orv_log_info("TASK NAME:    %s\n", thread.comm);
    orv_log_info("TASK SIZE:    %d\n", static_cast<int32_t>(thread.stack_size));
    orv_log_info("Base POINTER: %d\n", static_cast<int32_t>(thread.stack_start));
    orv_log_info("\n");
    // Once a group does not fit, no shorter one after it is let in. The sampler is exported: a
    // host's own in its place may leave the stack pointer out.
    if (thread.esp != 0) {
      has_room = has_room && orv::append_group(text, thread);
    }
  }
  orv::answer(text.c_str(), ORV_RESULT_OK);
  orv_log_info("end- \n");
}
