// Commands as subcommands send them: failures are told on standard error.
#ifndef ORV_TOOL_ASK_H
#define ORV_TOOL_ASK_H

#include <optional>
#include <string>

#include "context.h"
#include "exchange.h"

namespace orvctl {

// Runs the exchange; a failure becomes the exit status. With an answer, the exit status is the
// answer's.
std::optional<answer> ask(context& shared, const command& sent);

// Tells that an answer's text is no `what`; the exit status becomes failure.
void refuse_answer(context& shared, const char* what, const std::string& text);

// What `ask` is made of, for who asks more than one thing: the first sets the exit status, the
// second returns it.
bool store_is_usable(context& shared);
int tell(const context& shared, const command& sent, exchange_error error);

}  // namespace orvctl

#endif
