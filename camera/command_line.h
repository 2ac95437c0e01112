// How the camera's programs read their options: wrong usage is one line and status 2.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>

// The status to end with, if the program is to end right away.
inline std::optional<int> read_command_line(CLI::App& parser, int argc, char** argv) {
  parser.failure_message([](const CLI::App* app, const CLI::Error& error) {
    return app->get_name() + ": " + error.what() + " (see --help)\n";
  });
  try {
    parser.parse(argc, argv);
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    return parser.exit(error) == 0 ? 0 : 2;
  }
}
