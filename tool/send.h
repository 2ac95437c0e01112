// Any command, and its answer as it comes.
#ifndef ORV_TOOL_SEND_H
#define ORV_TOOL_SEND_H

#include <string>
#include <vector>

#include "context.h"

namespace orvctl {

// As a user writes them; each is one that parse_code or parse_int reads.
struct send_options {
  std::string code;
  std::vector<std::string> parameters;
  std::string data;
};

void send_any(context& shared, const send_options& given);

}  // namespace orvctl

#endif
