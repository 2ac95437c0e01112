#include "command_line.h"

#include <platform_root.h>
#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <string_view>

#include "subcommands.h"

namespace orvctl {
namespace {

struct subcommand {
  std::string_view name;
  void (*add)(CLI::App& app, context& shared);
};

constexpr subcommand subcommands[] = {
    {"target", add_target},   {"heap", add_heap},   {"stack", add_stack},
    {"key", add_key},         {"touch", add_touch}, {"swipe", add_swipe},
    {"monitor", add_monitor}, {"send", add_send},   {"log", add_log},
};

// Where one stands among the words, none of those that do not can have been meant; but help tells
// of all.
bool may_be_meant(const subcommand& one, std::span<char* const> words) {
  const auto has = [words](std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
  };
  const auto stands = [has](const subcommand& other) { return has(other.name); };
  return stands(one) || has("--help") || has("-h") ||
         std::none_of(std::begin(subcommands), std::end(subcommands), stands);
}

constexpr char footer[] =
    "Exit status:\n"
    "  0 the agent answered with success, 1 it answered with failure,\n"
    "  2 wrong usage or store, 3 no answer in time.\n\n"
    "Environment:\n"
    "  ORV_PLATFORM_ROOT names the store's directory; --store goes before it.\n\n"
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

// The library's own shows how often a repeated argument may stand in numbers, "(0x)".
class usage_formatter : public CLI::Formatter {
 public:
  std::string make_option_usage(const CLI::Option* option) const override {
    const std::string name =
        make_option_name(option, true) + (option->get_expected_max() > 1 ? "..." : "");
    return option->get_required() ? name : "[" + name + "]";
  }
};

}  // namespace

void describe_program(CLI::App& app, context& shared, std::span<char* const> words) {
  app.name("orvctl")->description("Drive a camera's test agent.");
  app.formatter(std::make_shared<usage_formatter>());
  app.require_subcommand(0, 1);  // so that a wrong name is told as such
  app.final_callback([&app] {
    if (app.get_subcommands().empty()) {
      throw CLI::RequiredError("A subcommand");
    }
  });
  app.failure_message(one_line);
  app.add_option("--timeout", shared.timeout_s, "Seconds to wait for an answer")
      ->check(CLI::Range(0.001, 86400.0))
      ->capture_default_str();
  app.add_option("--store", shared.store,
                 "Directory of the platform's store (default: the one that ORV_PLATFORM_ROOT "
                 "names, or the user's own)")
      ->type_name("DIR");
  app.fallthrough();
  app.parse_complete_callback([&shared] {
    if (shared.store.empty()) {
      shared.store = platform::root_path().text;
    }
    setenv("ORV_PLATFORM_ROOT", shared.store.c_str(), 1);
  });
  for (const subcommand& one : subcommands) {
    if (may_be_meant(one, words)) {
      one.add(app, shared);
    }
  }
  app.footer(footer);  // last: subcommands take over the one that stands when they are added
}

int run_program(std::span<char* const> words) {
  CLI::App app;
  context shared;
  describe_program(app, shared, words);
  try {
    app.parse(static_cast<int>(words.size()), words.data());
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? status_success : status_usage;
  }
  return shared.status;
}

}  // namespace orvctl
