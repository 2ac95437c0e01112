// The machine's processes, told by their stat text.
#ifndef ORV_HANDLER_PROCESS_SCAN_H
#define ORV_HANDLER_PROCESS_SCAN_H

#include <string_view>

#include "common/handle.h"

namespace orv {

// One pass over /proc; allocates nothing but the directory's handle.
class process_scan {
 public:
  process_scan() noexcept;

  // False when /proc cannot be listed.
  explicit operator bool() const noexcept { return processes_ != nullptr; }

  // The id of the next process whose stat text contains this one within its first 512 bytes, valid
  // until the next call; null after the last.
  const char* next_with(std::string_view text) noexcept;

 private:
  handle<DIR> processes_;
};

}  // namespace orv

#endif
