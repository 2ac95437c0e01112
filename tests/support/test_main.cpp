// Runs a test program on a platform root of its own.

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <filesystem>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  char root[] = "/dev/shm/orv-test-XXXXXX";
  if (mkdtemp(root) == nullptr) {
    perror("orv test: mkdtemp");
    return 1;
  }
  setenv("ORV_PLATFORM_ROOT", root, 1);
  const int outcome = RUN_ALL_TESTS();
  std::error_code ignored;
  std::filesystem::remove_all(root, ignored);
  return outcome;
}
