#include "touch.h"

#include <orv/protocol.h>

#include <string>

#include "injection.h"

namespace orvctl {

void send_touches(context& shared, std::initializer_list<touch> touches) {
  for (const auto& [action, at] : touches) {
    const char* const name = action == ORV_PRESS ? "press " : "release ";
    const std::string place = std::to_string(at.x) + "," + std::to_string(at.y);
    if (!inject(shared, name + place,
                {ORV_COMMAND_EVENT, {ORV_EVENT_TOUCH, action, at.x, at.y}, {}})) {
      return;
    }
  }
}

}  // namespace orvctl
