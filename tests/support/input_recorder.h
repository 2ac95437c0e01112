// What reaches an X server's devices, seen by another client of it.
#ifndef ORV_TESTS_SUPPORT_INPUT_RECORDER_H
#define ORV_TESTS_SUPPORT_INPUT_RECORDER_H

#include <X11/Xlib.h>
#include <X11/extensions/record.h>

#include <memory>
#include <string>
#include <vector>

namespace orv_test {

struct display_closer {
  void operator()(Display* display) const { XCloseDisplay(display); }
};
using client = std::unique_ptr<Display, display_closer>;

class input_recorder {
 public:
  // Of the display of the environment.
  input_recorder();
  input_recorder(const input_recorder&) = delete;
  input_recorder& operator=(const input_recorder&) = delete;
  ~input_recorder();

  // What has happened since the last call, in order: "press 104", "release 104", "move 100,200",
  // "button 1 down", "button 1 up".
  std::vector<std::string> take();

  // "100,200 up", "100,200 down": where the pointer is, and button 1.
  [[nodiscard]] std::string pointer() const;

 private:
  static void received(XPointer self, XRecordInterceptData* data);
  void note(const unsigned char* event);

  client control_;
  client data_;
  XRecordContext context_ = 0;
  std::vector<std::string> seen_;
  bool fence_seen_ = false;
};

}  // namespace orv_test

#endif
