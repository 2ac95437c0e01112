// Items of a packet as text, each ending in a newline.
#ifndef ORV_TOOL_ITEM_TEXT_H
#define ORV_TOOL_ITEM_TEXT_H

#include <string>

#include "packet_items.h"

namespace orvctl {

// One line to read.
std::string to_line(const packet_item& item);

// One JSON object on one line.
std::string to_json(const packet_item& item);

// A row, or of a stack item a row for each thread.
extern const char csv_head[];
std::string to_csv(const packet_item& item);

}  // namespace orvctl

#endif
