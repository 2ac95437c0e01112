// Commands as the store sees them, with an agent that answers from the tool's own main loop.

#include <gtest/gtest.h>
#include <orv/protocol.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "command_line.h"
#include "keys.h"

namespace {

using orv_test::key_counter;
using orv_test::text_of;

void succeed(keynode_t* /*command*/, void* /*none*/) {
  vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_OK);
}

void fail(keynode_t* /*parameter*/, void* /*none*/) {
  vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_FAILED);
}

class Exchange : public testing::Test {
 protected:
  Exchange() { vconf_notify_key_changed(VCONFKEY_ORV_COMMAND, succeed, nullptr); }
  ~Exchange() override { vconf_ignore_key_changed(VCONFKEY_ORV_COMMAND, succeed); }

  // What the tool ends with.
  static int send(std::vector<std::string> words) {
    words.insert(words.begin(), {"orvctl", "send", "event"});
    std::vector<char*> pointers;
    std::transform(words.begin(), words.end(), std::back_inserter(pointers),
                   [](std::string& word) { return word.data(); });
    return orvctl::run_program(pointers);
  }
};

std::string parameters() {
  std::string found;
  for (const char* key : {VCONFKEY_ORV_COMMAND_PARAM1, VCONFKEY_ORV_COMMAND_PARAM2,
                          VCONFKEY_ORV_COMMAND_PARAM3, VCONFKEY_ORV_COMMAND_PARAM4}) {
    found += std::to_string(orv_test::number_at(key)) + " ";
  }
  return found + text_of(VCONFKEY_ORV_COMMAND_DATA);
}

TEST_F(Exchange, WritesTheParametersThatTheirKeysDoNotHold) {
  vconf_set_str(VCONFKEY_ORV_COMMAND_PARAM1, "no number");
  vconf_set_int(VCONFKEY_ORV_COMMAND_DATA, 5);
  EXPECT_EQ(send({}), 0);
  EXPECT_EQ(parameters(), "0 0 0 0 ");
  EXPECT_EQ(send({"--data", "x", "--", "3", "-1"}), 0);
  EXPECT_EQ(parameters(), "3 -1 0 0 x");
  const key_counter same{VCONFKEY_ORV_COMMAND_PARAM2};
  const key_counter other{VCONFKEY_ORV_COMMAND_PARAM4};
  EXPECT_EQ(send({"3", "-1", "0", "-7", "--data", "x"}), 0);
  EXPECT_EQ(parameters(), "3 -1 0 -7 x");
  EXPECT_EQ(other.seen(), 1);
  EXPECT_EQ(same.seen(), 0) << "what the key held was written again";
}

TEST_F(Exchange, LeavesAResultThatCameWhileTheParametersWereWritten) {
  ASSERT_EQ(vconf_notify_key_changed(VCONFKEY_ORV_COMMAND_PARAM1, fail, nullptr), 0);
  const key_counter results{VCONFKEY_ORV_RESULT};
  EXPECT_EQ(send({"1"}), 0);
  EXPECT_EQ(results.seen(), 2);
  vconf_ignore_key_changed(VCONFKEY_ORV_COMMAND_PARAM1, fail);
}

}  // namespace
