#include "camera_application.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orv_test {

camera_application::camera_application(const char* name) : pid_{-1} {
  int named[2];
  EXPECT_EQ(pipe2(named, O_CLOEXEC), 0);
  pid_ = fork();
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_NAME, name);
    close(named[0]);
    close(named[1]);
    for (;;) {
      pause();
    }
  }
  close(named[1]);
  char none = 0;
  EXPECT_EQ(read(named[0], &none, 1), 0);
  close(named[0]);
}

camera_application::~camera_application() {
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

}  // namespace orv_test
