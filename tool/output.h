// Where the tool's words go. All that it prints on standard output or into a file goes through
// here.
#ifndef ORV_TOOL_OUTPUT_H
#define ORV_TOOL_OUTPUT_H

#include <memory>
#include <string>

namespace orvctl {

// Copies share what they write to. The errno of the first write that fails is remembered.
class output {
 public:
  // Standard output: one for the whole process.
  output();
  // A file, made anew. When it cannot be, this is false and errno says why.
  explicit output(const std::string& path);

  explicit operator bool() const;
  [[nodiscard]] bool is_terminal() const;
  [[nodiscard]] const std::string& name() const;

  void write(const std::string& text) const;
  __attribute__((format(printf, 2, 3))) void print(const char* format, ...) const;
  // False when something that was printed is lost.
  bool flush() const;
  // Nothing can be written after this. The errno of what is lost, or 0.
  [[nodiscard]] int close() const;

 private:
  struct sink;
  static const std::shared_ptr<sink>& standard();

  std::shared_ptr<sink> sink_;
};

// Opens those of the descriptors 0 to 2 that the program was started without, so that no other file
// gets their numbers. Such a standard output takes nothing.
void hold_standard_descriptors();

// Text on standard error as it is, after all that was printed on standard output.
void remark(const std::string& text);

// A line on standard error, after the program's name.
void complain(const std::string& message);

}  // namespace orvctl

#endif
