// How a subcommand describes the words that it takes. Parser, help, manual page and completions
// rest on these descriptions alone.
//
// The parser's own header stays out of the subcommands' sources: it takes seconds to compile and
// makes objects in each source that includes it, before main begins.
#ifndef ORV_TOOL_OPTIONS_H
#define ORV_TOOL_OPTIONS_H

#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "camera.h"

namespace CLI {
class App;
}

namespace orvctl {

// What a command line comes to.
using job = std::function<exit_status()>;

// Reads one value and keeps it. Why the text is none, in words that follow the option's name; empty
// when it is one.
using reader = std::function<std::string(const std::string& text)>;

constexpr int any_number = 1 << 29;

struct value_words {
  std::string name;  // "--for", or "NAME" for one without an option
  std::string help;
  std::string type = "TEXT";           // as help shows it
  std::vector<std::string> choices{};  // none: any text that is read
  std::string usual{};                 // as help shows it
  bool required = false;
  int most = 1;            // times
  std::string not_with{};  // an option described before
};

struct number_words {
  std::string name;
  std::string help;
  bool required = false;
  int least = std::numeric_limits<int>::min();
  int most = std::numeric_limits<int>::max();
  std::string usual{};  // as help shows it
};

// What is read into has to live until the job is done.
class subcommand {
 public:
  subcommand(CLI::App& described, job& chosen) : described_{&described}, chosen_{&chosen} {}

  // One below this one. It takes over the footer.
  [[nodiscard]] subcommand add(const char* name, const char* help) const;
  // A name below this one that users try, and the one that they mean by it.
  void misnomer(const char* name, const char* meant) const;
  void footer(const std::string& text) const;
  // Whether one below has to follow; none or one may.
  void require_one_below() const;
  void allow_one_below() const;

  void flag(const char* name, bool& given, const char* help) const;
  void value(const value_words& words, const reader& read) const;
  // Without one, the number stays as it is.
  void number(const number_words& words, std::optional<int>& number) const;

  // What happens when this was given, and none below it.
  void run(const job& what) const;

 private:
  CLI::App* described_;
  job* chosen_;
};

// Readers that take any text, and any that is not empty.
reader any_text(std::string& text);
reader any_words(std::string& text);

// Prints what is wrong with the words together. The status.
exit_status refuse_words(const std::string& why);

}  // namespace orvctl

#endif
