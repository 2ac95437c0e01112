#include "command_names.h"

#include <orv/protocol.h>

#include <algorithm>
#include <iterator>

#include "numbers.h"

namespace orvctl {
namespace {

constexpr command_name names[] = {
    {ORV_COMMAND_AGENT_START, "agent_start", reply::none, ""},
    {ORV_COMMAND_AGENT_STOP, "agent_stop", reply::none, ""},
    {ORV_COMMAND_HEARTBEAT, "heartbeat", reply::none, ""},
    {ORV_COMMAND_EVENT, "event", reply::result, ""},
    {ORV_COMMAND_OSD_IMAGE, "osd_image", reply::none, ""},
    {ORV_COMMAND_MONITOR, "monitor", reply::result, ""},
    {ORV_COMMAND_MULTI_LANG, "multi_lang", reply::none, ""},
    {ORV_COMMAND_SET_CONFIG, "set_config", reply::none, ""},
    {ORV_COMMAND_TARGET_INFO, "target_info", reply::text, ""},
    {ORV_COMMAND_STACK_INFO, "stack_info", reply::text, "523,"},
    {ORV_COMMAND_HEAP_INFO, "heap_info", reply::text, "1,1,"},
    {ORV_COMMAND_SEND_BUFFER, "send_buffer", reply::none, ""},
};

}  // namespace

std::optional<int> parse_code(std::string_view text) {
  const auto* row = std::find_if(std::begin(names), std::end(names),
                                 [text](const auto& one) { return one.name == text; });
  return row != std::end(names) ? std::optional{row->code} : parse_int(text);
}

command_name describe(int code) {
  const auto* row = std::find_if(std::begin(names), std::end(names),
                                 [code](const auto& one) { return one.code == code; });
  return row != std::end(names) ? *row : command_name{code, "", reply::unknown, ""};
}

bool begins_like_a_query(std::string_view text) {
  return std::any_of(std::begin(names), std::end(names), [text](const auto& one) {
    return !one.text_start.empty() && text.starts_with(one.text_start);
  });
}

std::string to_text(int code) {
  const std::string_view name = describe(code).name;
  return hexadecimal(code) + (name.empty() ? "" : " (" + std::string{name} + ")");
}

std::string name_list() {
  std::string list;
  for (const command_name& row : names) {
    list += (list.empty() ? "" : ", ") + std::string{row.name};
  }
  return list;
}

}  // namespace orvctl
