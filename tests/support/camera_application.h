// A process that bears the camera application's name, or another.
#ifndef ORV_TESTS_SUPPORT_CAMERA_APPLICATION_H
#define ORV_TESTS_SUPPORT_CAMERA_APPLICATION_H

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <fstream>

#include "process.h"

namespace orv_test {

class camera_application : public background {
 public:
  // Bears the name when it returns; /proc shows it in parentheses.
  explicit camera_application(const std::string& name = "lumen-ui-host")
      : background{[&name]() -> int {
          prctl(PR_SET_NAME, name.c_str());
          return pause();
        }} {
    EXPECT_TRUE(eventually([&] {
      std::string seen;
      std::getline(std::ifstream{"/proc/" + std::to_string(pid()) + "/comm"}, seen);
      return seen == name;
    }));
  }
};

}  // namespace orv_test

#endif
