// Injections, as another client of the X server sees them.

#include <gmock/gmock.h>

#include <fstream>

#include "injection_probe.h"
#include "input_recorder.h"

namespace {

using orv_test::failed;
using orv_test::key;
using orv_test::ok;
using orv_test::touch;
using orv_test::virtual_key;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char application_found[] = "I lumen-ui-host exist ";

class Injection : public orv_test::InjectionTest {
 protected:
  void SetUp() override {
    InjectionTest::SetUp();
    recorder_.take();
  }

  orv_test::input_recorder recorder_;
};

TEST_F(Injection, HoldsAKeyUntilItsRelease) {
  EXPECT_EQ(key("KEY_OK", ORV_PRESS), ok);
  EXPECT_THAT(recorder_.take(), ElementsAre("press 104"));
  EXPECT_EQ(key("KEY_SW1", ORV_PRESS), ok);
  EXPECT_EQ(key("KEY_SW1", ORV_RELEASE), ok);
  EXPECT_THAT(recorder_.take(), ElementsAre("press 133", "release 133"));
  EXPECT_EQ(key("KEY_OK", ORV_RELEASE), ok);
  EXPECT_THAT(recorder_.take(), ElementsAre("release 104"));
}

TEST_F(Injection, PressesAndReleasesAnyKeyAtOnce) {
  for (const key_map_entry* row = orv_key_map; row->keycode != 0; ++row) {
    SCOPED_TRACE(row->key_name);
    EXPECT_EQ(virtual_key(row->key_name), ok);
    const std::string keycode = std::to_string(row->keycode);
    EXPECT_THAT(recorder_.take(), ElementsAre("press " + keycode, "release " + keycode));
  }
}

TEST_F(Injection, OnlyReleasesAVirtualKeyWhenAskedTo) {
  EXPECT_EQ(virtual_key("VK_INFO", 0), ok);
  EXPECT_THAT(recorder_.take(), IsEmpty()) << "the server drops the release of a key that is up";
  key("VK_INFO", ORV_PRESS);
  recorder_.take();
  EXPECT_EQ(virtual_key("VK_INFO", 0), ok);
  EXPECT_THAT(recorder_.take(), ElementsAre("release 209"));
}

TEST_F(Injection, TouchesWhereItIsTold) {
  EXPECT_EQ(touch(ORV_PRESS, 100, 200), ok);
  EXPECT_EQ(touch(ORV_RELEASE, 300, 150), ok);
  EXPECT_THAT(recorder_.take(),
              ElementsAre("move 100,200", "button 1 down", "move 300,150", "button 1 up"));
  EXPECT_EQ(touch(ORV_PRESS, 5000, -3), ok);
  EXPECT_EQ(touch(ORV_RELEASE, 5000, -3), ok);
  EXPECT_THAT(recorder_.take(),
              ElementsAre("move 799,0", "button 1 down", "move 799,0", "button 1 up"))
      << "the server keeps the pointer on its screen";
}

TEST_F(Injection, SendsNothingForAWrongParameterOrName) {
  constexpr const char* no_keys[] = {"end", "key_ok", "KEY_OK ", "KEY_O", "", nullptr};
  for (const char* name : no_keys) {
    SCOPED_TRACE(testing::PrintToString(name));
    EXPECT_EQ(key(name, ORV_PRESS), failed);
    EXPECT_EQ(virtual_key(name), failed);
  }
  for (const int action : {2, -1, 3}) {
    SCOPED_TRACE(action);
    EXPECT_EQ(key("KEY_OK", action), failed);
    EXPECT_EQ(touch(action, 10, 10), failed);
  }
  for (const int action : {1, 3, -2}) {
    SCOPED_TRACE(action);
    EXPECT_EQ(virtual_key("KEY_OK", action), failed);
  }
  EXPECT_THAT(recorder_.take(), IsEmpty());
  EXPECT_THAT(orv_test::take_messages(), testing::Not(testing::Contains(application_found)))
      << "the check follows what was sent";
}

std::string event(int type, int action, const char* data) {
  return orv_test::writes_of(orv_event_handler, {type, action, 0, 0, ORV_COMMAND_EVENT}, data);
}

// One status for keys, virtual keys and touches.
TEST_F(Injection, ReportsAFailureOnceMoreOnTheNextGoodOne) {
  EXPECT_EQ(event(ORV_EVENT_VIRTUAL_KEY, 0, "KEY_UNKNOWN"), failed);
  EXPECT_EQ(event(ORV_EVENT_VIRTUAL_KEY, 0, "KEY_OK"), failed);
  EXPECT_EQ(event(ORV_EVENT_VIRTUAL_KEY, 0, "KEY_OK"), ok);
  EXPECT_EQ(event(ORV_EVENT_KEY, 2, "KEY_OK"), failed);
  EXPECT_EQ(event(ORV_EVENT_TOUCH, ORV_RELEASE, ""), failed);
  EXPECT_EQ(event(ORV_EVENT_KEY, ORV_RELEASE, "KEY_OK"), ok);
  EXPECT_EQ(event(ORV_EVENT_TOUCH, 2, ""), failed);
  EXPECT_EQ(event(ORV_EVENT_KEY, ORV_RELEASE, "KEY_OK"), failed);
  EXPECT_EQ(event(ORV_EVENT_VIRTUAL_KEY, 0, "KEY_OK"), ok);
}

TEST_F(Injection, NeitherAnswersNorFailsForAnUnknownType) {
  for (const int type : {1, 4, -1}) {
    EXPECT_EQ(event(type, ORV_PRESS, "KEY_OK"), "");
    const std::string number = std::to_string(type);
    EXPECT_THAT(orv_test::take_messages(),
                ElementsAre("I orv_event_handler+ ", "I  - param1=" + number + " ",
                            "E orv_event_handler():: unknown type = " + number + " ",
                            "I orv_event_handler- "));
  }
  EXPECT_EQ(event(ORV_EVENT_VIRTUAL_KEY, 0, "KEY_OK"), ok);
}

TEST_F(Injection, LogsItsParametersBeforeAnythingIsSent) {
  key("KEY_MENU", ORV_PRESS);
  EXPECT_THAT(orv_test::take_messages(),
              ElementsAre("I orv_event_key_handler+ ", "I   data=KEY_MENU ", "I   param2=1 ",
                          "I orv_event_key_handler- ", application_found));
  virtual_key("KEY_MENU", 7);
  EXPECT_THAT(orv_test::take_messages(),
              ElementsAre("I orv_event_virtual_key_handler+ ", "I   param1=7 ", "I   param2=0 ",
                          "I   param3=0 ", "I   param4=0 ", "I   data=KEY_MENU ",
                          "I orv_event_virtual_key_handler- "));
  touch(ORV_RELEASE, 7, -8);
  EXPECT_THAT(
      orv_test::take_messages(),
      ElementsAre("I orv_event_touch_handler+ ", "I   param1=3 ", "I   param2=0 ", "I   param3=7 ",
                  "I   param4=-8 ", application_found, "I orv_event_touch_handler- "));
  key("KEY_MENU", ORV_RELEASE);
}

std::string children() {
  std::ifstream file{"/proc/thread-self/children"};
  return {std::istreambuf_iterator<char>{file}, {}};
}

TEST_F(Injection, LeavesNothingBehindAfterAThousandTaps) {
  const auto descriptors = orv_test::count_descriptors();
  const std::string children_before = children();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_EQ(virtual_key("KEY_RECORD"), ok);
  }
  EXPECT_EQ(orv_test::count_descriptors(), descriptors);
  EXPECT_EQ(children(), children_before);
  EXPECT_EQ(recorder_.take().size(), 2000U);
}

}  // namespace
