#include "command.h"

#include <string_view>

namespace reference {
namespace {

// The parser's type text: "FLOAT", "FLOAT:FLOAT in [0 - 1]", "TEXT:{on,off}".
std::string name_in(const std::string& type) {
  return type.substr(0, type.find(':'));
}

std::string limits_in(const std::string& type) {
  const size_t colon = type.find(':');
  return colon == std::string::npos ? "" : type.substr(colon + 1);
}

std::vector<std::string> choices_in(const std::string& type) {
  const size_t open = type.find('{');
  const size_t close = type.find('}', open);
  if (open == std::string::npos || close == std::string::npos) {
    return {};
  }
  std::vector<std::string> choices =
      CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
  for (std::string& choice : choices) {
    CLI::detail::trim(choice);
  }
  return choices;
}

value_kind kind_of(const CLI::Option& described, const std::string& type) {
  if (described.get_items_expected_max() == 0) {
    return value_kind::none;
  }
  if (!choices_in(type).empty()) {
    return value_kind::choice;
  }
  return type.starts_with("DIR")    ? value_kind::directory
         : type.starts_with("FILE") ? value_kind::file
                                    : value_kind::any;
}

std::vector<std::string> names_of(const CLI::Option& described) {
  if (described.get_positional()) {
    return {described.get_name(true)};
  }
  std::vector<std::string> names;
  for (const std::string& name : described.get_snames()) {
    names.push_back("-" + name);
  }
  for (const std::string& name : described.get_lnames()) {
    names.push_back("--" + name);
  }
  return names;
}

option read_option(const CLI::Option& described) {
  const std::string type = described.get_type_name();
  const value_kind takes = kind_of(described, type);
  return {.names = names_of(described),
          .positional = described.get_positional(),
          .repeated = described.get_expected_max() > 1,
          .takes = takes,
          .value_name = takes == value_kind::none ? "" : name_in(type),
          .choices = choices_in(type),
          .limits = takes == value_kind::any ? limits_in(type) : "",
          .default_value = described.get_default_str(),
          .description = described.get_description()};
}

std::string usage_in(const std::string& help) {
  constexpr std::string_view label = "Usage: ";
  const size_t start = help.find(label) + label.size();
  return help.substr(start, help.find('\n', start) - start);
}

bool ends_program(const option& one) {
  return one.names.back() == "--help" || one.names.back() == "--version";
}

command read_command(const CLI::App& app, const std::string& above, std::vector<option> inherited) {
  command read{.name = app.get_name(),
               .path = above.empty() ? app.get_name() : above + " " + app.get_name(),
               .description = app.get_description(),
               .usage = usage_in(app.help(above)),
               .footer = app.get_footer(),
               .options = {},
               .inherited = std::move(inherited),
               .subcommands = {}};
  for (const CLI::Option* described :
       app.get_options([](const CLI::Option* one) { return !one->get_group().empty(); })) {
    read.options.push_back(read_option(*described));
  }
  std::vector<option> inheritable = read.inherited;
  for (const option& one : read.options) {
    if (app.get_fallthrough() && !one.positional && !ends_program(one)) {
      inheritable.push_back(one);
    }
  }
  for (const CLI::App* below :
       app.get_subcommands([](const CLI::App* one) { return !one->get_group().empty(); })) {
    read.subcommands.push_back(read_command(*below, read.path, inheritable));
  }
  return read;
}

}  // namespace

command read(const CLI::App& app) {
  return read_command(app, "", {});
}

void set_choices(command& program, const std::string& value_name,
                 const std::vector<std::string>& choices) {
  for (option& one : program.options) {
    if (one.value_name == value_name) {
      one.takes = value_kind::choice;
      one.choices = choices;
    }
  }
  for (command& below : program.subcommands) {
    set_choices(below, value_name, choices);
  }
}

}  // namespace reference
