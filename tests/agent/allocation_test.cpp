#include <gtest/gtest.h>
#include <stddef.h>

#include <atomic>

#include "common/log.h"

namespace {

std::atomic<long> allocations{0};

}  // namespace

#ifndef __SANITIZE_ADDRESS__
// The C library finds these in the program and calls them too, as does operator new.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_realloc(void* memory, size_t size);
__attribute__((visibility("default"))) void* malloc(size_t size) {
  ++allocations;
  return __libc_malloc(size);
}
__attribute__((visibility("default"))) void* realloc(void* memory, size_t size) {
  ++allocations;
  return __libc_realloc(memory, size);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
#endif

TEST(LogLine, AllocatesNothing) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "a sanitizer's allocator is not counted";
#endif
  orv_log_error("the first line opens the log \n");
  const long before = allocations;
  ASSERT_GT(before, 0) << "nothing is counted";
  for (int i = 0; i < 1000; ++i) {
    orv_log_info("%d %s %f\n", i, "text", 1.5);
  }
  orv_log_error("%d\n", 1);
  EXPECT_EQ(allocations, before);
}
