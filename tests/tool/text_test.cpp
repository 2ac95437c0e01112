#include <gtest/gtest.h>
#include <limits.h>

#include "command_names.h"
#include "numbers.h"
#include "printable.h"
#include "target.h"

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

TEST(CommandNames, TakesNamesAndNumbers) {
  EXPECT_EQ(orvctl::parse_code("heartbeat"), 0x101);
  EXPECT_EQ(orvctl::parse_code("520"), 0x208);
  EXPECT_EQ(orvctl::parse_code("Heartbeat"), std::nullopt);
  EXPECT_EQ(orvctl::to_text(0x208), "0x208 (target_info)");
  EXPECT_EQ(orvctl::to_text(0x999), "0x999");
}

TEST(TargetAnswer, IsTakenApartFromBothEnds) {
  const auto found = orvctl::parse_target("CSC,Q7,MODEL,EVT2,1.0,240,RELEASE,-3");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->model, "MODEL");
  EXPECT_EQ(found->firmware, "1.0");
  EXPECT_EQ(found->byte_order, 240);
  EXPECT_EQ(found->cis_no, -3);
  const auto commas = orvctl::parse_target("CSC,Q7,,,1,0,5,240,RELEASE,0");
  ASSERT_TRUE(commas);
  EXPECT_EQ(commas->firmware, "1,0,5");
  for (const char* text : {"", "CSC", "848,36,28,2,1,1,1,1,0,$,", "1,1,1024", "a,b,c,d,e,f,g,h",
                           "CSC,Q7,M,240,RELEASE,0"}) {
    EXPECT_FALSE(orvctl::parse_target(text)) << text;
  }
}

}  // namespace
