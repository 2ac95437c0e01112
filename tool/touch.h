// Touching the screen.
#ifndef ORV_TOOL_TOUCH_H
#define ORV_TOOL_TOUCH_H

#include <initializer_list>

#include "context.h"

namespace orvctl {

// Pixels from the screen's top left corner.
struct point {
  int x = 0;
  int y = 0;
};

struct touch {
  int action;  // ORV_PRESS or ORV_RELEASE
  point at;
};

// Ends at the first touch that the agent does not answer, not at one that it finds bad: a finger
// that went down has to come up.
void send_touches(context& shared, std::initializer_list<touch> touches);

}  // namespace orvctl

#endif
