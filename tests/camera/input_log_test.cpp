#include "input_log.h"

#include <gtest/gtest.h>

#include "camera_state.h"

namespace {

TEST(InputLog, TellsTheLastKeyAllHeldKeysAndTheTouch) {
  input_log log;
  EXPECT_EQ(describe(log), "events 0\nkey none\nheld\ntouch none\n");
  press_key(log, 133);
  press_key(log, 99);
  press_key(log, 104);
  release_key(log, 104);
  press_touch(log, {10, 20});
  move_touch(log, {30, 40});
  EXPECT_EQ(describe(log),
            "events 6\nkey KEY_OK up\nheld keycode 99, KEY_SW1\ntouch down 10,20 30,40\n");
  release_touch(log, {50, 60});
  EXPECT_EQ(describe(log),
            "events 7\nkey KEY_OK up\nheld keycode 99, KEY_SW1\ntouch up 10,20 50,60\n");
}

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

TEST(InputLog, CountsOneKeyPressedAgainAndAgainAndForgetsTheOldest) {
  input_log log;
  for (int tap = 0; tap < 3; tap++) {
    press_key(log, 80);
    release_key(log, 80);
  }
  ASSERT_EQ(log.recent.size(), 1U);
  EXPECT_EQ(log.recent[0].presses, 3);
  for (int keycode = 100; keycode < 110; keycode++) press_key(log, keycode);
  ASSERT_EQ(log.recent.size(), max_recent_keys);
  EXPECT_EQ(log.recent.front().keycode, 109);
  EXPECT_EQ(log.recent.back().keycode, 102);
}

TEST(InputLog, KeepsBothEndsOfADragOfAnyLength) {
  input_log log;
  press_touch(log, {0, 0});
  for (int x = 1; x < 2000; x++) move_touch(log, {x, x});
  release_touch(log, {7, 8});
  EXPECT_EQ(log.touch.path.size(), max_path_points);
  EXPECT_EQ(describe(log), "events 2001\nkey none\nheld\ntouch up 0,0 7,8\n");
}

TEST(CameraState, KeysChangeModeExposureCounterAndRecording) {
  camera_state camera = new_camera();
  const auto tap = [&](int keycode) {
    apply_key(camera, keycode, true, {});
    apply_key(camera, keycode, false, {});
  };
  tap(74);
  EXPECT_EQ(camera.mode->badge, "A");
  for (int click = 0; click < 20; click++) tap(186);
  EXPECT_EQ(camera.compensation_thirds_ev, -max_compensation_thirds_ev);
  const int pictures_before = camera.pictures_left;
  tap(134);
  EXPECT_EQ(camera.pictures_left, pictures_before - 1);
  tap(220);
  EXPECT_TRUE(camera.recording_since.has_value());
  tap(220);
  EXPECT_FALSE(camera.recording_since.has_value());
  apply_key(camera, 133, true, {});
  EXPECT_TRUE(camera.focused);
  apply_key(camera, 133, false, {});
  EXPECT_FALSE(camera.focused);
}

}  // namespace
