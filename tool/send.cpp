// Any command, and its answer as it comes.

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "subcommands.h"
#include "text.h"

namespace orvctl {
namespace {

struct command {
  orv_request request{};
  size_t parameters = 0;  // how many were given
  std::string data;
};

std::span<const orv_command_name> commands() {
  size_t count = 0;
  const orv_command_name* rows = orv_commands(&count);
  return {rows, count};
}

std::string command_names() {
  std::vector<std::string> names;
  for (const orv_command_name& row : commands()) {
    names.emplace_back(row.name);
  }
  return join(names);
}

std::string read_code(const std::string& text, command& sent) {
  const auto rows = commands();
  const auto named =
      std::find_if(rows.begin(), rows.end(), [&text](const auto& row) { return row.name == text; });
  const auto code = named != rows.end() ? std::optional{named->code} : parse_int(text);
  sent.request.code = code.value_or(0);
  return code ? "" : "no command \"" + text + "\"; a number or one of: " + command_names();
}

std::string read_parameter(const std::string& text, command& sent) {
  const auto number = parse_int(text);
  sent.request.parameters[sent.parameters++] = number.value_or(0);
  return number ? "" : "\"" + text + "\" is no 32-bit number";
}

exit_status send(const context& shared, command& sent) {
  sent.request.data = sent.data.c_str();
  const reply got = camera{shared}.send(sent.request, shared.timeout_ms());
  if (!got || got->outcome != ORV_RAN) {
    return refuse(got.get());
  }
  shared.out.print("result %d\n", got->result);
  if (got->text != nullptr) {
    const std::string text = got->text;
    shared.out.print("data   %s\n", (shared.out.is_terminal() ? printable(text) : text).c_str());
  }
  return status_of_result(got->result);
}

}  // namespace

void add_send(const subcommand& program, context& shared) {
  const subcommand words = program.add("send", "Send any command and print its answer");
  const auto sent = std::make_shared<command>();
  words.value({.name = "CODE",
               .help = "Command: a name, or a number in decimal or hex (0x208)",
               .type = "TEXT:{" + command_names() + "}",
               .required = true},
              [sent](const std::string& text) { return read_code(text, *sent); });
  words.value({.name = "PARAMETER",
               .help = "Up to four integers, decimal or hex; 0 if not given",
               .most = static_cast<int>(std::size(sent->request.parameters))},
              [sent](const std::string& text) { return read_parameter(text, *sent); });
  words.value({.name = "--data", .help = "The command's text"}, any_text(sent->data));
  words.run([&shared, sent] { return send(shared, *sent); });
}

}  // namespace orvctl
