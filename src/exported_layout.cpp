// The exported records and tables have the same layout on every machine, but for their pointers:
// tools that read them out of a core file or a running host rely on it.

#include <limits.h>
#include <orv/agent.h>
#include <orv/command.h>
#include <orv/cpu.h>
#include <orv/health.h>
#include <orv/input.h>
#include <orv/meminfo.h>
#include <orv/monitor.h>
#include <orv/stack.h>
#include <stddef.h>

#include <type_traits>

namespace {

constexpr size_t pointer_size = sizeof(void*);
static_assert(pointer_size == 4 || pointer_size == 8);
static_assert(CHAR_BIT == 8 && sizeof(int) == 4);

template <class... Records>
constexpr bool plain = (... && (std::is_trivial_v<Records> && std::is_standard_layout_v<Records>));
static_assert(plain<orv_command, key_map_entry, meminfo_row, thread_cpu_info, thread_stack_info,
                    orv_packet_header, orv_heap_item, orv_cpu_item>);

static_assert(sizeof(orv_command) == 20);
static_assert(offsetof(orv_command, param4) == 12);
static_assert(offsetof(orv_command, command) == 16);

static_assert(sizeof(key_map_entry) == 84);
static_assert(offsetof(key_map_entry, keycode) == 80);
static_assert(sizeof orv_key_map == size_t{34} * 84);

static_assert(sizeof(meminfo_row) == 2 * pointer_size);
static_assert(offsetof(meminfo_row, slot) == pointer_size);

static_assert(sizeof(thread_cpu_info) == 44);
static_assert(offsetof(thread_cpu_info, state) == 4);
static_assert(offsetof(thread_cpu_info, comm) == 12);
static_assert(sizeof result_cpu_info == size_t{4096} * 44);

static_assert(sizeof(thread_stack_info) == 72);
static_assert(offsetof(thread_stack_info, tid) == 4);
static_assert(offsetof(thread_stack_info, stack_start) == 8);
static_assert(offsetof(thread_stack_info, stack_end) == 12);
static_assert(offsetof(thread_stack_info, stack_size) == 16);
static_assert(offsetof(thread_stack_info, esp) == 20);
static_assert(offsetof(thread_stack_info, pcpu) == 24);
static_assert(offsetof(thread_stack_info, comm) == 32);
static_assert(offsetof(thread_stack_info, state) == 64);
static_assert(sizeof res_stack_info == size_t{4096} * 72);
static_assert(sizeof result_stack_info == sizeof res_stack_info);

static_assert(sizeof(orv_packet_header) == 8);
static_assert(offsetof(orv_packet_header, total_count) == 4);
static_assert(sizeof(orv_heap_item) == 32);
static_assert(offsetof(orv_heap_item, heap_free) == 20);
static_assert(offsetof(orv_heap_item, mark) == 28);
static_assert(sizeof(orv_cpu_item) == 20);
static_assert(offsetof(orv_cpu_item, task_id) == 8);
static_assert(offsetof(orv_cpu_item, mark) == 16);
static_assert(sizeof vconf_cpu_data == 80096 && sizeof wr_vconf_data == 80096);

static_assert(sizeof orv_start_time == 4);
static_assert(sizeof exception_thread_list == 2 * pointer_size);
static_assert(sizeof monitor_thread_list == 54 * pointer_size);

}  // namespace
