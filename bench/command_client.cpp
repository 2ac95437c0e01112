#include "command_client.h"

#include <glib.h>
#include <orv/protocol.h>
#include <stdlib.h>
#include <vconf.h>

#include <iterator>

namespace orv_bench {
namespace {

void note_answer(keynode_t* /*node*/, void* answered) {
  *static_cast<bool*>(answered) = true;
}

}  // namespace

const key_set agent_keys = {{VCONFKEY_ORV_COMMAND_PARAM1, VCONFKEY_ORV_COMMAND_PARAM2,
                             VCONFKEY_ORV_COMMAND_PARAM3, VCONFKEY_ORV_COMMAND_PARAM4},
                            VCONFKEY_ORV_COMMAND_DATA,
                            VCONFKEY_ORV_COMMAND,
                            VCONFKEY_ORV_RESULT_DATA,
                            VCONFKEY_ORV_RESULT};

command_client::command_client(const key_set& keys) : keys_{keys} {
  vconf_notify_key_changed(keys_.result, note_answer, &answered_);
}

command_client::~command_client() {
  vconf_ignore_key_changed(keys_.result, note_answer);
}

int command_client::run(const orv_command& command, const char* data) {
  const int values[] = {command.param1, command.param2, command.param3, command.param4};
  answered_ = false;
  for (size_t i = 0; i < std::size(values); ++i) {
    vconf_set_int(keys_.parameters[i], values[i]);
  }
  vconf_set_str(keys_.data, data);
  vconf_set_int(keys_.command, command.command);
  while (!answered_) {
    g_main_context_iteration(nullptr, TRUE);
  }
  int result = 0;
  vconf_get_int(keys_.result, &result);
  return result;
}

std::string command_client::result_data() const {
  char* text = vconf_get_str(keys_.result_data);
  std::string copy{text != nullptr ? text : ""};
  free(text);
  return copy;
}

}  // namespace orv_bench
