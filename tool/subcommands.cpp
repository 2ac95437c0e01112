#include "subcommands.h"

#include <orv/protocol.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "command_names.h"
#include "heap.h"
#include "key.h"
#include "key_names.h"
#include "log.h"
#include "numbers.h"
#include "send.h"
#include "stack.h"
#include "target.h"
#include "touch.h"

namespace orvctl {
namespace {

const std::map<std::string, sort_key> sort_names = {{"tid", sort_key::tid},
                                                    {"name", sort_key::name},
                                                    {"size", sort_key::size},
                                                    {"base", sort_key::base}};

constexpr char places[] = "The screen's top left corner is 0 0.";

std::shared_ptr<bool> add_json(CLI::App& command) {
  auto json = std::make_shared<bool>(false);
  command.add_flag("--json", *json, "Print a JSON object");
  return json;
}

void add_key_action(CLI::App& key, context& shared, const key_action& action) {
  CLI::App* command = key.add_subcommand(action.name, action.help);
  const auto name = std::make_shared<std::string>();
  command->add_option("NAME", *name, "The key, as in KEY_MENU, menu or men")
      ->required()
      ->type_name("KEY")
      ->check(CLI::Validator{check_key, ""});
  command->callback([&shared, &action, name] { send_key(shared, action, *name); });
}

// X carries positions in 16 bits.
void add_point(CLI::App& command, point& at, const std::string& number = "") {
  const CLI::Range carried{-32768, 32767};
  command.add_option("X" + number, at.x, "Pixels from the left")->required()->check(carried);
  command.add_option("Y" + number, at.y, "Pixels from the top")->required()->check(carried);
}

void add_touch_command(CLI::App& touch, const char* name, const char* help,
                       const std::function<void(point)>& send) {
  CLI::App* command = touch.add_subcommand(name, help);
  const auto at = std::make_shared<point>();
  add_point(*command, *at);
  command->callback([send, at] { send(*at); });
}

std::string check_code(const std::string& text) {
  return parse_code(text) ? "" : "no command \"" + text + "\"; a number or one of: " + name_list();
}

std::string check_number(const std::string& text) {
  return parse_int(text) ? "" : "\"" + text + "\" is no 32-bit number";
}

}  // namespace

void allow_for_stacks(const CLI::App& app, context& shared) {
  if (app.get_option("--timeout")->count() == 0) {
    shared.timeout_s = std::chrono::duration<double>{stack_timeout}.count();
  }
}

void add_target(CLI::App& app, context& shared) {
  CLI::App* target = app.add_subcommand("target", "Ask the target who it is");
  const auto json = add_json(*target);
  target->callback([&shared, json] { show_target(shared, *json); });
}

void add_heap(CLI::App& app, context& shared) {
  CLI::App* heap = app.add_subcommand("heap", "Ask how much memory the target has");
  heap->footer(
      "The protocol carries 32 bits: of 4 GiB and more, the amount beyond the last whole\n"
      "4 GiB is shown.");
  const auto json = add_json(*heap);
  heap->callback([&shared, json] { show_heap(shared, *json); });
}

void add_stack(CLI::App& app, context& shared) {
  CLI::App* stack = app.add_subcommand("stack", "Ask for the stack of every thread on the target");
  stack->footer(
      "\"?\" (null in JSON): the target could not tell. The target needs about 20 ms for each\n"
      "of its threads, so this waits 30 s for an answer unless --timeout says otherwise.");
  const auto sort = std::make_shared<std::string>("tid");
  stack->add_option("--sort", *sort, "Order of the threads")
      ->check(CLI::IsMember(sort_names))
      ->capture_default_str();
  const auto json = add_json(*stack);
  stack->callback([&app, &shared, sort, json] {
    allow_for_stacks(app, shared);
    show_stacks(shared, sort_names.at(*sort), *json);
  });
}

void add_key(CLI::App& app, context& shared) {
  CLI::App* key = app.add_subcommand("key", "Press and release the camera's keys");
  key->footer(
      "A name may be cut as long as it stays clear; case does not matter, nor KEY_ or VK_.\n"
      "Exit status 1: the agent answered -1; standard error says what that may mean.");
  const auto listed = std::make_shared<bool>(false);
  key->add_flag("--list", *listed, "Print the names of all keys and their X keycodes");
  key->require_subcommand(0, 1);
  for (const key_action& action : key_actions) {
    add_key_action(*key, shared, action);
  }
  key->callback([key, listed] {
    if (*listed) {
      list_keys();
    } else if (key->get_subcommands().empty()) {
      throw CLI::RequiredError("tap, press, release or --list");
    }
  });
}

void add_touch(CLI::App& app, context& shared) {
  CLI::App* touch = app.add_subcommand("touch", "Touch the camera's screen");
  touch->footer(places);
  touch->require_subcommand(1);
  add_touch_command(*touch, "tap", "Put a finger down and lift it", [&shared](point at) {
    send_touches(shared, {{ORV_PRESS, at}, {ORV_RELEASE, at}});
  });
  add_touch_command(*touch, "press", "Put a finger down", [&shared](point at) {
    send_touches(shared, {{ORV_PRESS, at}});
  });
  add_touch_command(*touch, "release", "Move the finger there and lift it", [&shared](point at) {
    send_touches(shared, {{ORV_RELEASE, at}});
  });
}

void add_swipe(CLI::App& app, context& shared) {
  CLI::App* swipe =
      app.add_subcommand("swipe", "Put a finger down at one place, lift it at another");
  swipe->footer(places);
  const auto from = std::make_shared<point>();
  const auto to = std::make_shared<point>();
  add_point(*swipe, *from, "1");
  add_point(*swipe, *to, "2");
  swipe->callback([&shared, from, to] {
    send_touches(shared, {{ORV_PRESS, *from}, {ORV_RELEASE, *to}});
  });
}

void add_send(CLI::App& app, context& shared) {
  const auto given = std::make_shared<send_options>();
  CLI::App* send = app.add_subcommand("send", "Send any command and print its answer");
  send->add_option("CODE", given->code, "Command: a name, or a number in decimal or hex (0x208)")
      ->required()
      ->check(CLI::Validator{check_code, "{" + name_list() + "}"});
  send->add_option("PARAMETER", given->parameters,
                   "Up to four integers, decimal or hex; 0 if not given")
      ->expected(1, 4)
      ->check(CLI::Validator{check_number, ""});
  send->add_option("--data", given->data, "The command's text");
  send->callback([&shared, given] { send_any(shared, *given); });
}

void add_log(CLI::App& app, context& shared) {
  CLI::App* log = app.add_subcommand("log", "Print the agent's log and follow it until stopped");
  const auto dump = std::make_shared<bool>(false);
  log->add_flag("--dump", *dump, "Print what the log holds and end");
  log->callback([&shared, dump] { show_log(shared, *dump); });
}

}  // namespace orvctl
