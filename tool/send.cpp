#include <stdio.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <vector>

#include "command_names.h"
#include "numbers.h"
#include "printable.h"
#include "subcommand.h"

namespace orvctl {
namespace {

struct options {
  std::string code;
  std::vector<std::string> parameters;
  std::string data;
};

std::string check_code(const std::string& text) {
  return parse_code(text) ? "" : "no command \"" + text + "\"; a number or one of: " + name_list();
}

std::string check_number(const std::string& text) {
  return parse_int(text) ? "" : "\"" + text + "\" is no 32-bit number";
}

void run(context& shared, const options& given) {
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

}  // namespace

void add_send(CLI::App& app, context& shared) {
  const auto given = std::make_shared<options>();
  CLI::App* send = app.add_subcommand("send", "Send any command and print its answer");
  send->footer("Negative numbers go behind --, as in: send 0x104 -- 3 1 -5 7");
  send->add_option("CODE", given->code, "Command: a name, or a number in decimal or hex (0x208)")
      ->required()
      ->check(CLI::Validator{check_code, "{" + name_list() + "}"});
  send->add_option("PARAMETER", given->parameters,
                   "Up to four integers, decimal or hex; 0 if not given")
      ->expected(0, 4)
      ->check(CLI::Validator{check_number, ""});
  send->add_option("--data", given->data, "The command's text");
  send->callback([&shared, given] { run(shared, *given); });
}

}  // namespace orvctl
