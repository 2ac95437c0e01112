// One tool at a time on a store: two would take each other's answers.
#ifndef ORV_TOOL_TOOL_LOCK_H
#define ORV_TOOL_TOOL_LOCK_H

#include <chrono>
#include <string>

namespace orvctl {

class tool_lock {
 public:
  // Waits until no other tool is in an exchange, `patience` at most.
  tool_lock(const std::string& store, std::chrono::milliseconds patience);
  tool_lock(const tool_lock&) = delete;
  tool_lock& operator=(const tool_lock&) = delete;
  ~tool_lock();

  [[nodiscard]] bool held() const { return held_; }

  // Whether a command was sent whose answer nobody has seen: it may still come. The mark stays in
  // the store, so it outlives a tool that gave up or was killed.
  [[nodiscard]] bool answer_outstanding() const;
  void set_answer_outstanding(bool outstanding) const;

 private:
  int fd_;
  bool held_;
};

}  // namespace orvctl

#endif
