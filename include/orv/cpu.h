/* The CPU sampler: which threads there are, and in what state. */
#ifndef ORV_CPU_H
#define ORV_CPU_H

#include <stdint.h>

#include <orv/export.h>

ORV_BEGIN_DECLS

/* Records in an array that the sampler fills. */
#define ORV_CPU_INFO_RECORDS 4096

struct thread_cpu_info {
  int32_t tid;
  char state[8]; /* the state letter and the newline of the process lister's line */
  char comm[32];
};

/* Of the CPU monitor. A sample leaves what lies beyond its count. */
ORV_API extern struct thread_cpu_info result_cpu_info[ORV_CPU_INFO_RECORDS];

/* Samples every thread that has a stack pointer, but for those named "ps" and "sh", into `records`,
 * the first of ORV_CPU_INFO_RECORDS that stay the caller's. Returns how many it filled, 0 when the
 * threads cannot be listed. Rewrites /tmp/stackmon. Main loop's thread only. */
ORV_API int32_t orv_get_cpu_info(struct thread_cpu_info* records);

/* As get_stack_address and hexalpha_to_int of <orv/stack.h>. Any thread. */
ORV_API uint32_t orv_get_stack_address(const char* text);
ORV_API int orv_hexalpha_to_int(char c);

ORV_END_DECLS

#endif
