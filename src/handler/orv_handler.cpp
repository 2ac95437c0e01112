// Start, stop and dispatch.

#include <orv/agent.h>
#include <orv/command.h>
#include <orv/protocol.h>
#include <stdlib.h>
#include <vconf.h>

#include "common/answer.h"
#include "common/clock.h"
#include "common/handle.h"
#include "common/log.h"
#include "handler/command_table.h"

uint32_t orv_start_time = 0;

namespace orv {
namespace {

void reset_keys() {
  vconf_set_int(VCONFKEY_ORV_COMMAND_PARAM1, 0);
  vconf_set_int(VCONFKEY_ORV_COMMAND_PARAM2, 0);
  vconf_set_int(VCONFKEY_ORV_COMMAND_PARAM3, 0);
  vconf_set_int(VCONFKEY_ORV_COMMAND_PARAM4, 0);
  vconf_set_str(VCONFKEY_ORV_COMMAND_DATA, "");
  vconf_set_int(VCONFKEY_ORV_COMMAND, 0);
  answer("", ORV_RESULT_NONE);
}

const command_row* find_command(int32_t code) {
  for (const command_row* row = command_table; row->code != ORV_COMMAND_END; ++row) {
    if (row->code == code) {
      return row;
    }
  }
  return nullptr;
}

struct parameter {
  const char* key;
  int32_t orv_command::*field;
  const char* name;  // as it stands in the log
};

constexpr parameter parameters[] = {
    {VCONFKEY_ORV_COMMAND_PARAM1, &orv_command::param1, "VCONFKEY_ORV_COMMAND_PARAM1"},
    {VCONFKEY_ORV_COMMAND_PARAM2, &orv_command::param2, "VCONFKEY_ORV_COMMAND_PARAM2"},
    {VCONFKEY_ORV_COMMAND_PARAM3, &orv_command::param3, "VCONFKEY_ORV_COMMAND_PARAM3"},
    {VCONFKEY_ORV_COMMAND_PARAM4, &orv_command::param4, "VCONFKEY_ORV_COMMAND_PARAM4"},
};

void orv_handler(keynode_t* node, void* /*user_data*/) {
  orv_log_info("orv_handler(): key = %s \n", vconf_keynode_get_name(node));
  const int type = vconf_keynode_get_type(node);
  if (type != ORV_VCONF_TYPE_INT) {
    orv_log_error("orv_handler():: key-type miss-matched! (type=%d) \n", type);
    return;
  }
  orv_command record{};
  if (vconf_get_int(VCONFKEY_ORV_COMMAND, &record.command) < 0) {
    orv_log_error("orv_handler():: get failed! \n");
    return;
  }
  const command_row* row = find_command(record.command);
  if (row == nullptr) {
    orv_log_error("command(0x%x) not found! \n", static_cast<unsigned>(record.command));
    return;
  }
  if (row->handler == nullptr) {
    return;
  }
  for (const parameter& one : parameters) {
    const int result = vconf_get_int(one.key, &(record.*one.field));
    if (result < 0) {
      orv_log_error("vconf_get_int(%s) failed (ret=%d) \n", one.name, result);
      return;
    }
  }
  const owned_text data{vconf_get_str(VCONFKEY_ORV_COMMAND_DATA)};
  if (!data) {
    orv_log_error("vconf_get_int(VCONFKEY_ORV_COMMAND_DATA) failed \n");
    return;
  }
  row->handler(&record, data.get());
}

}  // namespace
}  // namespace orv

int orv_init_handler(void) {
  orv_log_info("orv_init_handler+ \n");
  const timeval start = orv::wall_clock();
  orv::reset_keys();
  orv_start_time = orv::to_ms(start);
  if (vconf_notify_key_changed(VCONFKEY_ORV_COMMAND, orv::orv_handler, nullptr) < 0) {
    orv_log_error("vconf_notify_key_changed(VCONFKEY_ORV_COMMAND) is failed.\n");
    return -1;
  }
  // In the background: the shell ends at once, and so does this call.
  [[maybe_unused]] const int ignored = system("dlogutil UI &");
  orv_log_info("orv_init_handler- \n");
  return 0;
}

void orv_destroy_handler(void) {
  orv_log_info("orv_destroy_handler+ \n");
  vconf_ignore_key_changed(VCONFKEY_ORV_COMMAND, orv::orv_handler);
  orv_log_info("orv_destroy_handler- \n");
}
