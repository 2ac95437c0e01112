#include <cctype>
#include <string_view>

#include "print.h"

namespace reference {
namespace {

std::string escaped(std::string_view text) {
  std::string roff;
  for (const char one : text) {
    if (one == '\\') {
      roff += "\\e";
    } else if (one == '-') {
      roff += "\\-";
    } else {
      roff += one;
    }
  }
  return roff;
}

// Text on lines of its own: none is taken for a request, and each stays a line.
std::string lines(std::string_view text) {
  std::string roff;
  if (text.empty()) {
    return roff;
  }
  for (const std::string& line : CLI::detail::split(std::string{text}, '\n')) {
    roff += (roff.empty() ? "" : ".br\n");
    roff += (line.starts_with('.') || line.starts_with('\'') ? "\\&" : "") + escaped(line) + "\n";
  }
  return roff;
}

std::string bold(std::string_view text) {
  return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(std::string_view text) {
  return "\\fI" + escaped(text) + "\\fR";
}

std::string upper(std::string text) {
  for (char& one : text) {
    one = static_cast<char>(std::toupper(static_cast<unsigned char>(one)));
  }
  return text;
}

std::string summary(std::string text) {
  if (text.ends_with('.')) {
    text.pop_back();
  }
  if (!text.empty()) {
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  }
  return text;
}

std::string tag(const option& one) {
  if (one.positional) {
    return italic(one.names.front()) + (one.repeated ? "..." : "");
  }
  std::string names;
  for (const std::string& name : one.names) {
    names += (names.empty() ? "" : ", ") + bold(name);
  }
  return one.value_name.empty() ? names : names + " " + italic(one.value_name);
}

std::string entry(const option& one) {
  std::string roff = ".TP\n" + tag(one) + "\n" + lines(one.description);
  if (!one.choices.empty()) {
    roff += ".br\nOne of: " + escaped(CLI::detail::join(one.choices, ", ")) + ".\n";
  }
  if (!one.limits.empty()) {
    roff += ".br\nValue: " + escaped(one.limits) + ".\n";
  }
  if (!one.default_value.empty()) {
    roff += ".br\nDefault: " + escaped(one.default_value) + ".\n";
  }
  return roff;
}

std::string entries(const command& program) {
  std::string roff;
  for (const option& one : program.options) {
    roff += entry(one);
  }
  return roff;
}

std::vector<std::string> paragraphs(std::string_view text) {
  constexpr std::string_view blank_line = "\n\n";
  std::vector<std::string> found;
  while (!text.empty()) {
    const size_t end = std::min(text.find(blank_line), text.size());
    found.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + blank_line.size(), text.size()));
  }
  return found;
}

std::string plain_paragraphs(const std::string& footer) {
  std::string roff;
  for (const std::string& paragraph : paragraphs(footer)) {
    roff += ".PP\n" + lines(paragraph);
  }
  return roff;
}

std::string subcommands(const command& program) {
  std::string roff;
  for (const command& below : program.subcommands) {
    roff += ".SS " + escaped(below.usage) + "\n" + lines(below.description) + entries(below) +
            plain_paragraphs(below.footer) + subcommands(below);
  }
  return roff;
}

std::string footer_section(const std::string& paragraph) {
  const size_t colon = paragraph.substr(0, paragraph.find('\n')).find(':');
  if (colon == std::string::npos) {
    return plain_paragraphs(paragraph);
  }
  std::string body = paragraph.substr(colon + 1);
  body.erase(0, body.starts_with('\n') ? 1 : body.find_first_not_of(' '));
  return ".SH " + escaped(upper(paragraph.substr(0, colon))) + "\n" + lines(body);
}

}  // namespace

std::string man_page(const command& program, const std::string& section,
                     const std::string& version) {
  std::string roff = ".TH " + upper(program.name) + " " + section + " \"\" \"" + version + "\"\n";
  roff +=
      ".SH NAME\n" + escaped(program.name) + " \\- " + escaped(summary(program.description)) + "\n";
  roff += ".SH SYNOPSIS\n" + bold(program.name) +
          escaped(program.usage.substr(program.name.size())) + "\n";
  roff += ".SH DESCRIPTION\n" + lines(program.description);
  roff += ".SH OPTIONS\n" + entries(program);
  roff += program.subcommands.empty() ? "" : ".SH SUBCOMMANDS\n" + subcommands(program);
  for (const std::string& paragraph : paragraphs(program.footer)) {
    roff += footer_section(paragraph);
  }
  return roff;
}

}  // namespace reference
