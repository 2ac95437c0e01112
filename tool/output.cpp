#include "output.h"

#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <unistd.h>

namespace orvctl {

struct output::sink {
  struct closer {
    void operator()(FILE* opened) const noexcept { fclose(opened); }
  };

  // After a call that sets errno when it fails.
  void remember(bool well) {
    if (!well && error == 0) {
      error = errno;
    }
  }

  std::unique_ptr<FILE, closer> file;  // null once it is closed
  std::string name;
  int error = 0;
};

const std::shared_ptr<output::sink>& output::standard() {
  static const auto made =
      std::make_shared<sink>(sink{std::unique_ptr<FILE, sink::closer>{stdout}, "standard output"});
  return made;
}

output::output() : sink_{standard()} {}

output::output(const std::string& path)
    : sink_{std::make_shared<sink>(
          sink{std::unique_ptr<FILE, sink::closer>{fopen(path.c_str(), "we")}, path})} {}

output::operator bool() const {
  return sink_->file != nullptr;
}

bool output::is_terminal() const {
  return isatty(fileno(sink_->file.get())) == 1;
}

const std::string& output::name() const {
  return sink_->name;
}

void output::write(const std::string& text) const {
  sink_->remember(fwrite(text.data(), 1, text.size(), sink_->file.get()) == text.size());
}

void output::print(const char* format, ...) const {
  va_list arguments;
  va_start(arguments, format);
  sink_->remember(vfprintf(sink_->file.get(), format, arguments) >= 0);
  va_end(arguments);
}

bool output::flush() const {
  sink_->remember(sink_->file == nullptr || fflush(sink_->file.get()) == 0);
  return sink_->error == 0;
}

int output::close() const {
  FILE* const opened = sink_->file.release();
  sink_->remember(opened == nullptr || fclose(opened) == 0);
  return sink_->error;
}

void hold_standard_descriptors() {
  // The lowest free number is taken. What is opened for reading cannot be written to.
  int taken = STDIN_FILENO;
  while (taken >= STDIN_FILENO && taken <= STDERR_FILENO) {
    taken = open("/dev/null", O_RDONLY);
  }
  if (taken > STDERR_FILENO) {
    ::close(taken);
  }
}

void remark(const std::string& text) {
  output{}.flush();  // where both are one file, what was printed before comes first
  fputs(text.c_str(), stderr);
}

void complain(const std::string& message) {
  remark("orvctl: " + message + "\n");
}

}  // namespace orvctl
