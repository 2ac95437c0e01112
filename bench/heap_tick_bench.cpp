// A tick of the heap monitor on packets of several lengths, beside the traffic that it cannot do
// without.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <orv/monitor.h>
#include <orv/protocol.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <vconf.h>

#include <chrono>
#include <string>

#include "monitor/packet.h"
#include "ratio_table.h"

namespace orv_bench {
namespace {

std::string packet_of_size(size_t characters) {
  const std::string item = "28,2,123456,1,1,3072000000,0,$,";
  std::string items;
  while (items.size() + item.size() + sizeof "848,123456," <= characters) {
    items += item;
  }
  const size_t total = ORV_PACKET_HEADER_SIZE + items.size() / item.size() * ORV_ITEM_HEAP_SIZE;
  return "848," + std::to_string(total) + "," + items;
}

// Each iteration begins with the same packet in the key; putting it there is not timed.
template <class Work>
void measure(benchmark::State& state, const std::string& packet, Work work) {
  using clock = std::chrono::steady_clock;
  for (auto _ : state) {
    vconf_set_str(VCONFKEY_ORV_RESULT_DATA, packet.c_str());
    const auto start = clock::now();
    work();
    state.SetIterationTime(std::chrono::duration<double>(clock::now() - start).count());
  }
}

void tick(benchmark::State& state) {
  measure(state, packet_of_size(static_cast<size_t>(state.range(0))),
          [] { orv_heap_monitor_proc(nullptr); });
}

void read_memory_summary() {
  char buffer[2048];
  const int fd = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
  benchmark::DoNotOptimize(read(fd, buffer, sizeof buffer - 1));
  close(fd);
}

// Over a copy, in memory that is taken and given back as a tick does.
void write_value_back() {
  char* value = vconf_get_str(VCONFKEY_ORV_RESULT_DATA);
  char* copy = strcpy(static_cast<char*>(malloc(ORV_PACKET_MAX_TEXT)), value);
  char* written = strcpy(static_cast<char*>(malloc(ORV_PACKET_MAX_TEXT)), copy);
  vconf_set_str(VCONFKEY_ORV_RESULT_DATA, written);
  free(written);
  free(copy);
  free(value);
}

// What a tick reads, writes and allocates.
void bare_traffic(benchmark::State& state) {
  measure(state, packet_of_size(static_cast<size_t>(state.range(0))), [] {
    read_memory_summary();
    write_value_back();
    vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_OK);
  });
}

void keep_books(benchmark::State& state) {
  const std::string packet = packet_of_size(static_cast<size_t>(state.range(0)));
  const std::string item = "28,2,123456,1,1,3072000000,0,$,";
  char* room = static_cast<char*>(malloc(ORV_PACKET_MAX_TEXT));
  for (auto _ : state) {
    orv::bounded_text grown{room, ORV_PACKET_MAX_TEXT};
    benchmark::DoNotOptimize(orv::grow_packet(orv::parse_packet(std::string_view{packet}),
                                              {ORV_ITEM_HEAP_SIZE, item}, grown));
  }
  free(room);
}

bool register_ticks(const char* size_name, int characters) {
  const auto add = [&](const char* name, void (*body)(benchmark::State&)) {
    std::string full_name = name + std::string{"-"} + size_name;
    auto* added = benchmark::RegisterBenchmark(full_name.c_str(), body)->Arg(characters);
    body == keep_books ? added->UseRealTime() : added->UseManualTime();
    return full_name;
  };
  const std::string whole = add("heap-tick/whole", tick);
  want(whole, add("heap-tick/bare-traffic", bare_traffic), 1.15);
  want(add("heap-tick/bookkeeping", keep_books), whole, 0.03);
  return true;
}

const bool registered[] = {
    register_ticks("100B", 100),
    register_ticks("10KB", 10'000),
    register_ticks("79KB", 79'000),
};

}  // namespace
}  // namespace orv_bench
