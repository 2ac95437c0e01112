// The monitor packet: one text in the result data key, which every tick writes back longer by its
// items. A header of 848 and the total count, then the items; every field is followed by a comma.
#ifndef ORV_MONITOR_PACKET_H
#define ORV_MONITOR_PACKET_H

#include <stdint.h>

#include <string_view>

#include "common/bounded_text.h"
#include "common/handle.h"

namespace orv {

struct packet {
  int32_t total_count;
  std::string_view payload;  // all items, in the text that was parsed
};

// The items of one tick; their text may come in two parts.
struct tick_items {
  int32_t size_bytes;  // as the total counts them: four for each number
  std::string_view first;
  std::string_view rest = {};
};

// The result data key's text; null when it cannot be read.
owned_text read_packet();

// What is no packet, another command's answer say, counts as an empty key.
packet parse_packet(std::string_view text);

// Copies the text, cut to `size`, and parses it: in the copy, or where it is when it was cut. An
// empty text or null leaves the copy as it was.
packet copy_packet(const owned_text& text, char* copy, size_t size);

// Builds in `grown`, which is empty and has room for a packet, the old packet with the items after
// it. False, and one error line, when they do not fit: the key is then to keep its packet.
// g_packet_data gets the total of the packet that the key is to hold.
bool grow_packet(const packet& old, const tick_items& items, bounded_text& grown);

// What a tick writes back when its items were dropped: the key's text as it is now, so that a key
// that was emptied meanwhile stays empty. It replaces `text`, unless it cannot be read.
const char* reread_packet(owned_text& text);

// Ends a tick: writes the packet and the result, also when the packet did not grow. A tool
// distinguishes ticks from answers by the packet that comes before the result.
void answer_tick(const char* packet);

}  // namespace orv

#endif
