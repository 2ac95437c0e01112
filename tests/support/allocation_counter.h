// Counts allocations of the whole process, those of the C library included.
#ifndef ORV_TESTS_SUPPORT_ALLOCATION_COUNTER_H
#define ORV_TESTS_SUPPORT_ALLOCATION_COUNTER_H

namespace orv_test {

// Calls of malloc, calloc and realloc so far; -1 under a sanitizer, which has an allocator of its
// own.
long allocations();

}  // namespace orv_test

#endif
