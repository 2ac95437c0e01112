// A program started by a test, ended and reaped with its handle.
#pragma once

#include <string>
#include <vector>

class child_program {
 public:
  // Returns when the program has written a line to descriptor 3, or has closed it.
  explicit child_program(const std::vector<std::string>& arguments);
  ~child_program();
  child_program(const child_program&) = delete;
  child_program& operator=(const child_program&) = delete;

  int pid() const { return pid_; }
  const std::string& first_line() const { return first_line_; }

  // Waits for its end, at most ten seconds: the exit status, or -1.
  int exit_status();
  // What it has written to standard error; after its end.
  std::string errors() const;

 private:
  int pid_ = -1;
  bool ended_ = false;
  std::string first_line_;
  int errors_fd_ = -1;
};
