#include "key_names.h"

#include <gmock/gmock.h>

namespace {

using orvctl::check_key;
using orvctl::keys_like;
using testing::ElementsAre;

TEST(KeyNames, StandWholeForTheirOwnKey) {
  for (const orvctl::key_name& key : orvctl::all_keys()) {
    SCOPED_TRACE(key.name);
    EXPECT_THAT(keys_like(key.name), ElementsAre(key.name));
    EXPECT_EQ(check_key(std::string{key.name}), "");
  }
}

TEST(KeyNames, MayBeCutAndLoseTheirPrefixAndTheirCase) {
  const std::pair<const char*, const char*> rows[] = {
      {"KEY_MEN", "KEY_MENU"}, {"key_menu", "KEY_MENU"},   {"Menu", "KEY_MENU"},
      {"men", "KEY_MENU"},     {"vk_info", "VK_INFO"},     {"info", "VK_INFO"},
      {"wifi", "KEY_WIFI"},    {"mode_s", "KEY_MODE_S"},   {"Mode_Sm", "KEY_MODE_SMART"},
      {"up", "KEY_UP"},        {"WheelCW", "KEY_WHEELCW"}, {"capture", "VK_CAPTURE_END"},
  };
  for (const auto& [text, name] : rows) {
    SCOPED_TRACE(text);
    EXPECT_THAT(keys_like(text), ElementsAre(name));
    EXPECT_EQ(check_key(text), "");
  }
}

TEST(KeyNames, AreRefusedWhileTheyMayBeSeveral) {
  EXPECT_THAT(keys_like("sw"), ElementsAre("KEY_SW1", "KEY_SW2"));
  EXPECT_EQ(check_key("sw"), "\"sw\" may be KEY_SW1, KEY_SW2");
  EXPECT_EQ(check_key("KEY_P"), "\"KEY_P\" may be KEY_POWEROFF, KEY_POWERON, KEY_PB");
  EXPECT_EQ(check_key("de"), "\"de\" may be KEY_DELETE, VK_DELALLIMAGE");
}

TEST(KeyNames, AreSuggestedForTheirMisspellings) {
  const std::pair<const char*, const char*> rows[] = {
      {"KEY_MNEU", "KEY_MENU"},
      {"key_mneu", "KEY_MENU"},
      {"menue", "KEY_MENU"},
      {"KEYMENU", "KEY_MENU"},
      {"VK_MENU", "KEY_MENU"},
      {"KEY_RESET", "VK_RESET"},
      {"KEY_POWEROFFF", "KEY_POWEROFF"},
      {"KEY_POWERONN", "KEY_POWERON"},
      {"rigth", "KEY_RIGHT"},
      {"KEY_MODE_SMRT", "KEY_MODE_SMART"},
      {"REPOSTION", "VK_REPOSITION"},
  };
  for (const auto& [text, name] : rows) {
    SCOPED_TRACE(text);
    EXPECT_THAT(keys_like(text), testing::IsEmpty());
    EXPECT_EQ(check_key(text), "no key \"" + std::string{text} + "\"; the nearest is " + name);
  }
}

TEST(KeyNames, AreNotSuggestedForWhatResemblesNone) {
  for (const char* text : {"zzzz", "Q", "KEY_X", "12345", "heartbeat", "end"}) {
    EXPECT_EQ(check_key(text),
              "no key \"" + std::string{text} + "\"; orvctl key --list names them all");
  }
}

}  // namespace
