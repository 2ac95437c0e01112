// The agent's log through the library.

#include <gmock/gmock.h>
#include <stdlib.h>

#include <orv/client.hpp>
#include <string>
#include <vector>

#include "fed_host.h"
#include "main_loop.h"

namespace {

using orv::client::camera;
using orv_test::run_until;
using testing::Contains;
using testing::HasSubstr;

class ClientLog : public testing::Test {
 protected:
  void SetUp() override {
    host_.number_threads();
    host_.start();
  }

  orv_test::fed_host host_;
  std::vector<std::string> lines_;
  std::vector<std::string> ends_;
  orv::client::line_function note_ = [this](const char* line, const char* message) {
    if (line != nullptr) {
      lines_.emplace_back(line);
    } else {
      ends_.emplace_back(message);
    }
  };
};

TEST_F(ClientLog, IsReadToItsEnd) {
  const camera opened;
  const auto reply = opened.read_log(note_);
  EXPECT_EQ(reply->outcome, ORV_RAN) << reply->message;
  EXPECT_THAT(lines_, Contains(HasSubstr("orv_handler")));
  EXPECT_THAT(ends_, testing::ElementsAre(""));
}

TEST_F(ClientLog, IsFollowedUntilItIsStopped) {
  const long descriptors = orv_test::count_descriptors();
  {
    const camera opened;
    orv::client::log log{opened, [&](const char* line, const char* message) {
                           note_(line, message);
                           if (lines_.size() == 3) {
                             log.stop();
                           }
                         }};
    EXPECT_TRUE(run_until([&] { return !log.running(); }));
    EXPECT_EQ(lines_.size(), 3U) << "lines came after the stop";
    // The camera's close ends one as well.
    const orv::client::log cut{opened, note_};
    ASSERT_TRUE(run_until([this] { return lines_.size() > 3; }));
  }
  EXPECT_EQ(ends_.size(), 1U);
  EXPECT_EQ(orv_test::count_descriptors(), descriptors);
}

TEST_F(ClientLog, SaysWhenItCannotBeRead) {
  const camera opened;
  const std::string path = getenv("PATH");
  setenv("PATH", host_.file("bin").c_str(), 1);
  const auto missing = opened.read_log(note_);
  EXPECT_EQ(missing->outcome, ORV_NOT_RUN);
  EXPECT_EQ(missing->why, ORV_WHY_NO_LOG);
  EXPECT_STREQ(missing->message,
               "cannot run dlogutil, the log's reader: No such file or directory; is it in PATH?");
  host_.write_program("dlogutil", "printf 'half a line'; exit 4");
  const auto failed = opened.read_log(note_);
  setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(failed->result, -1);
  EXPECT_STREQ(failed->message, "dlogutil, the log's reader, ended with status 4");
  EXPECT_THAT(lines_, testing::ElementsAre("half a line"));
}

}  // namespace
