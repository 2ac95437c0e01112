#include "command_line.h"

#include <platform_root.h>
#include <stdlib.h>

namespace orvctl {
namespace {

constexpr void (*subcommands[])(CLI::App& app, context& shared) = {
    add_target, add_heap, add_stack, add_key, add_touch, add_swipe, add_monitor, add_send, add_log,
};

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

void describe_program(CLI::App& app, context& shared) {
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
      shared.store = platform::root_path();
    }
    setenv("ORV_PLATFORM_ROOT", shared.store.c_str(), 1);
  });
  for (const auto add : subcommands) {
    add(app, shared);
  }
  app.footer(footer);  // last: subcommands take over the one that stands when they are added
}

}  // namespace orvctl
