// The target query and its answer.
#ifndef ORV_TOOL_TARGET_H
#define ORV_TOOL_TARGET_H

#include <optional>
#include <string>
#include <string_view>

#include "context.h"

namespace orvctl {

struct target {
  std::string category;
  std::string platform;
  std::string model;
  std::string board;
  std::string firmware;
  int byte_order;
  std::string build_type;
  int cis_no;
};

// Empty when the text has not the eight fields. Commas are not escaped; those beyond seven are
// taken as the firmware version's.
std::optional<target> parse_target(std::string_view text);

// Asks the target who it is and prints it as a table or as a JSON object.
void show_target(context& shared, bool json);

}  // namespace orvctl

#endif
