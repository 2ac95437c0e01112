// What is new in a growing monitor packet.
//
// The packet only grows at its end, so an item is known by its place: what the packet held when it
// was last looked at has been taken. A packet that does not begin with that was begun anew by
// somebody else, and what it held unseen is lost.
#ifndef ORV_CLIENT_STORE_PACKET_FOLLOWER_H
#define ORV_CLIENT_STORE_PACKET_FOLLOWER_H

#include <string>
#include <string_view>
#include <vector>

#include "packet_items.h"

namespace orv_client::store {

class packet_follower {
 public:
  struct news {
    std::vector<packet_item> items;
    bool begun_anew = false;
    bool garbled = false;  // what is new is no whole items; it is passed over
  };

  // `text` is what the key holds now.
  news look(std::string_view text);

  // All was taken and the key emptied: the next packet may begin with anything.
  void emptied() { taken_.clear(); }

 private:
  std::string taken_;  // without the header
};

}  // namespace orv_client::store

#endif
