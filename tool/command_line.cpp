#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <sstream>
#include <string_view>
#include <vector>

#include "subcommands.h"
#include "text.h"

namespace orvctl {
namespace {

void add_help(const subcommand& program, context& shared);

struct subcommand_row {
  std::string_view name;
  void (*add)(const subcommand& program, context& shared);
};

constexpr subcommand_row subcommands[] = {
    {"target", add_target}, {"heap", add_heap},   {"stack", add_stack},     {"key", add_key},
    {"touch", add_touch},   {"swipe", add_swipe}, {"monitor", add_monitor}, {"send", add_send},
    {"log", add_log},       {"help", add_help},
};

std::string subcommand_names() {
  std::vector<std::string> names;
  for (const subcommand_row& one : subcommands) {
    names.emplace_back(one.name);
  }
  return join(names);
}

bool is_subcommand(std::string_view word) {
  return std::any_of(std::begin(subcommands), std::end(subcommands),
                     [word](const subcommand_row& one) { return one.name == word; });
}

// If any subcommand is among the words, none that is not can have been meant. Help lists all.
bool may_be_meant(const subcommand_row& one, std::span<char* const> words) {
  const auto has = [words](std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
  };
  const auto is_there = [has](const subcommand_row& other) { return has(other.name); };
  return is_there(one) || has("--help") || has("-h") ||
         std::none_of(std::begin(subcommands), std::end(subcommands), is_there);
}

constexpr char footer[] =
    "\n"
    "Environment:\n"
    "  ORV_CAMERA is the camera's address; --camera and --store go before it.\n"
    "  ORV_PLATFORM_ROOT names the store's directory where no address is given.\n\n"
    "Examples:\n"
    "  orvctl target\n"
    "  orvctl key tap KEY_MENU\n"
    "  orvctl monitor watch cpu heap --for 10s\n"
    "  orvctl --store /run/orv-platform send heap_info\n\n"
    "See also:\n"
    "  orv-host(8)";

std::string one_line(const CLI::App* /*app*/, const CLI::Error& error) {
  return "orvctl: " + std::string{error.what()} + "; see orvctl --help\n";
}

// The library's own shows in numbers how often a repeated argument may be given, "(0x)".
class usage_formatter : public CLI::Formatter {
 public:
  std::string make_option_usage(const CLI::Option* option) const override {
    const std::string name =
        make_option_name(option, true) + (option->get_expected_max() > 1 ? "..." : "");
    return option->get_required() ? name : "[" + name + "]";
  }
};

// An empty text is most often a variable that was never set.
void refuse_empty(const char* option, const std::string& text) {
  if (text.empty()) {
    throw CLI::ValidationError{option, "the text is empty"};
  }
}

// The range check lets it pass: it is neither less nor more than anything.
std::string refuse_nan(const std::string& text) {
  return std::isnan(strtod(text.c_str(), nullptr)) ? "\"" + text + "\" is no time" : "";
}

void add_camera(CLI::App& app, context& shared) {
  const auto take_address = [&shared](const std::string& address) {
    refuse_empty("--camera", address);
    shared.address = address;
  };
  const auto take_store = [&shared](const std::string& directory) {
    refuse_empty("--store", directory);
    shared.address = "store:" + directory;
  };
  CLI::Option* store =
      app.add_option_function<std::string>(
             "--store", take_store,
             "Directory of the platform's store (default: the one that ORV_PLATFORM_ROOT names, or "
             "the camera's own); the same as --camera store:DIR")
          ->type_name("DIR");
  app.add_option_function<std::string>("-c,--camera", take_address,
                                       "The camera, as in store:DIR (default: what ORV_CAMERA "
                                       "says, or the store)")
      ->type_name("ADDRESS")
      ->excludes(store);
}

}  // namespace

void describe_program(CLI::App& app, context& shared, job& chosen, std::span<char* const> words) {
  app.name("orvctl")->description("Drive a camera's test agent.");
  app.formatter(std::make_shared<usage_formatter>());
  app.require_subcommand(0, 1);  // so that a wrong name is reported as such
  app.final_callback([&app] {
    if (app.get_subcommands().empty()) {
      throw CLI::RequiredError("A subcommand");
    }
  });
  app.failure_message(one_line);
  app.set_version_flag(
      "--version",
      std::string{"orvctl " ORV_VERSION " (liborv-client "} + orv_client_version() + ")",
      "Print the versions of the program and its library");
  app.add_option("--timeout", shared.timeout_s, "Seconds to wait for an answer")
      ->check(CLI::Range(0.001, 86400.0))
      ->check(refuse_nan)
      ->default_str("5");
  add_camera(app, shared);
  app.fallthrough();
  const subcommand program{app, chosen};
  for (const subcommand_row& one : subcommands) {
    if (may_be_meant(one, words)) {
      one.add(program, shared);
    }
  }
  app.footer("Exit status:\n" + exit_statuses() +
             footer);  // last: a subcommand takes over the footer that is there when it is added
}

namespace {

// Parses the words and runs the subcommand.
exit_status obey(std::span<char* const> words) {
  CLI::App app;
  context shared;
  job chosen;
  describe_program(app, shared, chosen, words);
  try {
    app.parse(static_cast<int>(words.size()), words.data());
  } catch (const CLI::ParseError& error) {
    std::ostringstream help;
    const bool helped = app.exit(error, help) == 0;
    shared.out.write(help.str());
    return helped ? exit_status::done : exit_status::usage;
  }
  return chosen();
}

void add_help(const subcommand& program, context& /*shared*/) {
  const subcommand help = program.add("help", "Print this help, or that of a subcommand");
  const auto given = std::make_shared<std::vector<std::string>>();
  help.value({.name = "SUBCOMMAND",
              .help = "As in monitor watch",
              .type = "TEXT:{" + subcommand_names() + "}",
              .most = any_number},
             [given](const std::string& word) -> std::string {
               given->push_back(word);
               return given->size() > 1 || is_subcommand(word) ? "" : "no subcommand " + word;
             });
  help.run([given] {
    std::string program_name = "orvctl";
    std::string option = "--help";
    std::vector<char*> words{program_name.data()};
    std::transform(given->begin(), given->end(), std::back_inserter(words),
                   [](std::string& word) { return word.data(); });
    words.push_back(option.data());
    return obey(words);
  });
}

}  // namespace

int run_program(std::span<char* const> words) {
  hold_standard_descriptors();
  return end_with(finish(output{}, obey(words)));
}

}  // namespace orvctl
