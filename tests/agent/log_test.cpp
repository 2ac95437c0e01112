#include "common/log.h"

#include <stdio.h>

#include <string>

#include "agent_probe.h"

namespace {

using orv_test::take_log;
using LogLine = orv_test::AgentTest;

const std::string yellow = "\033[33m";
const std::string red = "\033[31m";
const std::string reset = "\033[m\n";

std::string logged(const std::string& message) {
  orv_log_info("%s", message.c_str());
  const auto records = take_log();
  return records.size() == 1 ? records[0].line : "not one record";
}

TEST_F(LogLine, LosesOneNewlineAtTheEndAndNothingElse) {
  EXPECT_EQ(logged("whole "), yellow + "whole " + reset);
  EXPECT_EQ(logged("one \n"), yellow + "one " + reset);
  EXPECT_EQ(logged("two\n\n"), yellow + "two\n" + reset);
  EXPECT_EQ(logged("\nin\nside"), yellow + "\nin\nside" + reset);
  EXPECT_EQ(logged(""), yellow + reset);
  EXPECT_EQ(logged("\n"), yellow + reset);
}

TEST_F(LogLine, IsCutSoThatTheResetSequenceFits) {
  for (const size_t length : {245U, 246U, 247U, 249U, 250U, 251U, 300U, 5000U}) {
    SCOPED_TRACE(length);
    const std::string kept(std::min<size_t>(length, 246), 'x');
    EXPECT_EQ(logged(std::string(length, 'x')), yellow + kept + reset);
    EXPECT_EQ(logged(std::string(length, 'x') + "\n"), yellow + kept + reset);
  }
}

TEST_F(LogLine, CarriesItsCallSiteAndLevel) {
  testing::internal::CaptureStderr();
  orv_log_info("to the log \n");
  orv_log_error("to both %d \n", 7);
  const std::string printed = testing::internal::GetCapturedStderr();
  const auto records = take_log();
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].priority, 4);
  EXPECT_EQ(records[1].priority, 6);
  for (const auto& record : records) {
    EXPECT_EQ(record.log_id, 3);
    EXPECT_EQ(record.tag, "ORV");
    EXPECT_EQ(record.file, "log_test.cpp");
    EXPECT_EQ(record.function, "TestBody");
  }
  EXPECT_EQ(printed, "[ORV       ] " + red + "to both 7 " + reset);
}

}  // namespace
