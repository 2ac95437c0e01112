#include <gmock/gmock.h>

#include "heap.h"
#include "memory_size.h"
#include "thread_list.h"

namespace {

using orvctl::parse_thread_list;
using orvctl::sort_key;
using orvctl::thread_stack;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(HeapAnswer, IsReadAsUnsigned) {
  EXPECT_EQ(orvctl::parse_heap("1,1,515395584").value().total_bytes, 515395584U);
  EXPECT_EQ(orvctl::parse_heap("1,1,-2147483648").value().total_bytes, 2147483648U);
  for (const char* text : {"", "1,1,", "1,1,x", "1,1,2,3", "523,0,", "1,1,4294967296"}) {
    EXPECT_FALSE(orvctl::parse_heap(text)) << text;
  }
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

std::string shown(const thread_stack& one) {
  return std::to_string(one.tid) + "|" + one.name + "|" + std::to_string(one.size_bytes) + "|" +
         std::to_string(one.base);
}

std::vector<std::string> shown(const std::vector<thread_stack>& threads) {
  std::vector<std::string> rows;
  for (const thread_stack& one : threads) {
    rows.push_back(shown(one));
  }
  return rows;
}

TEST(ThreadList, TakesGroupsOfAnyName) {
  EXPECT_THAT(parse_thread_list("523,0,").value().threads, IsEmpty());
  EXPECT_THAT(
      shown(parse_thread_list("523,2,7,worker,135168,3202351104,$,-8,b c,0,0,$,").value().threads),
      ElementsAre("7|worker|135168|3202351104", "-8|b c|0|0"));
  EXPECT_THAT(shown(parse_thread_list("523,5,1,a,b,8,9,$,2,$,8,9,$,3,,8,9,$,4,x,$,y,8,9,$,"
                                      "5,1,2,$,z,8,9,$,")
                        .value()
                        .threads),
              ElementsAre("1|a,b|8|9", "2|$|8|9", "3||8|9", "4|x,$,y|8|9", "5|1,2,$,z|8|9"));
}

TEST(ThreadList, KeepsTheCountOfAnAnswerThatWasCut) {
  const auto list = parse_thread_list("523,140,7,worker,8,9,$,");
  ASSERT_TRUE(list);
  EXPECT_EQ(list->count, 140);
  EXPECT_EQ(list->threads.size(), 1U);
}

TEST(ThreadList, RefusesWhatTheQueryDoesNotAnswer) {
  for (const char* text :
       {"", "523,", "523,x,", "523,1", "523,-1,", "1,1,1024", "848,36,28,2,1,1,1,1,0,$,",
        "523,0,7,worker,8,9,$,", "523,2,7,worker,8,9,$,8,cut,", "523,1,7,worker,8,$,",
        "523,1,x,worker,8,9,$,", "523,1,7,worker,8,4294967296,$,", "523,1,7,worker,8,9,$"}) {
    EXPECT_FALSE(parse_thread_list(text)) << text;
  }
}

TEST(ThreadList, IsSortedAsAsked) {
  std::vector<thread_stack> threads = {{3, "b", 10, 50}, {1, "c", 20, 100}, {2, "b", 20, 200}};
  const auto tids_by = [&threads](sort_key key) {
    orvctl::sort_threads(threads, key);
    return std::vector{threads[0].tid, threads[1].tid, threads[2].tid};
  };
  EXPECT_THAT(tids_by(sort_key::name), ElementsAre(2, 3, 1));
  EXPECT_THAT(tids_by(sort_key::size), ElementsAre(1, 2, 3));
  EXPECT_THAT(tids_by(sort_key::base), ElementsAre(3, 1, 2));
  EXPECT_THAT(tids_by(sort_key::tid), ElementsAre(1, 2, 3));
}

}  // namespace
