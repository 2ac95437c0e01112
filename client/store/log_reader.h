// The agent's log: the platform's reader as a child process, and its lines.
#ifndef ORV_CLIENT_STORE_LOG_READER_H
#define ORV_CLIENT_STORE_LOG_READER_H

#include <glib.h>

#include <functional>
#include <string>

#include "../loop.h"

namespace orv_client::store {

// Lives on the default context's thread. `on_end` comes last and once, never within the
// constructor, and may destroy the reader.
class log_reader {
 public:
  struct end {
    bool ran;             // false: the reader could not be started
    std::string message;  // one line, empty when all went well
  };
  using line_fn = std::function<void(const char* line)>;
  using end_fn = std::function<void(const end&)>;

  // `follow`: until it is stopped, and not only what the log holds.
  log_reader(bool follow, line_fn on_line, end_fn on_end);
  log_reader(const log_reader&) = delete;
  log_reader& operator=(const log_reader&) = delete;
  // Ends the child; reports nothing any more.
  ~log_reader();

  // `on_end` follows when the main context runs next.
  void stop();
  // Calls it before this returns, unless it was called.
  void finish();

 private:
  void start(bool follow);
  void read_output();
  void report_lines();
  void end_child();

  line_fn on_line_;
  end_fn on_end_;
  end end_{true, ""};
  GPid child_ = 0;
  int output_ = -1;
  source next_;  // output, or the end
  bool stopping_ = false;
  std::string unfinished_line_;
};

}  // namespace orv_client::store

#endif
