// The heap monitor: the system's free memory, once a tick.

#include <orv/agent.h>
#include <orv/meminfo.h>
#include <orv/monitor.h>
#include <stdlib.h>

#include <iterator>

#include "common/answer.h"
#include "common/clock.h"
#include "common/log.h"
#include "monitor/packet.h"

orv_heap_item orv_mon_heap_info = {};

namespace orv {
namespace {

// kB; a figure that cannot be read keeps its last value.
struct {
  uint32_t buffers;
  uint32_t cached;
  uint32_t mem_free;
  uint32_t mem_total;
} memory;

constexpr meminfo_row memory_table[] = {
    {"Buffers", &memory.buffers},
    {"Cached", &memory.cached},
    {"MemFree", &memory.mem_free},
    {"MemTotal", &memory.mem_total},
};

// Never null: a tick without memory ends the process. The log shows `function` for it.
owned_text room_for_packet(const char* function) {
  owned_text room{static_cast<char*>(malloc(ORV_PACKET_MAX_TEXT))};
  if (!room) {
    log_line(log_level::error, ORV_LOG_FILE, function, __LINE__, "Could not acllocate memory \n");
    exit(1);
  }
  return room;
}

orv_heap_item sampled_item(uint32_t tick_count) {
  return {ORV_ITEM_HEAP_SIZE,
          ORV_ITEM_HEAP,
          static_cast<int32_t>(tick_count),
          1,
          1,
          static_cast<int32_t>(memory.mem_free * 1024U),
          0,
          "$"};
}

bool append_item(const packet& old, const orv_heap_item& item, bounded_text& grown) {
  char buffer[128];
  bounded_text text{buffer};
  text.format("%d,%d,%ld,%ld,%ld,%ld,%ld,%s,", item.item_size, item.item_code,
              long{item.tick_count}, long{item.item_count}, long{item.item_id},
              long{item.heap_free}, long{item.heap_max_free}, item.mark);
  return grow_packet(old, {item.item_size, text.view()}, grown);
}

}  // namespace
}  // namespace orv

int orv_heap_monitor_open(void) {
  orv_log_info("orv_heap_monitor_open() \n");
  return 1;
}

int orv_heap_monitor_proc(void* /*user_data*/) {
  orv_log_info("start+ \n");
  orv_meminfo(orv::memory_table, std::size(orv::memory_table));
  {  // What the tick took is given back before it logs its end.
    orv::owned_text old_text = orv::read_packet();
    const orv::owned_text copy = orv::room_for_packet(__func__);
    g_packet_data.packet_code = ORV_COMMAND_SEND_BUFFER;
    const orv::packet old = orv::copy_packet(old_text, copy.get(), ORV_PACKET_MAX_TEXT);
    const orv::owned_text room = orv::room_for_packet(__func__);
    orv_heap_item& item = orv_mon_heap_info;
    item = orv::sampled_item(orv::to_ms(orv::wall_clock()) - orv_start_time);
    orv::bounded_text grown{room.get(), ORV_PACKET_MAX_TEXT};
    const bool grew = orv::append_item(old, item, grown);

    orv_log_info("> Total  count   ==   %d\n", g_packet_data.total_count);
    orv_log_info("> The item size  ==   %d\n", item.item_size);
    orv_log_info("> The item code  ==   %d\n", item.item_code);
    orv_log_info("> The tick _count==   %ld\n", long{item.tick_count});
    orv_log_info("> The item count ==   %ld\n", long{item.item_count});
    orv_log_info("> The item id    ==   %ld\n", long{item.item_id});
    orv_log_info("> Heap Free  mem ==   %ld B \n", long{item.heap_free});
    orv_log_info("> Heap Max Free  ==   %ld B \n", long{item.heap_max_free});
    orv::answer_tick(grew ? grown.c_str() : orv::reread_packet(old_text));
  }
  orv_log_info("end- \n");
  return 1;
}

int orv_heap_monitor_close(void) {
  orv_log_info("orv_heap_monitor_close() \n");
  orv::answer(ORV_RESULT_OK);
  return 1;
}
