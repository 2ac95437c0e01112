#include "output.h"

#include <stdarg.h>
#include <unistd.h>

namespace orvctl {

bool output::is_terminal() const {
  return isatty(fileno(file_.get())) == 1;
}

void output::write(const std::string& text) const {
  fwrite(text.data(), 1, text.size(), file_.get());
}

void output::print(const char* format, ...) const {
  va_list arguments;
  va_start(arguments, format);
  vfprintf(file_.get(), format, arguments);
  va_end(arguments);
}

bool output::flush() const {
  return fflush(file_.get()) == 0 && ferror(file_.get()) == 0;
}

void complain(const std::string& message) {
  fflush(stdout);  // where both are one file, what was printed before comes first
  fputs(("orvctl: " + message + "\n").c_str(), stderr);
}

}  // namespace orvctl
