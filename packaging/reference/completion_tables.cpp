#include "print.h"

namespace reference {
namespace {

std::string quoted(const std::string& text) {
  std::string shell = "'";
  for (const char one : text) {
    shell += one == '\'' ? "'\\''" : std::string(1, one);
  }
  return shell + "'";
}

std::string row(const std::string& key, const std::string& value) {
  return "  " + quoted(key) + " " + quoted(value) + "\n";
}

std::string word_line(const std::string& word, const std::string& description) {
  return word + ":" + description.substr(0, description.find('\n')) + "\n";
}

std::string word_lines(const option& one) {
  std::string lines;
  for (const std::string& word : one.positional ? one.choices : one.names) {
    lines += word_line(word, one.description);
  }
  return lines;
}

std::string value_of(const option& one) {
  switch (one.takes) {
    case value_kind::choice:
      return "one of " + CLI::detail::join(one.choices, " ");
    case value_kind::directory:
      return "directory";
    case value_kind::file:
      return "file";
    case value_kind::any:
    case value_kind::none:
      break;
  }
  return "any";
}

struct tables {
  std::string words;
  std::string values;
};

void add(tables& made, const command& place) {
  std::string lines;
  for (const auto* options : {&place.options, &place.inherited}) {
    for (const option& one : *options) {
      lines += word_lines(one);
      if (!one.positional && one.takes != value_kind::none) {
        for (const std::string& name : one.names) {
          made.values += row(place.path + " " + name, value_of(one));
        }
      }
    }
  }
  for (const command& below : place.subcommands) {
    lines += word_line(below.name, below.description);
  }
  made.words += row(place.path, lines);
  for (const command& below : place.subcommands) {
    add(made, below);
  }
}

}  // namespace

std::string completion_tables(const command& program) {
  tables made;
  add(made, program);
  return "_" + program.name + "_words=(\n" + made.words + ")\n_" + program.name + "_values=(\n" +
         made.values + ")\n";
}

}  // namespace reference
