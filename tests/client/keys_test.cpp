// Keys by their names.

#include <gmock/gmock.h>
#include <orv/client.h>

#include <span>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> keys_like(const char* text) {
  const orv_key* found[64];
  const size_t count = orv_keys_like(text, found, std::size(found));
  std::vector<std::string> names;
  for (const orv_key* key : std::span{found, count}) {
    names.emplace_back(key->name);
  }
  return names;
}

TEST(Keys, AreNamedWholeOrCutWithoutPrefixAndInAnyCase) {
  size_t count = 0;
  const orv_key* all = orv_keys(&count);
  for (const orv_key& key : std::span{all, count}) {
    EXPECT_THAT(keys_like(key.name), ElementsAre(key.name));
  }
  const std::pair<const char*, const char*> rows[] = {
      {"KEY_MEN", "KEY_MENU"}, {"key_menu", "KEY_MENU"},   {"Menu", "KEY_MENU"},
      {"men", "KEY_MENU"},     {"vk_info", "VK_INFO"},     {"info", "VK_INFO"},
      {"wifi", "KEY_WIFI"},    {"mode_s", "KEY_MODE_S"},   {"Mode_Sm", "KEY_MODE_SMART"},
      {"up", "KEY_UP"},        {"WheelCW", "KEY_WHEELCW"}, {"capture", "VK_CAPTURE_END"},
  };
  for (const auto& [text, name] : rows) {
    EXPECT_THAT(keys_like(text), ElementsAre(name)) << text;
  }
}

TEST(Keys, MayBeSeveral) {
  EXPECT_THAT(keys_like("sw"), ElementsAre("KEY_SW1", "KEY_SW2"));
  EXPECT_THAT(keys_like("KEY_P"), ElementsAre("KEY_POWEROFF", "KEY_POWERON", "KEY_PB"));
  EXPECT_THAT(keys_like("de"), ElementsAre("KEY_DELETE", "VK_DELALLIMAGE"));
  const orv_key* first = nullptr;
  EXPECT_EQ(orv_keys_like("KEY_P", &first, 1), 3U);
  EXPECT_STREQ(first->name, "KEY_POWEROFF");
}

TEST(Keys, AreSuggestedForTheirMisspellingsOnly) {
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
    EXPECT_THAT(keys_like(text), IsEmpty());
    const orv_key* nearest = orv_nearest_key(text);
    ASSERT_NE(nearest, nullptr);
    EXPECT_STREQ(nearest->name, name);
  }
  for (const char* text : {"zzzz", "Q", "KEY_X", "12345", "heartbeat", "end"}) {
    EXPECT_EQ(orv_nearest_key(text), nullptr) << text;
  }
}

}  // namespace
