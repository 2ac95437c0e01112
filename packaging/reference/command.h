// What a program's command line offers, as its parser describes it. Manual pages and completions
// are printed from this and nothing else, so they cover whatever the parser knows.
#ifndef ORV_PACKAGING_REFERENCE_COMMAND_H
#define ORV_PACKAGING_REFERENCE_COMMAND_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace reference {

enum class value_kind { none, any, choice, file, directory };

struct option {
  std::vector<std::string> names;  // "-h", "--help"; of a positional, its one name
  bool positional;
  bool repeated;
  value_kind takes;
  std::string value_name;            // as help shows it, without the choices
  std::vector<std::string> choices;  // with value_kind::choice
  std::string limits;                // of other values: "FLOAT in [0 - 1]"
  std::string default_value;
  std::string description;
};

struct command {
  std::string name;
  std::string path;  // "orvctl send"
  std::string description;
  std::string usage;
  std::string footer;
  std::vector<option> options;    // its own
  std::vector<option> inherited;  // of the commands above it that may stand behind it as well
  std::vector<command> subcommands;
};

command read(const CLI::App& app);

// Gives all values of that name these choices: more than a parser's help has room for.
void set_choices(command& program, const std::string& value_name,
                 const std::vector<std::string>& choices);

}  // namespace reference

#endif
