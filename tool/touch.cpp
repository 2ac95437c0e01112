#include <orv/protocol.h>

#include <CLI/CLI.hpp>
#include <functional>
#include <initializer_list>
#include <memory>

#include "injection.h"
#include "subcommand.h"

namespace orvctl {
namespace {

struct point {
  int x = 0;
  int y = 0;
};

struct touch {
  int action;
  point at;
};

// Ends at the first touch that the agent does not answer, not at one that it finds bad: a finger
// that went down has to come up.
void run(context& shared, std::initializer_list<touch> touches) {
  for (const auto& [action, at] : touches) {
    const char* const name = action == ORV_PRESS ? "press " : "release ";
    const std::string place = std::to_string(at.x) + "," + std::to_string(at.y);
    if (!inject(shared, name + place,
                {ORV_COMMAND_EVENT, {ORV_EVENT_TOUCH, action, at.x, at.y}, {}})) {
      return;
    }
  }
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

constexpr char places[] =
    "The screen begins at 0 0; a negative number goes behind --, as in: -- -1 5";

}  // namespace

void add_touch(CLI::App& app, context& shared) {
  CLI::App* touch = app.add_subcommand("touch", "Touch the camera's screen");
  touch->footer(places);
  touch->require_subcommand(1);
  add_touch_command(*touch, "tap", "Put a finger down and lift it", [&shared](point at) {
    run(shared, {{ORV_PRESS, at}, {ORV_RELEASE, at}});
  });
  add_touch_command(*touch, "press", "Put a finger down", [&shared](point at) {
    run(shared, {{ORV_PRESS, at}});
  });
  add_touch_command(*touch, "release", "Move the finger there and lift it", [&shared](point at) {
    run(shared, {{ORV_RELEASE, at}});
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
  swipe->callback([&shared, from, to] { run(shared, {{ORV_PRESS, *from}, {ORV_RELEASE, *to}}); });
}

}  // namespace orvctl
