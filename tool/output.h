// Where the tool's words go. All that it prints on standard output or into a file goes through
// here.
#ifndef ORV_TOOL_OUTPUT_H
#define ORV_TOOL_OUTPUT_H

#include <stdio.h>

#include <memory>
#include <string>

namespace orvctl {

class output {
 public:
  output() : file_{stdout} {}
  // A file, made anew. When it cannot be, this is false and errno says why.
  explicit output(const std::string& path) : file_{fopen(path.c_str(), "we")} {}

  explicit operator bool() const { return file_ != nullptr; }
  [[nodiscard]] bool is_terminal() const;

  void write(const std::string& text) const;
  __attribute__((format(printf, 2, 3))) void print(const char* format, ...) const;
  // False when something that was printed is lost.
  [[nodiscard]] bool flush() const;

 private:
  struct closer {
    void operator()(FILE* file) const noexcept {
      if (file != stdout) {
        fclose(file);
      }
    }
  };
  std::unique_ptr<FILE, closer> file_;
};

// A line on standard error, after the program's name.
void complain(const std::string& message);

}  // namespace orvctl

#endif
