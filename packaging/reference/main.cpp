// orv-reference: prints a program's manual page, or fills a completion script's tables, from the
// description of options that the program itself parses with. Runs when the project is built.

#include <stdio.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "command.h"
#include "host/command_line.h"
#include "print.h"
#include "tool/command_line.h"

namespace {

reference::command describe_tool() {
  CLI::App app;
  orvctl::context shared;
  orvctl::job chosen;
  orvctl::describe_program(app, shared, chosen);
  reference::command described = reference::read(app);
  std::vector<std::string> keys;
  size_t count = 0;
  const orv_key* const known = orv_keys(&count);
  std::transform(known, known + count, std::back_inserter(keys),
                 [](const orv_key& key) { return key.name; });
  reference::set_choices(described, "KEY", keys);
  return described;
}

reference::command describe_host() {
  CLI::App app;
  orv_host::options given;
  orv_host::describe_program(app, given);
  return reference::read(app);
}

// The script, with the tables in place of the line that says so.
int fill(const std::string& script, const std::string& tables) {
  std::ifstream source{script};
  for (std::string line; std::getline(source, line);) {
    std::cout << (line == "@TABLES@" ? tables : line + "\n");
  }
  return source.eof() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Print a program's manual page or completion script.", "orv-reference"};
  std::string program;
  std::string section;
  std::string script;
  app.require_subcommand(1);
  app.add_option("PROGRAM", program)->required()->check(CLI::IsMember({"orvctl", "orv-host"}));
  app.add_subcommand("man")->add_option("SECTION", section)->required();
  CLI::App* completion = app.add_subcommand("completion");
  completion->add_option("SCRIPT", script)->required();
  CLI11_PARSE(app, argc, argv);

  const reference::command described = program == "orvctl" ? describe_tool() : describe_host();
  if (completion->parsed()) {
    return fill(script, reference::completion_tables(described));
  }
  std::cout << reference::man_page(described, section, ORV_VERSION);
  return 0;
}
