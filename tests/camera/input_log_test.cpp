#include "input_log.h"

#include <gtest/gtest.h>

namespace {

TEST(InputLog, IgnoresRepeatsAndWhatCannotBe) {
  input_log log;
  EXPECT_TRUE(press_key(log, 80));
  EXPECT_FALSE(press_key(log, 80));
  EXPECT_TRUE(release_key(log, 80));
  EXPECT_FALSE(release_key(log, 80));
  EXPECT_FALSE(press_key(log, 256));
  EXPECT_FALSE(press_key(log, -1));
  move_touch(log, {1, 1});
  release_touch(log, {1, 1});
  EXPECT_EQ(describe(log), "events 2\nkey KEY_UP up\nheld\ntouch none\n");
}

TEST(InputLog, KeepsBothEndsOfADragOfAnyLength) {
  input_log log;
  press_touch(log, {0, 0});
  for (int x = 1; x < 2000; x++) move_touch(log, {x, x});
  release_touch(log, {7, 8});
  EXPECT_EQ(log.touch.path.size(), max_path_points);
  EXPECT_EQ(describe(log), "events 2001\nkey none\nheld\ntouch up 0,0 7,8\n");
}

}  // namespace
