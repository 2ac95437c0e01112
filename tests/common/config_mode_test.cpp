#include <gmock/gmock.h>
#include <orv/config_mode.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "agent_probe.h"

namespace {

using orv_test::take_messages;
using testing::ElementsAre;

constexpr char config_file[] = "/sdcard/orv.conf";
constexpr char entry_line[] = "I  orv_check_config_mode+";
constexpr char exit_line[] = "I  orv_check_config_mode-";

// The memory card is the simulated camera's, made for this test program.
class ConfigMode : public orv_test::AgentTest {
 protected:
  void TearDown() override { std::filesystem::remove_all(config_file); }
};

using reading = std::pair<int, int>;  // the result and the mode

reading read() {
  int mode = 7;
  const int result = orv_check_config_mode(&mode);
  return {result, mode};
}

constexpr reading none{0, 0};
constexpr reading normal{1, 0};
constexpr reading multi_lang_popup{1, 1};
constexpr reading multi_lang{1, 2};

TEST_F(ConfigMode, IsTheFirstKeywordOfTheTableThatTheFirstLineHolds) {
  const std::pair<std::string, reading> rows[] = {
      {"normal\n", normal},
      {"multi-lang-popup", multi_lang_popup},
      {"multi-lang\r\n", multi_lang},
      {"mode=multi-lang-popup;x\n", multi_lang_popup},
      {"multi-lang multi-lang-popup\n", multi_lang_popup},
      {"multi-lang-popup normal\n", normal},
      {"Normal\n", none},
      {"norma\nl", none},
      {"\nnormal\n", none},
      {"", none},
      {std::string(73, ' ') + "normal", normal},
      {std::string(74, ' ') + "normal", none},
      {std::string(64, ' ') + "multi-lang-popup", multi_lang},
      {std::string(5000, ' ') + "normal", none},
  };
  for (const auto& [text, expected] : rows) {
    SCOPED_TRACE(text);
    std::ofstream{config_file, std::ios::trunc | std::ios::binary} << text;
    EXPECT_EQ(read(), expected);
    EXPECT_EQ(orv_check_config_mode(nullptr), expected.first);
    EXPECT_THAT(take_messages(), ElementsAre(entry_line, exit_line, entry_line, exit_line));
  }
}

TEST_F(ConfigMode, IsNormalWithoutAFileThatCanBeRead) {
  EXPECT_EQ(read(), none);
  EXPECT_THAT(take_messages(),
              ElementsAre(entry_line, "I  Could not access orv_file ===", exit_line));
  std::filesystem::create_directory(config_file);  // access and fopen allow it, fgets does not
  EXPECT_EQ(read(), none);
  EXPECT_THAT(take_messages(), ElementsAre(entry_line, exit_line));
}

}  // namespace
