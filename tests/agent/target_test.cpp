#include <gmock/gmock.h>
#include <orv/command.h>
#include <orv/protocol.h>
#include <version_info.h>

#include <string>

#include "agent_probe.h"

namespace {

const char* project = "";
const char* board = "";
const char* firmware = "";

}  // namespace

// In place of the stand-in's: its texts come from a file, these can also be null or too long.
const char* get_project_name(void) {
  return project;
}
const char* get_board_version_name(void) {
  return board;
}
const char* get_fw_version_full(void) {
  return firmware;
}

namespace {

using Target = orv_test::AgentTest;

std::string ask() {
  return orv_test::answer_of(orv_target_handler);
}

TEST_F(Target, AnswersInFieldsAndLogsThem) {
  project = "LUMEN, ONE";
  board = "EVT2";
  firmware = "1.04";
  EXPECT_EQ(ask(), "CSC,Q7,LUMEN, ONE,EVT2,1.04,240,RELEASE,0");
  EXPECT_THAT(
      orv_test::take_writes(),
      testing::ElementsAre("memory/orv/result_data=CSC,Q7,LUMEN, ONE,EVT2,1.04,240,RELEASE,0",
                           "memory/orv/result=0"));
  EXPECT_THAT(
      orv_test::take_messages(),
      testing::ElementsAre("I start+ ", "I   category    = CSC ", "I   platform    = Q7 ",
                           "I   model       = LUMEN, ONE ", "I   step        = EVT2 ",
                           "I   firm_ver    = 1.04 ", "I   endian_type = 0xf0 ",
                           "I   build_type  = RELEASE ", "I   cis_no      = 0 ", "I end- "));
}

TEST_F(Target, CutsTextsToTheirFieldsAndTakesNullAsEmpty) {
  const std::string model(40, 'm');
  const std::string step(16, 's');
  const std::string version(200, 'v');
  project = model.c_str();
  board = step.c_str();
  firmware = version.c_str();
  EXPECT_EQ(ask(), "CSC,Q7," + model.substr(0, 15) + "," + step.substr(0, 15) + "," +
                       version.substr(0, 63) + ",240,RELEASE,0");
  project = nullptr;
  board = nullptr;
  firmware = nullptr;
  EXPECT_EQ(ask(), "CSC,Q7,,,,240,RELEASE,0");
}

}  // namespace
