#include "commands.h"

#include <orv/client.h>
#include <orv/protocol.h>

#include <algorithm>
#include <charconv>
#include <iterator>

namespace orv_client {
namespace {

constexpr command_row rows[] = {
    {"agent_start", ORV_COMMAND_AGENT_START, answer_kind::none, ""},
    {"agent_stop", ORV_COMMAND_AGENT_STOP, answer_kind::none, ""},
    {"heartbeat", ORV_COMMAND_HEARTBEAT, answer_kind::none, ""},
    {"event", ORV_COMMAND_EVENT, answer_kind::result, ""},
    {"osd_image", ORV_COMMAND_OSD_IMAGE, answer_kind::none, ""},
    {"monitor", ORV_COMMAND_MONITOR, answer_kind::result, ""},
    {"multi_lang", ORV_COMMAND_MULTI_LANG, answer_kind::none, ""},
    {"set_config", ORV_COMMAND_SET_CONFIG, answer_kind::none, ""},
    {"target_info", ORV_COMMAND_TARGET_INFO, answer_kind::text, ""},
    {"stack_info", ORV_COMMAND_STACK_INFO, answer_kind::text, "523,"},
    {"heap_info", ORV_COMMAND_HEAP_INFO, answer_kind::text, "1,1,"},
    {"send_buffer", ORV_COMMAND_SEND_BUFFER, answer_kind::none, ""},
};
static_assert(std::is_sorted(std::begin(rows), std::end(rows),
                             [](const auto& one, const auto& other) {
                               return one.code < other.code;
                             }));

constexpr auto names = [] {
  std::array<orv_command_name, std::size(rows)> made{};
  std::transform(std::begin(rows), std::end(rows), made.begin(), [](const command_row& row) {
    return orv_command_name{row.name, row.code, row.answers_with != answer_kind::none};
  });
  return made;
}();

}  // namespace

command_row describe(int32_t code) {
  const auto* row = std::find_if(std::begin(rows), std::end(rows),
                                 [code](const auto& one) { return one.code == code; });
  return row != std::end(rows) ? *row : command_row{"", code, answer_kind::unknown, ""};
}

bool begins_like_a_query(std::string_view text) {
  return std::any_of(std::begin(rows), std::end(rows), [text](const auto& one) {
    return !one.text_start.empty() && text.starts_with(one.text_start);
  });
}

std::string to_text(int32_t code) {
  char digits[16];
  const auto [end, error] =
      std::to_chars(digits, digits + sizeof digits, static_cast<uint32_t>(code), 16);
  const std::string name = describe(code).name;
  return "0x" + std::string{digits, end} + (name.empty() ? "" : " (" + name + ")");
}

}  // namespace orv_client

const orv_command_name* orv_commands(size_t* count) {
  *count = orv_client::names.size();
  return orv_client::names.data();
}
