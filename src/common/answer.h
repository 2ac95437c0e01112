// Answering through the result keys.
#ifndef ORV_COMMON_ANSWER_H
#define ORV_COMMON_ANSWER_H

#include <orv/protocol.h>
#include <vconf.h>

namespace orv {

inline void answer(int result) {
  vconf_set_int(VCONFKEY_ORV_RESULT, result);
}

// The text stands before the result says that it does.
inline void answer(const char* text, int result) {
  vconf_set_str(VCONFKEY_ORV_RESULT_DATA, text);
  answer(result);
}

}  // namespace orv

#endif
