// The heap query: how much memory the target has.

#include <orv/command.h>
#include <orv/meminfo.h>
#include <stdint.h>

#include "common/answer.h"
#include "common/bounded_text.h"
#include "common/log.h"

namespace orv {
namespace {

constexpr size_t answer_size = 200;

// In kB; kept from one query to the next.
uint32_t mem_total_kb = 0;
uint32_t mem_free_kb = 0;
uint32_t buffers_kb = 0;
uint32_t cached_kb = 0;
uint32_t heap_free_kb = 0;

constexpr meminfo_row wanted[] = {
    {"Buffers", &buffers_kb},
    {"Cached", &cached_kb},
    {"MemFree", &mem_free_kb},
    {"MemTotal", &mem_total_kb},
};
constexpr int wanted_count = sizeof wanted / sizeof *wanted;

struct heap_summary_record {
  int32_t item_count;
  int32_t item_id;
  int32_t total_bytes;
};

heap_summary_record heap_summary = {1, 1, 0};

}  // namespace
}  // namespace orv

void orv_heap_handler(orv_command* /*record*/, const char* /*data*/) {
  orv_log_info("start+ \n");
  orv_meminfo(orv::wanted, orv::wanted_count);
  orv::heap_free_kb = orv::mem_free_kb + orv::buffers_kb + orv::cached_kb;

  orv_log_info("> MemTotal   = %d KB \n", static_cast<int32_t>(orv::mem_total_kb));
  orv_log_info("  MemFree    = %d KB \n", static_cast<int32_t>(orv::mem_free_kb));
  orv_log_info("  Buffers    = %d KB \n", static_cast<int32_t>(orv::buffers_kb));
  orv_log_info("  Cached     = %d KB \n", static_cast<int32_t>(orv::cached_kb));
  orv_log_info("> HeapFree   = %d KB \n", static_cast<int32_t>(orv::heap_free_kb));

  orv::heap_summary_record& summary = orv::heap_summary;
  // Of 2 GiB and more the low 32 bits: the answer's field has no more.
  summary.total_bytes = static_cast<int32_t>(orv::mem_total_kb << 10U);
  char buffer[orv::answer_size];
  orv::bounded_text text{buffer};
  text.format("%d,%d,%d", summary.item_count, summary.item_id, summary.total_bytes);
  orv::answer(text.c_str(), ORV_RESULT_OK);
  orv_log_info("end- \n");
}
