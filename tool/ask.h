// Commands as subcommands send them: failures are told on standard error.
#ifndef ORV_TOOL_ASK_H
#define ORV_TOOL_ASK_H

#include <optional>
#include <string>
#include <string_view>

#include "context.h"
#include "exchange.h"

namespace orvctl {

// Runs the exchange; a failure becomes the exit status. With an answer, the exit status is the
// answer's.
std::optional<answer> ask(context& shared, const command& sent);

// Tells that an answer's text is no `what`; the exit status becomes failure.
void refuse_answer(context& shared, const char* what, const std::string& text);

// Asks a query and parses its text, a `what`. Empty without an answer or when the text is none.
template <class Parse>
auto ask_for(context& shared, const char* what, int query, Parse parse)
    -> decltype(parse(std::string_view{})) {
  const auto answered = ask(shared, {query, {}, {}});
  if (!answered) {
    return std::nullopt;
  }
  auto found = parse(*answered->text);
  if (!found) {
    refuse_answer(shared, what, *answered->text);
  }
  return found;
}

// What `ask` is made of, for who asks more than one thing: the first sets the exit status, the
// second returns it.
bool store_is_usable(context& shared);
int tell(const context& shared, const command& sent, exchange_error error);

}  // namespace orvctl

#endif
