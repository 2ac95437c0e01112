// The stack monitor: every thread's stack, once a tick.

#include <orv/agent.h>
#include <orv/monitor.h>
#include <orv/stack.h>
#include <stdlib.h>

#include "common/answer.h"
#include "common/clock.h"
#include "common/log.h"
#include "monitor/packet.h"

namespace orv {
namespace {

constexpr size_t thread_list_size = 4096;

constexpr struct {
  char letter;
  int code;
} state_codes[] = {
    {'S', ORV_STATE_SLEEPING}, {'R', ORV_STATE_RUNNING}, {'D', ORV_STATE_WAITING},
    {'Z', ORV_STATE_ZOMBIE},   {'T', ORV_STATE_STOPPED}, {'W', ORV_STATE_PAGING},
};

int code_of(const char* state) {
  for (const auto& row : state_codes) {
    if (state[0] == row.letter && state[1] == '\0') {
      return row.code;
    }
  }
  return 0;
}

bool append_group(bounded_text& list, const thread_stack_info& thread) {
  return list.format("%d,%d,%lu,%lu,%lu,%s,", thread.tid, code_of(thread.state),
                     static_cast<unsigned long>(thread.esp),
                     static_cast<unsigned long>(thread.stack_end),
                     static_cast<unsigned long>(thread.stack_start), "$");
}

}  // namespace
}  // namespace orv

int orv_stack_monitor_open(void) {
  orv_log_info("orv_stack_monitor_open() \n");
  return 1;
}

int orv_stack_monitor_proc(void* /*user_data*/) {
  const orv::owned_text old_text = orv::read_packet();
  const orv::owned_text list_buffer{static_cast<char*>(malloc(orv::thread_list_size))};
  const orv::owned_text buffer{static_cast<char*>(malloc(ORV_PACKET_MAX_TEXT))};
  if (!list_buffer || !buffer) {
    orv_log_error(" ERROR in Memory allocation\n");
    return 1;
  }
  const int32_t thread_count = orv_get_stack_info(result_stack_info);
  const uint32_t tick_count = orv::to_ms(orv::wall_clock()) - orv_start_time;

  orv::bounded_text groups{list_buffer.get(), orv::thread_list_size};
  int32_t task_count = 0;
  bool has_room = true;
  for (int32_t i = 0; i < thread_count; ++i) {
    const thread_stack_info& thread = result_stack_info[i];
    orv_log_info("\n==================================================================\n");
    orv_log_info("TASK NAME        :   %s\n", thread.comm);
    orv_log_info("TASK ID          :   %d\n", thread.tid);
    orv_log_info("TASK STATE       :   %X\n", static_cast<unsigned>(orv::code_of(thread.state)));
    orv_log_info("STACK POINTER    :   %X\n", thread.esp);
    orv_log_info("Base  POINTER    :   %X\n", thread.stack_start);
    orv_log_info("TOP   POINTER    :   %X\n", thread.stack_end);
    orv_log_info("=====================================================================");
    has_room = has_room && orv::append_group(groups, thread);
    task_count += has_room ? 1 : 0;
  }

  const int32_t item_size = ORV_ITEM_STACK_SIZE + ORV_ITEM_STACK_GROUP_SIZE * task_count;
  char head_buffer[64];
  orv::bounded_text head{head_buffer};
  head.format("%d,%d,%ld,%d,", item_size, ORV_ITEM_STACK,
              static_cast<long>(static_cast<int32_t>(tick_count)), task_count);
  orv::bounded_text grown{buffer.get(), ORV_PACKET_MAX_TEXT};
  const bool grew =
      orv::grow_packet(orv::parse_packet(old_text), {item_size, head.view(), groups.view()}, grown);
  orv::answer_tick(grew ? grown.c_str() : old_text.get());
  orv_log_info("end- \n");
  return 1;
}

int orv_stack_monitor_close(void) {
  orv_log_info("orv_stack_monitor_close() \n");
  orv::answer(ORV_RESULT_OK);
  return 1;
}
