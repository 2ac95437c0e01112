#include <gmock/gmock.h>
#include <orv/agent.h>
#include <orv/protocol.h>
#include <sys/time.h>

#include "agent_probe.h"
#include "keys.h"

namespace {

using orv_test::fail;
using orv_test::fault;
using orv_test::int_at;
using orv_test::put;
using orv_test::take_messages;
using orv_test::take_writes;
using orv_test::text_at;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char key_line[] = "I orv_handler(): key = memory/orv/cmd ";

class Dispatch : public orv_test::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    ASSERT_EQ(orv_init_handler(), 0);
    drain();
    take_messages();
    take_writes();
  }
  void TearDown() override { orv_destroy_handler(); }

  // Everything that the store has to deliver is delivered.
  static void drain() {
    const orv_test::key_counter fence{"test/fence"};
    put("test/fence", 1);
    EXPECT_TRUE(fence.reaches(1));
  }

  static std::vector<std::string> messages_of(int code) {
    put(VCONFKEY_ORV_COMMAND, code);
    drain();
    return take_messages();
  }
};

using Start = orv_test::AgentTest;

TEST_F(Start, ResetsTheKeysInOrderAndStampsTheTime) {
  timeval before{};
  gettimeofday(&before, nullptr);
  ASSERT_EQ(orv_init_handler(), 0);
  const auto before_ms = static_cast<uint32_t>(before.tv_sec * 1000 + before.tv_usec / 1000);
  EXPECT_LT(orv_start_time - before_ms, 1000U);
  EXPECT_THAT(take_writes(), ElementsAre("memory/orv/cmd_param1=0", "memory/orv/cmd_param2=0",
                                         "memory/orv/cmd_param3=0", "memory/orv/cmd_param4=0",
                                         "memory/orv/cmd_data=", "memory/orv/cmd=0",
                                         "memory/orv/result_data=", "memory/orv/result=-2"));
  EXPECT_EQ(text_at(VCONFKEY_ORV_COMMAND_DATA), "");
  EXPECT_EQ(text_at(VCONFKEY_ORV_RESULT_DATA), "");
  EXPECT_EQ(int_at(VCONFKEY_ORV_RESULT), -2);
  EXPECT_THAT(take_messages(), ElementsAre("I orv_init_handler+ ", "I orv_init_handler- "));
  orv_destroy_handler();
  EXPECT_THAT(take_messages(), ElementsAre("I orv_destroy_handler+ ", "I orv_destroy_handler- "));
}

TEST_F(Start, FailsWhenTheCommandKeyCannotBeWatched) {
  fail(fault::notify, VCONFKEY_ORV_COMMAND);
  EXPECT_EQ(orv_init_handler(), -1);
  EXPECT_EQ(int_at(VCONFKEY_ORV_RESULT), -2);
  EXPECT_THAT(take_messages(),
              ElementsAre("I orv_init_handler+ ",
                          "E vconf_notify_key_changed(VCONFKEY_ORV_COMMAND) is failed."));
}

TEST_F(Dispatch, IgnoresCodesWithoutAHandlerAndNamesThoseThatItDoesNotKnow) {
  for (const int code : {0x10, 0x11, 0x101, 0x106, 0x201, 0x109, 0x350}) {
    SCOPED_TRACE(code);
    EXPECT_THAT(messages_of(code), ElementsAre(key_line));
  }
  EXPECT_THAT(messages_of(0), ElementsAre(key_line, "E command(0x0) not found! "));
  EXPECT_THAT(messages_of(0x999), ElementsAre(key_line, "E command(0x999) not found! "));
  EXPECT_THAT(messages_of(-1), ElementsAre(key_line, "E command(0xffffffff) not found! "));
  EXPECT_THAT(take_writes(), IsEmpty());
}

// The health check that this asks for fails: no application runs.
TEST_F(Dispatch, HandsOnParametersAndTextAsTheyWereWritten) {
  put(VCONFKEY_ORV_COMMAND_PARAM1, ORV_MON_TYPE_CPU);
  put(VCONFKEY_ORV_COMMAND_PARAM2, -22);
  put(VCONFKEY_ORV_COMMAND_PARAM3, 2147483647);
  put(VCONFKEY_ORV_COMMAND_PARAM4, 4);
  put(VCONFKEY_ORV_COMMAND_DATA, "a text, 100% of it");
  EXPECT_THAT(messages_of(ORV_COMMAND_MONITOR),
              ElementsAre(key_line, "I orv_monitor_handler+ ", "I  - param1=1 ",
                          "I orv_cpu_monitor_handler+ ", "I   param1=1 ", "I   param2=-22 ",
                          "I   param3=2147483647 ", "I   param4=4 ", "I   data=a text, 100% of it ",
                          "I orv_event_cpu_monitor- ", "I orv_monitor_handler- "));
  EXPECT_THAT(take_writes(), ElementsAre("memory/orv/result=-1"));
}

TEST_F(Dispatch, StopsAtTheFirstKeyThatCannotBeRead) {
  const std::pair<const char*, const char*> rows[] = {
      {VCONFKEY_ORV_COMMAND_DATA, "E vconf_get_int(VCONFKEY_ORV_COMMAND_DATA) failed "},
      {VCONFKEY_ORV_COMMAND_PARAM4,
       "E vconf_get_int(VCONFKEY_ORV_COMMAND_PARAM4) failed (ret=-7) "},
      {VCONFKEY_ORV_COMMAND_PARAM3,
       "E vconf_get_int(VCONFKEY_ORV_COMMAND_PARAM3) failed (ret=-7) "},
      {VCONFKEY_ORV_COMMAND_PARAM2,
       "E vconf_get_int(VCONFKEY_ORV_COMMAND_PARAM2) failed (ret=-7) "},
      {VCONFKEY_ORV_COMMAND_PARAM1,
       "E vconf_get_int(VCONFKEY_ORV_COMMAND_PARAM1) failed (ret=-7) "},
      {VCONFKEY_ORV_COMMAND, "E orv_handler():: get failed! "},
  };
  for (const auto& [key, message] : rows) {
    SCOPED_TRACE(key);
    fail(fault::read, key, -7);  // the keys read later go on failing: none of them is read
    EXPECT_THAT(messages_of(ORV_COMMAND_TARGET_INFO), ElementsAre(key_line, message));
  }
  EXPECT_THAT(take_writes(), IsEmpty());
}

TEST_F(Dispatch, RefusesACommandKeyOfAnotherType) {
  put(VCONFKEY_ORV_COMMAND, "0x208");
  drain();
  EXPECT_THAT(take_messages(),
              ElementsAre(key_line, "E orv_handler():: key-type miss-matched! (type=40) "));
}

TEST_F(Dispatch, EndsWithTheAgent) {
  orv_destroy_handler();
  take_messages();
  EXPECT_THAT(messages_of(ORV_COMMAND_TARGET_INFO), IsEmpty());
}

}  // namespace
