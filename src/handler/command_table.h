// The commands that the agent knows.
#ifndef ORV_HANDLER_COMMAND_TABLE_H
#define ORV_HANDLER_COMMAND_TABLE_H

#include <orv/command.h>
#include <orv/protocol.h>
#include <stddef.h>
#include <stdint.h>

namespace orv {

using command_handler = void (*)(orv_command* record, const char* data);

struct command_row {
  int32_t code;
  command_handler handler;  // null: accepted and ignored
  char name[20];            // not unique: two rows are named "command"
};

inline constexpr command_row command_table[] = {
    {ORV_COMMAND_AGENT_START, nullptr, "agent_start"},
    {ORV_COMMAND_AGENT_STOP, nullptr, "agent_stop"},
    {ORV_COMMAND_HEARTBEAT, nullptr, "heartbeat"},
    {ORV_COMMAND_EVENT, orv_event_handler, "command"},
    {ORV_COMMAND_OSD_IMAGE, nullptr, "osd_image"},
    {ORV_COMMAND_SET_CONFIG, nullptr, "set_config"},
    {ORV_COMMAND_MULTI_LANG, nullptr, "multi_lang"},
    {ORV_COMMAND_TARGET_INFO, orv_target_handler, "target_info"},
    {ORV_COMMAND_STACK_INFO, orv_stack_handler, "stack_info"},
    {ORV_COMMAND_HEAP_INFO, orv_heap_handler, "heap_info"},
    {ORV_COMMAND_MONITOR, orv_monitor_handler, "command"},
    {ORV_COMMAND_SEND_BUFFER, nullptr, "send_buffer"},
    {ORV_COMMAND_END, nullptr, "end"},
};

constexpr bool codes_unique(const command_row* rows, size_t count) {
  for (size_t one = 0; one < count; ++one) {
    for (size_t other = one + 1; other < count; ++other) {
      if (rows[one].code == rows[other].code) {
        return false;
      }
    }
  }
  return true;
}
static_assert(sizeof command_table / sizeof *command_table == 13);
static_assert(codes_unique(command_table, 13));
static_assert(command_table[12].code == ORV_COMMAND_END);

}  // namespace orv

#endif
