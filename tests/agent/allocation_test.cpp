#include <gtest/gtest.h>

#include "allocation_counter.h"
#include "common/log.h"

namespace {

TEST(LogLine, AllocatesNothing) {
  if (orv_test::allocations() < 0) {
    GTEST_SKIP() << "a sanitizer's allocator is not counted";
  }
  orv_log_error("the first line opens the log \n");
  const long before = orv_test::allocations();
  for (int i = 0; i < 1000; ++i) {
    orv_log_info("%d %s %f\n", i, "text", 1.5);
  }
  orv_log_error("%d\n", 1);
  EXPECT_EQ(orv_test::allocations(), before);
  const testing::Message allocating;
  EXPECT_GT(orv_test::allocations(), before) << "nothing is counted";
}

}  // namespace
