// The answers to the three queries. What arrives is text; what is no such answer is empty.
#ifndef ORV_CLIENT_ANSWERS_H
#define ORV_CLIENT_ANSWERS_H

#include <stdint.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv_client {

struct identity {
  std::string category;
  std::string platform;
  std::string model;
  std::string board;
  std::string firmware;
  int32_t byte_order;
  std::string build_type;
  int32_t cis_no;
};

// Commas are not escaped: those beyond seven are taken for the firmware version's.
std::optional<identity> parse_identity(std::string_view text);

// The memory in bytes, modulo 2^32. The agent prints it signed.
std::optional<uint32_t> parse_memory(std::string_view text);

struct thread_stack {
  int32_t tid;
  std::string name;
  uint32_t size_bytes;  // 0, as the base, when the agent could not learn it
  uint32_t base;
};

struct thread_list {
  int32_t sampled;  // more than are listed when the answer had no room for all
  std::vector<thread_stack> threads;
};

// A thread may have any name, commas and separators included: a group ends at the first separator
// after two numbers that the next group or the end follows. Empty as well when more threads are
// listed than were sampled.
std::optional<thread_list> parse_threads(std::string_view text);

}  // namespace orv_client

#endif
