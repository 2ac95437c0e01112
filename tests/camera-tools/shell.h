#pragma once

#include <string>

// What a shell command prints on standard output (binary safe), and its exit status.
struct shell_result {
  std::string output;
  int status;
};

// Runs with the camera's programs first in PATH.
shell_result run_in_camera(const std::string& command);
