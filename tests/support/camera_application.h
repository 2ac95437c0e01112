// A process that bears the camera application's name, or another.
#ifndef ORV_TESTS_SUPPORT_CAMERA_APPLICATION_H
#define ORV_TESTS_SUPPORT_CAMERA_APPLICATION_H

#include <sys/types.h>

namespace orv_test {

class camera_application {
 public:
  // Bears the name when it returns; /proc shows it in parentheses.
  explicit camera_application(const char* name = "lumen-ui-host");
  camera_application(const camera_application&) = delete;
  camera_application& operator=(const camera_application&) = delete;
  ~camera_application();  // kills it; no entry is left in /proc

  [[nodiscard]] pid_t pid() const { return pid_; }

 private:
  pid_t pid_;
};

}  // namespace orv_test

#endif
