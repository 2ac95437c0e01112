// The text of the kernel's memory summary: lines of a name, a colon and a number in kB.
#ifndef ORV_COMMON_MEMINFO_TEXT_H
#define ORV_COMMON_MEMINFO_TEXT_H

struct meminfo_row;

namespace orv {

// Stores the values of the fields that stand in the table, which is sorted by name, and
// empties `text`: it yields its values once.
void take_meminfo(char* text, const meminfo_row* table, int count) noexcept;

}  // namespace orv

#endif
