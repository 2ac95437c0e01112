// Foreign text on a terminal.
#ifndef ORV_TOOL_PRINTABLE_H
#define ORV_TOOL_PRINTABLE_H

#include <algorithm>
#include <string>

namespace orvctl {

// Terminals take commands from control characters, and a thread's name can hold any.
inline std::string printable(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7f; }, '?');
  return text;
}

}  // namespace orvctl

#endif
