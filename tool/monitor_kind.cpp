#include "monitor_kind.h"

#include <algorithm>
#include <iterator>

namespace orvctl {

const monitor_kind* find_monitor(std::string_view name) {
  const auto* row = std::find_if(std::begin(monitor_kinds), std::end(monitor_kinds),
                                 [name](const auto& one) { return one.name == name; });
  return row != std::end(monitor_kinds) ? row : nullptr;
}

}  // namespace orvctl
