#include "key.h"

#include <stdio.h>

#include "injection.h"
#include "key_names.h"

namespace orvctl {

void send_key(context& shared, const key_action& action, const std::string& text) {
  const std::string name{keys_like(text).front()};
  inject(shared, std::string{action.name} + " " + name,
         {ORV_COMMAND_EVENT, action.parameters, name});
}

void list_keys() {
  for (const key_name& key : all_keys()) {
    printf("%-16s %d\n", std::string{key.name}.c_str(), key.keycode);
  }
}

}  // namespace orvctl
