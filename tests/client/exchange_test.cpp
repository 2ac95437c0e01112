// Commands as the store sees them, with an agent that answers from the test's own main loop.

#include <glib.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

#include "camera_host.h"

namespace {

using orv_test::ask;
using orv_test::camera_handle;
using orv_test::key_counter;
using orv_test::number_at;
using orv_test::text_of;

const orv_request key_press = orv_key_request(ORV_KEY_PRESS, "KEY_MENU");

void succeed(keynode_t* /*command*/, void* /*none*/) {
  vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_OK);
}

void fail(keynode_t* /*parameter*/, void* /*none*/) {
  vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_FAILED);
}

class Exchange : public testing::Test {
 protected:
  void SetUp() override {
    vconf_set_str(VCONFKEY_ORV_RESULT_DATA, "");
    vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_NONE);
    camera_.reset(orv_camera_open(nullptr, nullptr));
    ASSERT_TRUE(camera_);
  }

  [[nodiscard]] int32_t send(const orv_request& request) const {
    const auto reply = ask(camera_, request);
    EXPECT_EQ(reply->outcome, ORV_RAN) << reply->message;
    return reply->result;
  }

  camera_handle camera_;
};

// Answers every command, as long as this lives.
class willing_agent {
 public:
  willing_agent() { vconf_notify_key_changed(VCONFKEY_ORV_COMMAND, succeed, nullptr); }
  willing_agent(const willing_agent&) = delete;
  willing_agent& operator=(const willing_agent&) = delete;
  ~willing_agent() { vconf_ignore_key_changed(VCONFKEY_ORV_COMMAND, succeed); }
};

std::string parameters() {
  std::string found;
  for (const char* key : {VCONFKEY_ORV_COMMAND_PARAM1, VCONFKEY_ORV_COMMAND_PARAM2,
                          VCONFKEY_ORV_COMMAND_PARAM3, VCONFKEY_ORV_COMMAND_PARAM4}) {
    found += std::to_string(number_at(key)) + " ";
  }
  return found + text_of(VCONFKEY_ORV_COMMAND_DATA);
}

TEST_F(Exchange, WritesTheParametersThatTheirKeysDoNotHold) {
  const willing_agent agent;
  vconf_set_str(VCONFKEY_ORV_COMMAND_PARAM1, "no number");
  vconf_set_int(VCONFKEY_ORV_COMMAND_DATA, 5);
  EXPECT_EQ(send({ORV_COMMAND_EVENT, {}, nullptr}), 0);
  EXPECT_EQ(parameters(), "0 0 0 0 ");
  EXPECT_EQ(send({ORV_COMMAND_EVENT, {3, -1}, "x"}), 0);
  EXPECT_EQ(parameters(), "3 -1 0 0 x");
  const key_counter same{VCONFKEY_ORV_COMMAND_PARAM2};
  const key_counter other{VCONFKEY_ORV_COMMAND_PARAM4};
  EXPECT_EQ(send({ORV_COMMAND_EVENT, {3, -1, 0, -7}, "x"}), 0);
  EXPECT_EQ(parameters(), "3 -1 0 -7 x");
  EXPECT_EQ(other.seen(), 1);
  EXPECT_EQ(same.seen(), 0) << "what the key held was written again";
}

TEST_F(Exchange, LeavesAResultThatCameWhileTheParametersWereWritten) {
  const willing_agent agent;
  EXPECT_EQ(send({ORV_COMMAND_EVENT, {}, nullptr}), 0);
  ASSERT_EQ(vconf_notify_key_changed(VCONFKEY_ORV_COMMAND_PARAM1, fail, nullptr), 0);
  const key_counter results{VCONFKEY_ORV_RESULT};
  EXPECT_EQ(send({ORV_COMMAND_EVENT, {1}, nullptr}), 0);
  EXPECT_EQ(results.seen(), 2);
  vconf_ignore_key_changed(VCONFKEY_ORV_COMMAND_PARAM1, fail);
}

// Told of each write of the command key, it looks at the key some time later, as one that was
// frozen does when it wakes.
class late_agent {
 public:
  late_agent() { vconf_notify_key_changed(VCONFKEY_ORV_COMMAND, note, this); }
  late_agent(const late_agent&) = delete;
  late_agent& operator=(const late_agent&) = delete;
  ~late_agent() {
    vconf_ignore_key_changed(VCONFKEY_ORV_COMMAND, note);
    if (timer_ != 0) {
      g_source_remove(timer_);
    }
  }

  void wake() { timer_ = g_timeout_add(1, look, this); }
  [[nodiscard]] int presses() const { return presses_; }

 private:
  static void note(keynode_t* /*command*/, void* self) { ++static_cast<late_agent*>(self)->told_; }

  static gboolean look(gpointer self) {
    auto& me = *static_cast<late_agent*>(self);
    if (me.told_ > 0) {
      --me.told_;
      me.run(number_at(VCONFKEY_ORV_COMMAND));
    }
    return G_SOURCE_CONTINUE;
  }

  void run(int code) {
    if (code == ORV_COMMAND_END) {
      return;
    }
    presses_ += code == ORV_COMMAND_EVENT ? 1 : 0;
    if (code == ORV_COMMAND_TARGET_INFO) {
      vconf_set_str(VCONFKEY_ORV_RESULT_DATA, "CSC,Q7,LUMEN-ONE,EVT2,1.0,240,RELEASE,0");
    }
    vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_OK);
  }

  int told_ = 0;
  int presses_ = 0;
  guint timer_ = 0;
};

TEST_F(Exchange, PressesAKeyOnceWhenAFrozenAgentWakes) {
  late_agent agent;
  EXPECT_EQ(ask(camera_, key_press, 20)->outcome, ORV_MAY_HAVE_RUN);
  // The query that has to come first is not answered either.
  const auto unsettled = ask(camera_, key_press, 20);
  EXPECT_EQ(unsettled->outcome, ORV_NOT_RUN);
  EXPECT_EQ(unsettled->why, ORV_WHY_NO_ANSWER);
  agent.wake();
  EXPECT_EQ(send(key_press), 0);
  EXPECT_FALSE(orv_test::run_until([&] { return agent.presses() > 1; }, 50));
  EXPECT_EQ(agent.presses(), 1);
}

TEST_F(Exchange, SaysWhenATickReplacedTheAnswer) {
  const auto answer_and_tick = [](keynode_t* /*command*/, void* /*none*/) {
    vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_FAILED);
    vconf_set_str(VCONFKEY_ORV_RESULT_DATA, "848,36,28,2,10,1,1,1024,0,$,");
    vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_OK);
  };
  const vconf_callback_fn agent = answer_and_tick;
  vconf_notify_key_changed(VCONFKEY_ORV_COMMAND, agent, nullptr);
  const auto reply = ask(camera_, key_press);
  EXPECT_EQ(reply->outcome, ORV_MAY_HAVE_RUN);
  EXPECT_EQ(reply->why, ORV_WHY_OVERWRITTEN);
  EXPECT_STREQ(reply->message,
               "a monitor's tick overwrote the answer before it was read; ask again");
  vconf_ignore_key_changed(VCONFKEY_ORV_COMMAND, agent);
  vconf_set_str(VCONFKEY_ORV_RESULT_DATA, "");
}

}  // namespace
