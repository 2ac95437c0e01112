// Other processes of a test.
#ifndef ORV_TESTS_SUPPORT_PROCESS_H
#define ORV_TESTS_SUPPORT_PROCESS_H

#include <sys/types.h>

#include <functional>
#include <istream>
#include <string>
#include <vector>

namespace orv_test {

struct outcome {
  int status;  // exit status, or 128 and the signal's number
  std::string out;
  std::string err;
};

// Runs a program of PATH to its end.
outcome run(const std::vector<std::string>& words);

// A process that is killed, if it still runs, when this goes.
class background {
 public:
  // A program of PATH; its output joins the test's.
  explicit background(const std::vector<std::string>& words);
  // A fork of the test that runs `body` and exits with what it returns.
  explicit background(const std::function<int()>& body);
  background(const background&) = delete;
  background& operator=(const background&) = delete;
  ~background();

  [[nodiscard]] pid_t pid() const { return pid_; }
  void signal(int number) const;
  // The exit status as in outcome; -1 when it is still running after the deadline.
  int wait(int deadline_ms = 5000);

 private:
  pid_t pid_;
};

std::vector<std::string> lines_of(std::istream&& from);

// How many descriptors this process has open.
long count_descriptors();

// Looks again every few milliseconds; tells whether the condition came true before the deadline.
bool eventually(const std::function<bool()>& condition, int deadline_ms = 5000);

}  // namespace orv_test

#endif
