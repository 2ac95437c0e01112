// The CPU sampler.

#include <orv/cpu.h>
#include <string.h>

#include "common/hex_address.h"
#include "common/log.h"
#include "common/thread_lister.h"

thread_cpu_info result_cpu_info[ORV_CPU_INFO_RECORDS];

namespace orv {
namespace {

static_assert(max_listed_threads == ORV_CPU_INFO_RECORDS);

thread_cpu_info record_of(const listed_thread& thread) {
  thread_cpu_info record{};
  record.tid = thread.tid;
  static_assert(sizeof record.state == sizeof thread.state &&
                sizeof record.comm == sizeof thread.comm);
  memcpy(record.state, thread.state, sizeof record.state);
  memcpy(record.comm, thread.comm, sizeof record.comm);
  return record;
}

}  // namespace
}  // namespace orv

int32_t orv_get_cpu_info(thread_cpu_info* records) {
  orv::thread_listing listing;
  int32_t count = 0;
  while (const auto thread = listing.next()) {
    thread_cpu_info& record = records[count];
    record = orv::record_of(*thread);
    orv_log_info("%d      %s     %s\n", record.tid, record.state, record.comm);
    ++count;
  }
  return count;
}

uint32_t orv_get_stack_address(const char* text) {
  return orv::hex_address(text);
}

int orv_hexalpha_to_int(char c) {
  return orv::hex_letter(c);
}
