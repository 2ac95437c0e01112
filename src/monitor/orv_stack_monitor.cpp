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

constexpr size_t copy_size = 80696;
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

struct thread_groups {
  explicit thread_groups(char* list) noexcept : text{list, thread_list_size} {}

  // Once a group does not fit, no shorter one after it is let in.
  void append(const thread_stack_info& thread) noexcept {
    has_room = has_room && text.format("%d,%d,%lu,%lu,%lu,%s,", thread.tid, code_of(thread.state),
                                       static_cast<unsigned long>(thread.esp),
                                       static_cast<unsigned long>(thread.stack_end),
                                       static_cast<unsigned long>(thread.stack_start), "$");
    count += has_room ? 1 : 0;
  }

  bounded_text text;
  int32_t count = 0;
  bool has_room = true;
};

bool append_item(const packet& old, uint32_t tick_count, const thread_groups& groups,
                 bounded_text& grown) {
  const int32_t item_size = ORV_ITEM_STACK_SIZE + ORV_ITEM_STACK_GROUP_SIZE * groups.count;
  char buffer[64];
  bounded_text head{buffer};
  head.format("%d,%d,%ld,%d,", item_size, ORV_ITEM_STACK,
              static_cast<long>(static_cast<int32_t>(tick_count)), groups.count);
  return grow_packet(old, {item_size, head.view(), groups.text.view()}, grown);
}

// Null when memory is refused, which the log shows for `function`.
owned_text allocate(size_t size, const char* function) {
  owned_text memory{static_cast<char*>(malloc(size))};
  if (!memory) {
    log_line(log_level::error, ORV_LOG_FILE, function, __LINE__, " ERROR in Memory allocation\n");
  }
  return memory;
}

}  // namespace
}  // namespace orv

int orv_stack_monitor_open(void) {
  orv_log_info("orv_stack_monitor_open() \n");
  return 1;
}

int orv_stack_monitor_proc(void* /*user_data*/) {
  {  // What the tick took is given back before it logs its end.
    orv::owned_text old_text = orv::read_packet();
    const orv::owned_text copy = orv::allocate(orv::copy_size, __func__);
    if (!copy) {
      return 1;
    }
    const orv::packet old = orv::copy_packet(old_text, copy.get(), orv::copy_size);
    const orv::owned_text list = orv::allocate(orv::thread_list_size, __func__);
    if (!list) {
      return 1;
    }
    const int32_t thread_count = orv_get_stack_info(result_stack_info);
    const uint32_t tick_count = orv::to_ms(orv::wall_clock()) - orv_start_time;

    orv::thread_groups groups{list.get()};
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
      groups.append(thread);
    }

    const orv::owned_text room = orv::allocate(ORV_PACKET_MAX_TEXT, __func__);
    if (!room) {
      return 1;
    }
    orv::bounded_text grown{room.get(), ORV_PACKET_MAX_TEXT};
    const bool grew = orv::append_item(old, tick_count, groups, grown);
    orv::answer_tick(grew ? grown.c_str() : orv::reread_packet(old_text));
  }
  orv_log_info("end- \n");
  return 1;
}

int orv_stack_monitor_close(void) {
  orv_log_info("orv_stack_monitor_close() \n");
  orv::answer(ORV_RESULT_OK);
  return 1;
}
