#include "allocation_counter.h"

#include <stddef.h>

#include <atomic>

#ifdef __SANITIZE_ADDRESS__

long orv_test::allocations() {
  return -1;
}

#else

namespace {

std::atomic<long> count{0};

}  // namespace

long orv_test::allocations() {
  return count;
}

// The C library finds these in the program and calls them too.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t number, size_t size);
void* __libc_realloc(void* memory, size_t size);

__attribute__((visibility("default"))) void* malloc(size_t size) {
  ++count;
  return __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(size_t number, size_t size) {
  ++count;
  return __libc_calloc(number, size);
}

__attribute__((visibility("default"))) void* realloc(void* memory, size_t size) {
  ++count;
  return __libc_realloc(memory, size);
}

}  // extern "C"
   // NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

#endif
