// Keys and touches.

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "main_loop.h"
#include "subcommands.h"
#include "text.h"

namespace orvctl {
namespace {

struct injection {
  std::string what;
  orv_request request;
  const char* also;  // what else a bad verdict may mean
};

exit_status show_verdict(const output& out, const injection& one, const answer& verdict) {
  if (verdict.status() == exit_status::done) {
    out.print("%s: done\n", one.what.c_str());
  } else {
    complain(format(
        "%s: the agent answered %d: the camera application is gone, /sdcard has more entries than "
        "at first, the X display is out of reach, %sor an earlier failure was not cleared yet, "
        "which this command did",
        one.what.c_str(), verdict->result, one.also));
  }
  return verdict.status();
}

exit_status inject(const context& shared, camera& target, const injection& one) {
  const answer verdict = target.ask(one.request, shared.timeout_ms());
  return verdict ? show_verdict(shared.out, one, verdict) : verdict.status();
}

// ---- Keys ----

struct key_action {
  const char* name;
  const char* help;
  orv_key_action action;
};

constexpr key_action key_actions[] = {
    {"tap", "Press a key and release it at once", ORV_KEY_TAP},
    {"press", "Press a key; it stays down until it is released", ORV_KEY_PRESS},
    {"release", "Release a key", ORV_KEY_RELEASE},
};

std::string read_key(const std::string& text, const orv_key*& found) {
  std::array<const orv_key*, 64> like{};
  const size_t count = std::min(orv_keys_like(text.c_str(), like.data(), like.size()), like.size());
  if (count == 1) {
    found = like.front();
    return "";
  }
  if (count == 0) {
    const orv_key* nearest = orv_nearest_key(text.c_str());
    return "no key \"" + text + "\"; " +
           (nearest == nullptr ? "orvctl key --list names them all"
                               : "the nearest is " + std::string{nearest->name});
  }
  std::vector<std::string> names;
  std::transform(like.begin(), like.begin() + count, std::back_inserter(names),
                 [](const orv_key* key) { return key->name; });
  return "\"" + text + "\" may be " + join(names);
}

exit_status send_key(const context& shared, const key_action& action, const orv_key& key) {
  camera target{shared};
  return inject(shared, target,
                {std::string{action.name} + " " + key.name,
                 orv_key_request(action.action, key.name), "the agent does not know the name, "});
}

exit_status list_keys(const output& out) {
  size_t count = 0;
  const orv_key* keys = orv_keys(&count);
  for (const orv_key& key : std::span{keys, count}) {
    out.print("%-16s %d\n", key.name, key.keycode);
  }
  return exit_status::done;
}

void add_key_action(const subcommand& key, context& shared, const key_action& action) {
  const subcommand command = key.add(action.name, action.help);
  const auto found = std::make_shared<const orv_key*>();
  command.value({.name = "NAME",
                 .help = "The key, as in KEY_MENU, menu or men",
                 .type = "KEY",
                 .required = true},
                [found](const std::string& text) { return read_key(text, *found); });
  command.run([&shared, &action, found] { return send_key(shared, action, **found); });
}

// ---- Touches ----

// Pixels from the screen's top left corner.
struct point {
  std::optional<int> x;
  std::optional<int> y;
};

void add_misnomers(const subcommand& above) {
  above.misnomer("hold", "press");
  above.misnomer("down", "press");
  above.misnomer("up", "release");
}

constexpr char places[] = "The screen's top left corner is 0 0.";
constexpr char interrupted[] =
    "\nCtrl-C and SIGTERM wait for the finger to be lifted. After SIGKILL it may stay down:\n"
    "orvctl touch release X Y lifts it.";

injection touch_of(orv_touch_action action, point at) {
  const char* const name = action == ORV_TOUCH_PRESS ? "press" : "release";
  return {format("%s %d,%d", name, *at.x, *at.y), orv_touch_request(action, *at.x, *at.y), ""};
}

// X carries positions in 16 bits.
void add_point(const subcommand& command, point& at, const std::string& number = "") {
  const auto words = [&number](const char* name, const char* help) {
    return number_words{
        .name = name + number, .help = help, .required = true, .least = -32768, .most = 32767};
  };
  command.number(words("X", "Pixels from the left"), at.x);
  command.number(words("Y", "Pixels from the top"), at.y);
}

// A finger that may have gone down has to come up, whatever the agent answers to that and whatever
// signal arrives.
exit_status press_and_release(const context& shared, const point& from, const point& to) {
  const stop_signals signals{[] {}, stop_signals::second::waits};
  camera target{shared};
  const exit_status down = inject(shared, target, touch_of(ORV_TOUCH_PRESS, from));
  if (down == exit_status::not_run) {
    return signals.status(down);
  }
  const exit_status up = inject(shared, target, touch_of(ORV_TOUCH_RELEASE, to));
  if (up != exit_status::done && up != exit_status::refused) {
    complain(format("the finger may be down; orvctl touch release %d %d lifts it", *to.x, *to.y));
    return signals.status(exit_status::may_have_run);
  }
  return signals.status(std::max(down, up));
}

subcommand add_touch_command(const subcommand& below, const char* name, const char* help,
                             const std::function<exit_status(const point&)>& act) {
  const subcommand command = below.add(name, help);
  const auto at = std::make_shared<point>();
  add_point(command, *at);
  command.run([at, act] { return act(*at); });
  return command;
}

}  // namespace

void add_key(const subcommand& program, context& shared) {
  const subcommand key = program.add("key", "Press and release the camera's keys");
  key.footer(
      "A name may be cut as long as it stays clear; case does not matter, nor KEY_ or VK_.\n"
      "Exit status 1: the agent answered -1; standard error says what that may mean.");
  const auto listed = std::make_shared<bool>(false);
  key.flag("--list", *listed, "Print the names of all keys and their X keycodes");
  key.allow_one_below();
  for (const key_action& action : key_actions) {
    add_key_action(key, shared, action);
  }
  add_misnomers(key);
  key.run([&shared, listed] {
    return *listed ? list_keys(shared.out)
                   : refuse_words("tap, press, release or --list is required");
  });
}

void add_touch(const subcommand& program, context& shared) {
  const subcommand touch = program.add("touch", "Touch the camera's screen");
  touch.footer(places);
  touch.require_one_below();
  const auto one = [&shared](orv_touch_action action) {
    return [&shared, action](const point& at) {
      camera target{shared};
      return inject(shared, target, touch_of(action, at));
    };
  };
  const auto tap = [&shared](const point& at) { return press_and_release(shared, at, at); };
  add_touch_command(touch, "tap", "Put a finger down and lift it", tap)
      .footer(std::string{places} + interrupted);
  add_misnomers(touch);
  add_touch_command(touch, "press", "Put a finger down", one(ORV_TOUCH_PRESS));
  add_touch_command(touch, "release", "Move the finger there and lift it", one(ORV_TOUCH_RELEASE));
}

void add_swipe(const subcommand& program, context& shared) {
  const subcommand swipe =
      program.add("swipe", "Put a finger down at one place, lift it at another");
  swipe.footer(std::string{places} + interrupted);
  const auto from = std::make_shared<point>();
  const auto to = std::make_shared<point>();
  add_point(swipe, *from, "1");
  add_point(swipe, *to, "2");
  swipe.run([&shared, from, to] { return press_and_release(shared, *from, *to); });
}

}  // namespace orvctl
