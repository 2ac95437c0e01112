/* The stack sampler, and the conversion of addresses that come as text. */
#ifndef ORV_STACK_H
#define ORV_STACK_H

#include <stddef.h>
#include <stdint.h>

#include <orv/export.h>

ORV_BEGIN_DECLS

/* Records in an array that a sampler fills. */
#define ORV_STACK_INFO_RECORDS 4096

/* A thread and its stack. Start, end and size are 0 when the thread's stack is not known. */
struct thread_stack_info {
  int32_t pid;
  int32_t tid;
  uint32_t stack_start; /* low address of the mapping */
  uint32_t stack_end;
  uint32_t stack_size; /* bytes */
  uint32_t esp;        /* stack pointer, never 0 */
  char pcpu[8];        /* CPU use as the process lister prints it */
  char comm[32];
  char state[8]; /* the state letter alone */
};

/* Of the stack query and of the stack monitor. A sample leaves what lies beyond its count. */
ORV_API extern struct thread_stack_info res_stack_info[ORV_STACK_INFO_RECORDS];
ORV_API extern struct thread_stack_info result_stack_info[ORV_STACK_INFO_RECORDS];

/* Samples every thread that has a stack pointer, but for those named "ps" and "sh", into `records`,
 * the first of ORV_STACK_INFO_RECORDS that stay the caller's. Returns how many it filled, 0 when
 * the threads cannot be listed. Rewrites /tmp/stackmon; runs one shell command a thread and waits
 * for each. Main loop's thread only. */
ORV_API int32_t orv_get_stack_info(struct thread_stack_info* records);

/* Value of a hexadecimal text, with or without 0x before it; its low 32 bits when it is longer.
 * 0 when the text is empty or holds anything but hexadecimal digits. Any thread. */
ORV_API uint32_t get_stack_address(const char* text);

/* 10 to 15 for a letter a to f or A to F, 0 for any other character. Any thread. */
ORV_API int hexalpha_to_int(char c);

/* Copies exactly `n` bytes, a NUL among them too, and a NUL behind them: `dst` holds n + 1 bytes
 * and does not overlap `src`. Any thread. */
ORV_API void stack_address_cpy(char* dst, const char* src, size_t n);

ORV_END_DECLS

#endif
