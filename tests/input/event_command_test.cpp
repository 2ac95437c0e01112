// Key and touch commands through the command channel.

#include <gmock/gmock.h>
#include <orv/agent.h>
#include <orv/health.h>

#include "injection_probe.h"
#include "input_recorder.h"

namespace {

using orv_test::put;
using testing::ElementsAre;

class EventCommand : public orv_test::InjectionTest {
 protected:
  void SetUp() override {
    InjectionTest::SetUp();
    ASSERT_EQ(orv_init_handler(), 0);
    send(1, 0, "");
    orv_test::take_messages();
  }
  void TearDown() override { orv_destroy_handler(); }

  // The result key once the command has run; 7 when nothing has written it.
  static int send(int type, int action, const char* data) {
    put(VCONFKEY_ORV_COMMAND_PARAM1, type);
    put(VCONFKEY_ORV_COMMAND_PARAM2, action);
    put(VCONFKEY_ORV_COMMAND_DATA, data);
    put(VCONFKEY_ORV_RESULT, 7);
    put(VCONFKEY_ORV_COMMAND, ORV_COMMAND_EVENT);
    last_messages.clear();
    EXPECT_TRUE(orv_test::run_until([] {
      const auto news = orv_test::take_messages();
      last_messages.insert(last_messages.end(), news.begin(), news.end());
      return !last_messages.empty() && last_messages.back() == "I orv_event_handler- ";
    }));
    return orv_test::int_at(VCONFKEY_ORV_RESULT);
  }
  static int tap(const char* name) { return send(ORV_EVENT_VIRTUAL_KEY, 0, name); }

  static inline std::vector<std::string> last_messages;
};

TEST_F(EventCommand, ReportsAFailureOnceMoreOnTheNextGoodInjection) {
  EXPECT_EQ(tap("KEY_OK"), 0);
  EXPECT_EQ(tap("KEY_OK"), 0);
  EXPECT_EQ(tap("KEY_UNKNOWN"), -1);
  EXPECT_EQ(tap("KEY_OK"), -1);
  EXPECT_EQ(tap("KEY_OK"), 0);
  // One status for keys, virtual keys and touches.
  EXPECT_EQ(send(ORV_EVENT_KEY, 2, "KEY_OK"), -1);
  EXPECT_EQ(send(ORV_EVENT_TOUCH, ORV_RELEASE, ""), -1);
  EXPECT_EQ(send(ORV_EVENT_KEY, ORV_RELEASE, "KEY_OK"), 0);
  EXPECT_EQ(send(ORV_EVENT_TOUCH, 2, ""), -1);
  EXPECT_EQ(send(ORV_EVENT_TOUCH, 2, ""), -1);
  EXPECT_EQ(send(ORV_EVENT_KEY, ORV_RELEASE, "KEY_OK"), -1);
  EXPECT_EQ(tap("KEY_OK"), 0);
}

TEST_F(EventCommand, TouchesAtTheCommandsPlace) {
  const orv_test::input_recorder recorder;
  put(VCONFKEY_ORV_COMMAND_PARAM3, 123);
  put(VCONFKEY_ORV_COMMAND_PARAM4, 45);
  EXPECT_EQ(send(ORV_EVENT_TOUCH, ORV_PRESS, ""), 0);
  EXPECT_EQ(recorder.pointer(), "123,45 down");
  EXPECT_EQ(send(ORV_EVENT_TOUCH, ORV_RELEASE, ""), 0);
  EXPECT_EQ(recorder.pointer(), "123,45 up");
}

TEST_F(EventCommand, NeitherAnswersNorFailsForAnUnknownType) {
  for (const int type : {1, 4, -1}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(send(type, ORV_PRESS, "KEY_OK"), 7);
    const std::string number = std::to_string(type);
    EXPECT_THAT(last_messages, ElementsAre("I orv_handler(): key = memory/orv/cmd ",
                                           "I orv_event_handler+ ", "I  - param1=" + number + " ",
                                           "E orv_event_handler():: unknown type = " + number + " ",
                                           "I orv_event_handler- "));
  }
  EXPECT_EQ(tap("KEY_OK"), 0);
}

}  // namespace
