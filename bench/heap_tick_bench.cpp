// A tick of the heap monitor on packets of several lengths, beside the work that it cannot do
// without.

#include <fcntl.h>
#include <orv/monitor.h>
#include <orv/protocol.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>
#include <vconf.h>

#include <string>
#include <string_view>
#include <vector>

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

void read_memory_summary() {
  char buffer[2048];
  const int fd = open("/proc/meminfo", O_RDONLY | O_CLOEXEC);
  keep(read(fd, buffer, sizeof buffer - 1));
  close(fd);
}

void tick() {
  orv_heap_monitor_proc(nullptr);
}

// What a tick reads, allocates and writes, and nothing else.
void bare_tick() {
  read_memory_summary();
  char* value = vconf_get_str(VCONFKEY_ORV_RESULT_DATA);
  const size_t size = strlen(value) + 1;
  char* copy = static_cast<char*>(memcpy(malloc(ORV_PACKET_MAX_TEXT), value, size));
  char* written = static_cast<char*>(memcpy(malloc(ORV_PACKET_MAX_TEXT), copy, size));
  vconf_set_str(VCONFKEY_ORV_RESULT_DATA, written);
  vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_OK);
  free(written);
  free(copy);
  free(value);
}

// Every run begins with the same packet in the key.
void alternate_from(row& row, const std::string& packet, const work& measured, const work& floor) {
  row.alternate(measured, floor, [&] { vconf_set_str(VCONFKEY_ORV_RESULT_DATA, packet.c_str()); });
}

void keep_books(const std::string& packet, char* room) {
  const std::string_view item = "28,2,123456,1,1,3072000000,0,$,";
  orv::bounded_text grown{room, ORV_PACKET_MAX_TEXT};
  keep(orv::grow_packet(orv::parse_packet(std::string_view{packet}), {ORV_ITEM_HEAP_SIZE, item},
                        grown));
}

bool register_ticks(const std::string& size_name, size_t characters) {
  const std::string whole = "heap-tick/whole-" + size_name;
  const std::string packet = packet_of_size(characters);
  compare(whole, "heap-tick/bare-" + size_name, 1.15,
          [packet](row& row) { alternate_from(row, packet, tick, bare_tick); });
  compare("heap-tick/bookkeeping-" + size_name, whole, 0.03, [packet](row& row) {
    std::vector<char> room(ORV_PACKET_MAX_TEXT);
    alternate_from(
        row, packet, [&] { keep_books(packet, room.data()); }, tick);
  });
  return true;
}

const bool registered[] = {
    register_ticks("100B", 100),
    register_ticks("10KB", 10'000),
    register_ticks("79KB", 79'000),
};

}  // namespace
}  // namespace orv_bench
