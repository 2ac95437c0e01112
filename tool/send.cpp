#include "send.h"

#include <stdio.h>
#include <unistd.h>

#include "ask.h"
#include "command_names.h"
#include "numbers.h"
#include "printable.h"

namespace orvctl {

void send_any(context& shared, const send_options& given) {
  command sent{*parse_code(given.code), {}, given.data};
  for (size_t i = 0; i < given.parameters.size(); ++i) {
    sent.parameters.at(i) = *parse_int(given.parameters[i]);
  }
  if (const auto answered = ask(shared, sent)) {
    printf("result %d\n", answered->result);
    if (answered->text) {
      const bool on_terminal = isatty(STDOUT_FILENO) != 0;
      printf("data   %s\n", (on_terminal ? printable(*answered->text) : *answered->text).c_str());
    }
  }
}

}  // namespace orvctl
