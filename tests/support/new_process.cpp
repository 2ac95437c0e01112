#include "new_process.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orv_test {

void in_a_new_process(const std::function<void()>& scenario) {
  fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    scenario();
    fflush(nullptr);
    _exit(testing::Test::HasFailure() ? 1 : 0);  // what runs at exit may need what it has left
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0) << "in the child process";
}

}  // namespace orv_test
