// The grammar of a monitor packet.
#ifndef ORV_TESTS_SUPPORT_PACKET_CHECK_H
#define ORV_TESTS_SUPPORT_PACKET_CHECK_H

#include <string>

namespace orv_test {

// Has the tool parse the packet from start to end: a header, then whole items of known kinds, each
// of its own size, and nothing else; the total is four times the numbers. Empty when all that
// holds, otherwise what does not.
std::string packet_fault(const std::string& packet);

// The packet with "T" for the time in every item, to be compared.
std::string without_times(const std::string& packet);

}  // namespace orv_test

#endif
