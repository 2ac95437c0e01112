// The stack sampler.

#include <orv/stack.h>
#include <stddef.h>
#include <string.h>

#include "common/hex_address.h"
#include "common/log.h"
#include "common/stack_range.h"
#include "common/thread_lister.h"

thread_stack_info result_stack_info[ORV_STACK_INFO_RECORDS];

namespace orv {
namespace {

static_assert(max_listed_threads == ORV_STACK_INFO_RECORDS);

template <size_t N>
void copy_text(char (&to)[N], const char (&from)[N]) {
  memcpy(to, from, N);
}

thread_stack_info without_stack(const listed_thread& thread) {
  thread_stack_info record{};
  record.pid = thread.pid;
  record.tid = thread.tid;
  record.esp = thread.esp;
  copy_text(record.pcpu, thread.pcpu);
  copy_text(record.comm, thread.comm);
  record.state[0] = thread.state[0];
  return record;
}

void put_stack(thread_stack_info& record, const stack_range& stack) {
  record.stack_start = stack.start;
  record.stack_end = stack.end;
  record.stack_size = stack.end - stack.start;
}

}  // namespace
}  // namespace orv

int32_t orv_get_stack_info(thread_stack_info* records) {
  orv::thread_listing listing;
  int32_t count = 0;
  while (const auto thread = listing.next()) {
    thread_stack_info& record = records[count];
    record = orv::without_stack(*thread);
    const auto line = orv::ask_stack_line(*thread);
    if (!line) {
      orv_log_error("Failed to run command\n");
    } else if (const auto stack = orv::parse_stack_range(line->text)) {
      orv::put_stack(record, *stack);
    }
    orv_log_info("%d  %d   %s    %lu         %lu         %lu         %lu       %s   %s\n",
                 record.pid, record.tid, record.pcpu, static_cast<unsigned long>(record.esp),
                 static_cast<unsigned long>(record.stack_start),
                 static_cast<unsigned long>(record.stack_end),
                 static_cast<unsigned long>(record.stack_size), record.state, record.comm);
    ++count;
  }
  return count;
}

uint32_t get_stack_address(const char* text) {
  return orv::hex_address(text);
}

int hexalpha_to_int(char c) {
  return orv::hex_letter(c);
}

void stack_address_cpy(char* dst, const char* src, size_t n) {
  memcpy(dst, src, n);
  dst[n] = '\0';
}
