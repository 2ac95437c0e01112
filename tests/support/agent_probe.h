// What a unit test sees of the agent: its log, its writes to the store, and faults of the platform
// that cannot be brought about for real.
//
// The store behind it is the real stand-in on a root of the test process's own. Calls of the
// platform that the agent's objects make are wrapped at link time (see orv_add_agent_test). Every
// monitor packet that the agent writes is checked.
#ifndef ORV_TESTS_SUPPORT_AGENT_PROBE_H
#define ORV_TESTS_SUPPORT_AGENT_PROBE_H

#include <gtest/gtest.h>
#include <orv/command.h>
#include <orv/protocol.h>

#include <string>
#include <vector>

#include "main_loop.h"

namespace orv_test {

struct log_record {
  int log_id;
  int priority;
  std::string tag;
  std::string file;
  std::string function;
  std::string line;  // as handed to the system log, colours and all
};

// The records since the last call.
std::vector<log_record> take_log();

// The same, a record a text: "I " or "E ", then the message without colour and reset sequence.
std::vector<std::string> take_messages();

// The records of one source file alone, as "function|message".
std::vector<std::string> take_messages_of(const std::string& file);

// The agent's writes since the last call, as "key=value", in order.
std::vector<std::string> take_writes();

enum class fault { read, notify };

// From now on the agent's calls of this kind for this key answer with `result` (a text: null).
void fail(fault kind, const std::string& key, int result = -1);

// Another process empties this text right after the agent has next read it.
void empty_after_read(const std::string& key);

// Values of the store, read and written past the probe. A missing text is "(none)".
std::string text_at(const char* key);
int int_at(const char* key);
void put(const char* key, const char* text);
void put(const char* key, int number);

// What a query's handler answers.
std::string answer_of(void (*handler)(orv_command*, const char*));

// Starts with an empty store, an empty log, no faults.
class AgentTest : public ::testing::Test {
 protected:
  void SetUp() override;
};

}  // namespace orv_test

#endif
