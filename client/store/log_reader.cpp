#include "log_reader.h"

#include <errno.h>
#include <glib-unix.h>
#include <orv/protocol.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <memory>
#include <utility>

namespace orv_client::store {
namespace {

constexpr char agent_tag[] = "ORV";

struct error_freer {
  void operator()(GError* error) const noexcept { g_error_free(error); }
};

// An interrupt from the terminal is for the program, which then stops its reader.
void leave_process_group(void* /*unused*/) {
  setpgid(0, 0);
}

std::string failure_of(const GError& error) {
  const bool missing = g_error_matches(&error, G_SPAWN_ERROR, G_SPAWN_ERROR_NOENT) != FALSE;
  const std::string reason = missing ? g_strerror(ENOENT) : error.message;
  return "cannot run dlogutil, the log's reader: " + reason + "; is it in PATH?";
}

std::string failure_of(int status) {
  if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
    return "dlogutil, the log's reader, ended with status " + std::to_string(WEXITSTATUS(status));
  }
  if (WIFSIGNALED(status) && WTERMSIG(status) != SIGKILL) {
    return "dlogutil, the log's reader, was ended by signal " + std::to_string(WTERMSIG(status));
  }
  return "";
}

// A program's signal handlers may interrupt the wait.
bool await_end(GPid child, int& status) {
  pid_t ended = -1;
  do {
    ended = waitpid(child, &status, 0);
  } while (ended < 0 && errno == EINTR);
  return ended == child;
}

}  // namespace

log_reader* log_reader::start(bool follow, carried_line_fn on_line, void* user_data) {
  const std::shared_ptr<log_reader> made{new log_reader{on_line, user_data}};
  made->start_child(follow);
  made->self_ = made;
  return made.get();
}

log_reader::~log_reader() {
  end_child();
}

void log_reader::start_child(bool follow) {
  const char* words[] = {"dlogutil", follow ? agent_tag : "-d", follow ? nullptr : agent_tag,
                         nullptr};
  constexpr auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD);
  GError* error = nullptr;
  if (g_spawn_async_with_pipes(nullptr, const_cast<char**>(words), nullptr, flags,
                               leave_process_group, nullptr, &child_, nullptr, &output_, nullptr,
                               &error) == FALSE) {
    const std::unique_ptr<GError, error_freer> owned{error};
    how_ = not_run(ORV_WHY_NO_LOG, failure_of(*error));
    end_soon();
    return;
  }
  g_unix_set_fd_nonblocking(output_, TRUE, nullptr);
  next_ = source::when_readable(output_, [this] {
    const std::shared_ptr<log_reader> alive = self_;
    read_output();
  });
}

void log_reader::stop() {
  stopped_ = true;
  end_soon();
}

void log_reader::cancel() {
  stopped_ = true;
  on_line_ = nullptr;
  next_.cancel();
  self_.reset();
}

void log_reader::read_output() {
  char text[16384];
  const ssize_t size = read(output_, text, sizeof text);
  if (size > 0) {
    unfinished_line_.append(text, static_cast<size_t>(size));
    report_lines();
  } else if (size == 0 || (errno != EAGAIN && errno != EINTR)) {
    if (!unfinished_line_.empty()) {
      report_line(std::exchange(unfinished_line_, ""));
    }
    end_soon();
  }
}

void log_reader::report_lines() {
  const std::string text = std::exchange(unfinished_line_, "");
  size_t start = 0;
  for (size_t newline; !stopped_ && (newline = text.find('\n', start)) != std::string::npos;) {
    report_line(text.substr(start, newline - start));
    start = newline + 1;
  }
  unfinished_line_ = text.substr(start);
}

void log_reader::report_line(const std::string& line) const {
  on_line_(line.c_str(), nullptr, user_data_);
}

void log_reader::end_soon() {
  if (on_line_ != nullptr) {
    next_ = source::after(milliseconds::zero(), [this] { end(); });
  }
}

// A child that has closed its output has no more to do, and ends by itself or now.
void log_reader::end_child() {
  if (const GPid child = std::exchange(child_, 0); child != 0) {
    close(output_);
    kill(child, SIGKILL);
    int status = 0;
    if (await_end(child, status)) {
      how_.message = failure_of(status);
      how_.result = how_.message.empty() ? ORV_RESULT_OK : ORV_RESULT_FAILED;
    }
  }
}

void log_reader::end() {
  const std::shared_ptr<log_reader> alive = std::move(self_);
  next_.cancel();
  end_child();
  const orv_reply reply = how_.view();
  std::exchange(on_line_, nullptr)(nullptr, &reply, user_data_);
}

}  // namespace orv_client::store
