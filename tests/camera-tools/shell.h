#pragma once

#include <string>

#include "process.h"

// Runs a shell command with the camera's programs first in PATH.
inline orv_test::outcome run_in_camera(const std::string& command) {
  return orv_test::run({"sh", "-c", "PATH='" ORV_CAMERA_TOOLS "':$PATH; " + command});
}
