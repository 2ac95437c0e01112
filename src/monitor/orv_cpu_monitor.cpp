// The CPU monitor: which threads run, tick by tick.

#include <orv/agent.h>
#include <orv/cpu.h>
#include <orv/monitor.h>
#include <stdlib.h>

#include "common/answer.h"
#include "common/clock.h"
#include "common/log.h"
#include "monitor/packet.h"

orv_cpu_item orv_mon_cpu_info = {};
char vconf_cpu_data[ORV_PACKET_MAX_TEXT];
char wr_vconf_data[ORV_PACKET_MAX_TEXT];

namespace orv {
namespace {

constexpr size_t running_list_size = 1024;

bool is_running(const thread_cpu_info& thread) {
  return thread.state[0] == 'R';
}

bool append_item(bounded_text& list, const orv_cpu_item& item) {
  return list.format("%d,%d,%ld,%d,%s,", item.item_size, item.item_code, long{item.tick_count},
                     item.task_id, item.mark);
}

// Leaves in wr_vconf_data the packet that the key gets.
void write_packet(const packet& old, const tick_items& items, owned_text& old_text) {
  bounded_text grown{wr_vconf_data};
  if (grow_packet(old, items, grown)) {
    return answer_tick(wr_vconf_data);
  }
  const char* const kept = reread_packet(old_text);
  copy_cut(wr_vconf_data, kept);
  answer_tick(kept);
}

}  // namespace
}  // namespace orv

int orv_cpu_monitor_open(void) {
  return 1;
}

int orv_cpu_monitor_proc(void* /*user_data*/) {
  {  // What the tick took is given back before it logs its end.
    const orv::owned_text list_buffer{static_cast<char*>(malloc(orv::running_list_size))};
    if (!list_buffer) {
      orv_log_error(" ERROR in Memory allocation\n");
      return 0;
    }
    orv::owned_text old_text = orv::read_packet();
    const int32_t thread_count = orv_get_cpu_info(result_cpu_info);
    g_packet_data.packet_code = ORV_COMMAND_SEND_BUFFER;
    const orv::packet old = orv::copy_packet(old_text, vconf_cpu_data, sizeof vconf_cpu_data);
    const uint32_t tick_count = orv::to_ms(orv::wall_clock()) - orv_start_time;
    orv_cpu_item& item = orv_mon_cpu_info;
    item = {ORV_ITEM_CPU_SIZE, ORV_ITEM_CPU, item.task_id, static_cast<int32_t>(tick_count), "$"};

    orv::bounded_text running{list_buffer.get(), orv::running_list_size};
    int32_t running_count = 0;
    bool has_room = true;
    for (int32_t i = 0; i < thread_count; ++i) {
      const thread_cpu_info& thread = result_cpu_info[i];
      orv_log_info("\n");
      orv_log_info(" THE ITEM SIZE : %d\n", item.item_size);
      orv_log_info(" THE ITEM code : %d\n", item.item_code);
      orv_log_info(" THE TICK count: %d\n", item.tick_count);
      orv_log_info(" THE Task ID   : %d\n", thread.tid);
      orv_log_info(" THE Task STATE: %s\n", thread.state);
      item.task_id = thread.tid;
      if (orv::is_running(thread) && has_room) {
        has_room = orv::append_item(running, item);
        running_count += has_room ? 1 : 0;
      }
    }

    orv::write_packet(old, {item.item_size * running_count, running.view()}, old_text);
  }
  orv_log_info("end- \n");
  return 1;
}

int orv_cpu_monitor_close(void) {
  orv::answer(ORV_RESULT_OK);
  return 1;
}
