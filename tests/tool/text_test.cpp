#include <gtest/gtest.h>
#include <limits.h>

#include "text.h"

namespace {

TEST(Numbers, TakesWhatFitsIn32BitsAndNothingElse) {
  const std::pair<const char*, std::optional<int>> rows[] = {
      {"0", 0},
      {"-2147483648", INT_MIN},
      {"2147483647", INT_MAX},
      {"0x208", 0x208},
      {"0XFF", 255},
      {"0xffffffff", -1},
      {"", std::nullopt},
      {"2147483648", std::nullopt},
      {"0x100000000", std::nullopt},
      {"0x", std::nullopt},
      {"1x", std::nullopt},
      {" 1", std::nullopt},
      {"+1", std::nullopt},
      {"1.5", std::nullopt},
      {"0x-1", std::nullopt},
  };
  for (const auto& [text, number] : rows) {
    EXPECT_EQ(orvctl::parse_int(text), number) << text;
  }
}

TEST(Printable, LeavesATerminalNothingToObey) {
  EXPECT_EQ(orvctl::printable("a\x1b[2J\x7f\n\t"), "a?[2J???");
  EXPECT_EQ(orvctl::printable("\xc2\x9b"
                              "2J"),
            "\xc2?2J");
  EXPECT_EQ(orvctl::printable("\xc3\x9b \xc2\xb5"), "\xc3\x9b \xc2\xb5");
}

TEST(MemorySize, IsShownInTheLargestUnitThatFits) {
  const std::pair<uint64_t, const char*> rows[] = {
      {0, "0 B"},
      {1023, "1023 B"},
      {1024, "1.0 KiB"},
      {135168, "132.0 KiB"},
      {1048575, "1.0 MiB"},
      {515395584, "491.5 MiB"},
      {uint64_t{5} << 40U, "5120.0 GiB"},
  };
  for (const auto& [bytes, text] : rows) {
    EXPECT_EQ(orvctl::memory_size(bytes), text);
  }
}

TEST(Duration, TakesUnitsAndNothingElse) {
  const std::pair<const char*, int64_t> rows[] = {{"30s", 30000},    {"500ms", 500}, {"2m", 120000},
                                                  {"24h", 86400000}, {"7", 7000},    {"1.5s", 1500},
                                                  {"0.1m", 6000}};
  for (const auto& [text, ms] : rows) {
    const auto duration = orvctl::parse_duration(text);
    ASSERT_TRUE(duration) << text;
    EXPECT_EQ(duration->count(), ms) << text;
  }
  for (const char* text : {"", "s", "0s", "-1s", "1.5.5s", ".", "0.1ms", "nan", "1 s", "25h",
                           "99999999999999999999ms", "9223372036854775807h", "30S"}) {
    EXPECT_FALSE(orvctl::parse_duration(text)) << text;
  }
}

}  // namespace
