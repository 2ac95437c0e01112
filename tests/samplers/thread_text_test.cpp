#include <gtest/gtest.h>
#include <orv/cpu.h>
#include <orv/stack.h>

#include <string>

#include "common/stack_range.h"
#include "common/thread_line.h"

namespace {

std::string shown(const std::optional<orv::listed_thread>& thread) {
  if (!thread) {
    return "none";
  }
  char text[160];
  snprintf(text, sizeof text, "%d/%d/%x/%s/%s/%s/%s/%s", thread->pid, thread->tid, thread->esp,
           thread->pid_text, thread->tid_text, thread->pcpu, thread->comm, thread->state);
  return text;
}

TEST(ThreadLine, IsTakenApartAtBlanks) {
  const std::pair<const char*, const char*> rows[] = {
      {"   12    34  0.5 bef01234 worker          S\n", "12/34/bef01234/12/34/0.5/worker/S\n"},
      {"12 34 0.5 BEF01234 worker S", "12/34/bef01234/12/34/0.5/worker/S"},
      {"1 2 0.0 1 two words S\n", "1/2/1/1/2/0.0/two/words"},
      {"1 2 0.0 1 a,$,b S l more\n", "1/2/1/1/2/0.0/a,$,b/S"},
      {"1 2 0.0 1                 S\n", "1/2/1/1/2/0.0//S\n"},  // the name is empty or blank
      {"00000000000012 034 0.0 1 a S\n", "12/34/1/00000000000012/034/0.0/a/S\n"},
      {"2147483647 1 0.0 1 psx S\n", "2147483647/1/1/2147483647/1/0.0/psx/S\n"},
      // Cut to their sizes.
      {"000000000000000000012 2 0.0 1 a S\n", "12/2/1/00000000000000000/2/0.0/a/S\n"},
      {"1 2 123456.89 0123456789abcdef1 thirty-one-characters-are-kept-and-no-more Sleeping\n",
       "1/2/789abcde/1/2/123456./thirty-one-characters-are-kept-/Sleepin"},
  };
  for (const auto& [line, expected] : rows) {
    EXPECT_EQ(shown(orv::parse_thread(line)), expected) << line;
  }
}

TEST(ThreadLine, IsNoThreadsWhenItDoesNotQualify) {
  for (const char* line : {
           "    PID     TID %CPU      ESP COMMAND         S\n",
           "",
           "     \n",
           "\x01\xff\x80 \x02 x x x x\n",
           "1 2 0.0 1 ps R\n",
           "1 2 0.0 1 sh S\n",
           "1 2 0.0 00000000 idle S\n",
           "1 2 0.0 - idle S\n",
           "1 2 0.0 0x idle S\n",
           "1 2 0.0 bef0123g idle S\n",
           "1;reboot 2 0.0 1 a S\n",
           "1 $(reboot) 0.0 1 a S\n",
           "../1 2 0.0 1 a S\n",
           "1 -2 0.0 1 a S\n",
           "+1 2 0.0 1 a S\n",
           "12345678901234567;reboot 2 0.0 1 a S\n",
           "2147483648 1 0.0 1 a S\n",
           "1 99999999999999999999999999999999999999 0.0 1 a S\n",
           "1 2 0.0 1 cut-in-the-na",
           "1 2 0.0 bef",
           "000000000000000000002147483648 1 0.0 1 a S\n",
           "1 2 0.0 1      S",
           "1 2 0.0 1      Sl\n",
           "1 2 0.0 1      5\n",
           "1 2 0.0 S\n",
       }) {
    EXPECT_EQ(shown(orv::parse_thread(line)), "none") << line;
  }
}

TEST(StackRange, HasTwoAddressesOfEightDigits) {
  const auto range = orv::parse_stack_range("bee00000-bee21000\n");
  ASSERT_TRUE(range);
  EXPECT_EQ(range->start, 0xbee00000U);
  EXPECT_EQ(range->end, 0xbee21000U);
  for (const char* line :
       {"00010000-00020000", "00010000-0002FFFF\tr", "00010000-00020000-", "00010000-00020000g"}) {
    EXPECT_TRUE(orv::parse_stack_range(line)) << line;
  }
  for (const char* line :
       {"", "\n", "bee00000", "bee00000-", "bee00000 bee21000\n", "bee00000-bee2100\n",
        "bee00000-bee21000F", "bee00000-bee210000\n", "7ffd1c2e4000-7ffd1c305000\n",
        "0xe00000-bee21000\n", "cat: /proc/1/task/1/maps: No such file or directory\n"}) {
    EXPECT_FALSE(orv::parse_stack_range(line)) << line;
  }
}

TEST(HexAddress, IsTheSameUnderBothNames) {
  const std::pair<const char*, uint32_t> rows[] = {
      {"0x1a", 26}, {"0X1A", 26}, {"1A", 26}, {"01a", 26}, {"bEF01234", 0xbef01234},
      {"", 0},      {"0", 0},     {"0x", 0},  {"1a\n", 0}, {"0x0x1", 0},
      {"-1", 0},    {" 1", 0},    {"1g", 0},  {"x1a", 0},  {"123456789", 0x23456789},
  };
  for (const auto& [text, value] : rows) {
    EXPECT_EQ(get_stack_address(text), value) << text;
    EXPECT_EQ(orv_get_stack_address(text), value) << text;
  }
  for (int c = -128; c < 128; ++c) {
    const bool letter = (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    const int value = letter ? (c | 0x20) - 'a' + 10 : 0;
    EXPECT_EQ(hexalpha_to_int(static_cast<char>(c)), value) << c;
    EXPECT_EQ(orv_hexalpha_to_int(static_cast<char>(c)), value) << c;
  }
}

TEST(StackAddressCopy, TakesExactlySoManyBytes) {
  char copied[] = "......";
  stack_address_cpy(copied, "a\0bcd", 4);
  EXPECT_EQ(std::string(copied, 6), std::string("a\0bc\0.", 6));
}

}  // namespace
