#include <orv/protocol.h>
#include <stdio.h>

#include <CLI/CLI.hpp>
#include <memory>

#include "injection.h"
#include "key_names.h"
#include "subcommand.h"

namespace orvctl {
namespace {

struct key_action {
  const char* name;
  const char* help;
  std::array<int, 4> parameters;
};

constexpr key_action actions[] = {
    {"tap", "Press a key and release it at once", {ORV_EVENT_VIRTUAL_KEY}},
    {"press", "Press a key; it stays down until it is released", {ORV_EVENT_KEY, ORV_PRESS}},
    {"release", "Release a key", {ORV_EVENT_KEY, ORV_RELEASE}},
};

void run(context& shared, const key_action& action, const std::string& text) {
  const std::string name{keys_like(text).front()};
  inject(shared, std::string{action.name} + " " + name,
         {ORV_COMMAND_EVENT, action.parameters, name});
}

void list() {
  for (const key_name& key : all_keys()) {
    printf("%-16s %d\n", std::string{key.name}.c_str(), key.keycode);
  }
}

void add_action(CLI::App& key, context& shared, const key_action& action) {
  CLI::App* command = key.add_subcommand(action.name, action.help);
  const auto name = std::make_shared<std::string>();
  command->add_option("NAME", *name, "The key, as in KEY_MENU, menu or men")
      ->required()
      ->type_name("KEY")
      ->check(CLI::Validator{check_key, ""});
  command->callback([&shared, &action, name] { run(shared, action, *name); });
}

}  // namespace

void add_key(CLI::App& app, context& shared) {
  CLI::App* key = app.add_subcommand("key", "Press and release the camera's keys");
  key->footer(
      "A name may be cut as long as it stays clear; case does not matter, nor KEY_ or VK_.\n"
      "Exit status 1: the agent answered -1; standard error says what that may mean.");
  const auto listed = std::make_shared<bool>(false);
  key->add_flag("--list", *listed, "Print the names of all keys and their X keycodes");
  key->require_subcommand(0, 1);
  for (const key_action& action : actions) {
    add_action(*key, shared, action);
  }
  key->callback([key, listed] {
    if (*listed) {
      list();
    } else if (key->get_subcommands().empty()) {
      throw CLI::RequiredError("tap, press, release or --list");
    }
  });
}

}  // namespace orvctl
