// The test tool's side of a command, as little of it as there can be.
#ifndef ORV_BENCH_COMMAND_CLIENT_H
#define ORV_BENCH_COMMAND_CLIENT_H

#include <orv/command.h>

#include <string>

namespace orv_bench {

// The agent's keys, or others of the same lengths.
struct key_set {
  const char* parameters[4];
  const char* data;
  const char* command;
  const char* result_data;
  const char* result;
};

extern const key_set agent_keys;

// Sends commands and sees their answers through the store. The keys outlive it.
class command_client {
 public:
  explicit command_client(const key_set& keys);
  command_client(const command_client&) = delete;
  command_client& operator=(const command_client&) = delete;
  ~command_client();

  // Writes the six keys and waits for the answer. Returns the result.
  int run(const orv_command& command, const char* data);

  [[nodiscard]] std::string result_data() const;

 private:
  const key_set& keys_;
  bool answered_ = false;
};

}  // namespace orv_bench

#endif
