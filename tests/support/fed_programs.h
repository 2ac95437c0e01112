// Programs of the test's own, first in PATH: what the agent's shell commands find.
#ifndef ORV_TESTS_SUPPORT_FED_PROGRAMS_H
#define ORV_TESTS_SUPPORT_FED_PROGRAMS_H

#include <filesystem>
#include <string>
#include <vector>

namespace orv_test {

// A `ps` and a `cat` that print what they are fed, and note that they were run. Fed nothing, `cat`
// fails.
class fed_programs {
 public:
  fed_programs();
  fed_programs(const fed_programs&) = delete;
  fed_programs& operator=(const fed_programs&) = delete;
  ~fed_programs();

  void feed_ps(const std::string& listing) const;
  void feed_cat(const std::string& path, const std::string& text) const;
  // Run by `ps` when it has printed.
  void then_ps_runs(const std::string& script) const;

  // Nothing but a `ps` is found from now on, and it takes no notes: for many runs. The listing is a
  // printf format without quotes.
  void feed_ps_alone(const std::string& listing) const;

  // The command lines since the last call.
  [[nodiscard]] std::vector<std::string> take_commands() const;

 private:
  std::filesystem::path directory_;
  std::string old_path_;
};

}  // namespace orv_test

#endif
