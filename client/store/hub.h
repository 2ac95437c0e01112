// Changes of the agent's answer keys, for any number of listeners.
//
// The platform knows one callback for a key and a function, and a process has one store. So the
// keys are registered once, while there is a listener, and each change is passed on to all.
#ifndef ORV_CLIENT_STORE_HUB_H
#define ORV_CLIENT_STORE_HUB_H

#include <functional>
#include <optional>
#include <string>

#include "../loop.h"

namespace orv_client::store {

enum class change { result, text };

// Hears of every write of the two keys, in their order, while it lives.
class listener {
 public:
  using function = std::function<void(change)>;  // may destroy this and other listeners

  explicit listener(function on_change);
  listener(const listener&) = delete;
  listener& operator=(const listener&) = delete;
  ~listener();

  // False when the store cannot be watched: nothing will be heard.
  [[nodiscard]] bool listening() const { return listening_; }

  void hear(change what) const { on_change_(what); }

 private:
  function on_change_;
  bool listening_;
};

// How long it takes at most until it is known that no tick is half written. Any change may shorten
// it. Zero: it is known now.
milliseconds until_between_ticks();

std::optional<std::string> read_text(const char* key);

}  // namespace orv_client::store

#endif
