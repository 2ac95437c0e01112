// Foreign text on a terminal.
#ifndef ORV_CLIENT_PRINTABLE_H
#define ORV_CLIENT_PRINTABLE_H

#include <string>

namespace orv_client {

// Terminals take commands from control characters, those of UTF-8's second half too (0xc2 and 0x80
// to 0x9f), and a thread's name can hold any.
inline std::string printable(std::string text) {
  unsigned char before = 0;
  for (char& letter : text) {
    const auto byte = static_cast<unsigned char>(letter);
    if (byte < ' ' || byte == 0x7f || (before == 0xc2 && byte >= 0x80 && byte < 0xa0)) {
      letter = '?';
    }
    before = byte;
  }
  return text;
}

}  // namespace orv_client

#endif
