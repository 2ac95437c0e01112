// How a request ended, whatever carried it.
#ifndef ORV_CLIENT_ENDING_H
#define ORV_CLIENT_ENDING_H

#include <orv/client.h>

#include <optional>
#include <string>

namespace orv_client {

struct ending {
  orv_outcome outcome = ORV_RAN;
  orv_why why = ORV_WHY_NONE;
  std::string message = {};
  int32_t result = 0;
  std::optional<std::string> text = {};

  // As a reply without typed records. Its texts are this ending's.
  [[nodiscard]] orv_reply view() const {
    return {outcome,         why,     result,  text ? text->c_str() : nullptr,
            message.c_str(), nullptr, nullptr, nullptr};
  }
};

inline ending not_run(orv_why why, std::string message) {
  return {ORV_NOT_RUN, why, std::move(message)};
}

inline ending may_have_run(orv_why why, std::string message) {
  return {ORV_MAY_HAVE_RUN, why, std::move(message)};
}

// What a waiting call within a callback ends with.
inline ending within_callback() {
  return not_run(ORV_WHY_IN_CALLBACK,
                 "a waiting call within a callback of the main loop would wait for ever");
}

}  // namespace orv_client

#endif
