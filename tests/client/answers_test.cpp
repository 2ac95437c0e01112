#include "answers.h"

#include <gmock/gmock.h>

namespace {

using orv_client::parse_identity;
using orv_client::parse_memory;
using orv_client::parse_threads;
using orv_client::thread_stack;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(IdentityAnswer, KeepsTheCommasOfTheFirmwareVersion) {
  const auto found = parse_identity("CSC,Q7,LUMEN-ONE,EVT2,1.04,beta,2,240,RELEASE,-3");
  ASSERT_TRUE(found);
  EXPECT_EQ(found->board, "EVT2");
  EXPECT_EQ(found->firmware, "1.04,beta,2");
  EXPECT_EQ(found->byte_order, 240);
  EXPECT_EQ(found->build_type, "RELEASE");
  EXPECT_EQ(found->cis_no, -3);
  EXPECT_TRUE(parse_identity(",,,,,0,,0"));
  for (const char* text : {"", "a,b,c,d,240,RELEASE,0", "a,b,c,d,e,f,RELEASE,0",
                           "a,b,c,d,e,240,RELEASE,", "848,36,28,2,10,1,1,1024,0,$,"}) {
    EXPECT_FALSE(parse_identity(text)) << text;
  }
}

TEST(MemoryAnswer, IsReadAsUnsigned) {
  EXPECT_EQ(parse_memory("1,1,515395584").value(), 515395584U);
  EXPECT_EQ(parse_memory("1,1,-2147483648").value(), 2147483648U);
  for (const char* text : {"", "1,1,", "1,1,x", "1,1,2,3", "523,0,", "1,1,4294967296"}) {
    EXPECT_FALSE(parse_memory(text)) << text;
  }
}

std::vector<std::string> threads_of(const char* text) {
  std::vector<std::string> rows;
  const auto list = parse_threads(text);
  for (const thread_stack& one : list ? list->threads : std::vector<thread_stack>{}) {
    rows.push_back(std::to_string(one.tid) + "|" + one.name + "|" + std::to_string(one.size_bytes) +
                   "|" + std::to_string(one.base));
  }
  return rows;
}

TEST(ThreadsAnswer, TakesGroupsOfAnyName) {
  EXPECT_THAT(threads_of("523,0,"), IsEmpty());
  EXPECT_THAT(threads_of("523,2,7,worker,135168,3202351104,$,-8,b c,0,0,$,"),
              ElementsAre("7|worker|135168|3202351104", "-8|b c|0|0"));
  EXPECT_THAT(threads_of("523,5,1,a,b,8,9,$,2,$,8,9,$,3,,8,9,$,4,x,$,y,8,9,$,5,1,2,$,z,8,9,$,"),
              ElementsAre("1|a,b|8|9", "2|$|8|9", "3||8|9", "4|x,$,y|8|9", "5|1,2,$,z|8|9"));
}

TEST(ThreadsAnswer, KeepsTheNumberOfAnAnswerThatWasCut) {
  const auto list = parse_threads("523,140,7,worker,8,9,$,");
  ASSERT_TRUE(list);
  EXPECT_EQ(list->sampled, 140);
  EXPECT_EQ(list->threads.size(), 1U);
}

TEST(ThreadsAnswer, RefusesWhatTheQueryDoesNotAnswer) {
  for (const char* text :
       {"", "523,", "523,x,", "523,1", "523,-1,", "1,1,1024", "848,36,28,2,1,1,1,1,0,$,",
        "523,0,7,worker,8,9,$,", "523,2,7,worker,8,9,$,8,cut,", "523,1,7,worker,8,$,",
        "523,1,x,worker,8,9,$,", "523,1,7,worker,8,4294967296,$,", "523,1,7,worker,8,9,$"}) {
    EXPECT_FALSE(parse_threads(text)) << text;
  }
}

}  // namespace
