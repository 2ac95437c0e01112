// The agent's log: the platform's reader as a child process, and its lines.
#ifndef ORV_CLIENT_STORE_LOG_READER_H
#define ORV_CLIENT_STORE_LOG_READER_H

#include <glib.h>

#include <memory>
#include <string>

#include "../carrier.h"
#include "../ending.h"
#include "../loop.h"

namespace orv_client::store {

// Keeps itself until it has reported its end or is cancelled, which may be within a report.
class log_reader {
 public:
  // `follow`: until it is stopped, and not only what the log holds.
  static log_reader* start(bool follow, carried_line_fn on_line, void* user_data);
  log_reader(const log_reader&) = delete;
  log_reader& operator=(const log_reader&) = delete;
  ~log_reader();

  void stop();
  void cancel();

 private:
  log_reader(carried_line_fn on_line, void* user_data) : on_line_{on_line}, user_data_{user_data} {}

  void start_child(bool follow);
  void read_output();
  void report_lines();
  void report_line(const std::string& line) const;
  void end_soon();
  void end_child();
  void end();

  carried_line_fn on_line_;
  void* user_data_;
  std::shared_ptr<log_reader> self_;
  GPid child_ = 0;
  int output_ = -1;
  source next_;  // the child's output, or the end
  bool stopped_ = false;
  std::string unfinished_line_;
  ending how_;
};

}  // namespace orv_client::store

#endif
