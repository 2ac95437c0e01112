// Who may do what with the monitors and their packet, among the tools on a store.
//
// The packet stands in the key that queries answer in, so a query wipes it. A watch therefore holds
// the packet, and a query waits until the watch lends it. Only one watch has the monitors, and
// while it has them no other tool starts or stops one. All rights end with their tool, killed or
// not.
#ifndef ORV_TOOL_PACKET_RIGHT_H
#define ORV_TOOL_PACKET_RIGHT_H

#include <chrono>
#include <string>

namespace orvctl {

class packet_right {
 public:
  explicit packet_right(const std::string& store);
  packet_right(const packet_right&) = delete;
  packet_right& operator=(const packet_right&) = delete;
  ~packet_right();

  // False when the store does not take the file that the rights are locks on.
  [[nodiscard]] bool usable() const { return fd_ >= 0; }

  // Each tells whether it got the right in time.
  [[nodiscard]] bool take_monitors(std::chrono::milliseconds patience) const;
  [[nodiscard]] bool share_monitors() const;  // at once, and beside others that share
  [[nodiscard]] bool take_packet(std::chrono::milliseconds patience) const;

  // Whether another tool waits for the packet.
  [[nodiscard]] bool packet_wanted() const;
  // Gives the packet away until nobody wants it any more; with a crowd, for `at_most`.
  [[nodiscard]] bool lend_packet(std::chrono::milliseconds at_most,
                                 std::chrono::milliseconds patience) const;

 private:
  int fd_;
};

}  // namespace orvctl

#endif
