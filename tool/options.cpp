#include "options.h"

#include <CLI/CLI.hpp>

namespace orvctl {

subcommand subcommand::add(const char* name, const char* help) const {
  return {*described_->add_subcommand(name, help), *chosen_};
}

void subcommand::misnomer(const char* name, const char* meant) const {
  CLI::App* const hidden =
      described_->add_subcommand(name)->group("")->fallthrough(false)->allow_extras();
  hidden->callback([name, meant] {
    throw CLI::ValidationError{"no \"" + std::string{name} + "\"; did you mean \"" + meant + "\"?"};
  });
}

void subcommand::footer(const std::string& text) const {
  described_->footer(text);
}

void subcommand::require_one_below() const {
  described_->require_subcommand(1);
}

void subcommand::allow_one_below() const {
  described_->require_subcommand(0, 1);
}

void subcommand::flag(const char* name, bool& given, const char* help) const {
  described_->add_flag(name, given, help);
}

void subcommand::value(const value_words& words, const reader& read) const {
  const auto read_all = [name = words.name, read](const CLI::results_t& texts) {
    for (const std::string& text : texts) {
      if (const std::string why = read(text); !why.empty()) {
        throw CLI::ValidationError{name, why};
      }
    }
    return true;
  };
  CLI::Option* option = described_->add_option(words.name, read_all, words.help);
  option->type_name(words.type)->expected(1, words.most)->required(words.required);
  option->allow_extra_args(words.most > 1)->default_str(words.usual);
  if (!words.choices.empty()) {
    option->check(CLI::IsMember(words.choices));
  }
  if (!words.not_with.empty()) {
    option->excludes(described_->get_option(words.not_with));
  }
}

void subcommand::number(const number_words& words, std::optional<int>& number) const {
  CLI::Option* option = described_->add_option(words.name, number, words.help);
  option->required(words.required)->check(CLI::Range(words.least, words.most));
  option->default_str(words.usual);
}

// The parser asks the subcommands below first.
void subcommand::run(const job& what) const {
  described_->callback([chosen = chosen_, what] {
    if (!*chosen) {
      *chosen = what;
    }
  });
}

reader any_text(std::string& text) {
  return [&text](const std::string& given) {
    text = given;
    return "";
  };
}

reader any_words(std::string& text) {
  return [&text](const std::string& given) {
    text = given;
    return given.empty() ? "the text is empty" : "";
  };
}

exit_status refuse_words(const std::string& why) {
  complain(why + "; see orvctl --help");
  return exit_status::usage;
}

}  // namespace orvctl
