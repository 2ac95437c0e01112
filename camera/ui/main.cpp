// lumen-ui-host: the camera application of the simulated camera.

#include "../command_line.h"  // first: X.h has macros that break it

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <ctime>

#include "camera_state.h"
#include "input_log.h"
#include "paint.h"
#include "screen.h"
#include "window.h"
#include "worker_threads.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using std::chrono::steady_clock;
using std::chrono::system_clock;

constexpr milliseconds frame_interval = 33ms;

struct options {
  std::string hang_thread;
  double exit_after_s = 0;  // 0: never
  int ready_fd = -1;
};

struct application {
  window shown;
  scene view = paint_scene();
  handle<cairo_surface_t> canvas{
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, screen_width, screen_height)};
  camera_state camera = new_camera();
  input_log input{};
  bool changed = true;
};

std::string check_thread_name(const std::string& name) {
  return is_worker_thread(name) ? "" : "no thread is called " + name;
}

void define_options(CLI::App& parser, options& chosen) {
  parser.description(
      "The camera application of the simulated camera: fills an X display of 800x480 with a\n"
      "camera's live view and shows on it the keys and touches that arrive.");
  parser
      .add_option("--hang-thread", chosen.hang_thread,
                  "let this thread hang: it shows state D, uninterruptible (AeMain, say;\n"
                  "names as in /proc/PID/task/TID/comm)")
      ->check(check_thread_name, "")
      ->option_text("NAME");
  parser.add_option("--exit-after", chosen.exit_after_s, "end with status 0 after so long")
      ->check(CLI::PositiveNumber)
      ->option_text("SECONDS");
  parser
      .add_option("--ready-fd", chosen.ready_fd,
                  "write a line to this descriptor and close it once the window shows")
      ->check(CLI::NonNegativeNumber)
      ->option_text("FD");
  parser.footer(
      "The window's property _ORV_LAST_INPUT says what arrived, as text:\n"
      "  xprop -name lumen-ui-host _ORV_LAST_INPUT\n"
      "Exit status 1, and one line on standard error, when the X server is not there or goes.");
}

void apply(application& app, const arrival& news) {
  switch (news.kind) {
    case arrival_kind::key_down:
    case arrival_kind::key_up: {
      const bool down = news.kind == arrival_kind::key_down;
      if (!(down ? press_key : release_key)(app.input, news.keycode)) return;
      apply_key(app.camera, news.keycode, down, steady_clock::now());
      break;
    }
    case arrival_kind::touch_down:
      press_touch(app.input, news.at);
      break;
    case arrival_kind::touch_move:
      move_touch(app.input, news.at);
      break;
    case arrival_kind::touch_up:
      release_touch(app.input, news.at);
      break;
    case arrival_kind::exposed:
      break;
    case arrival_kind::other:
      return;
  }
  app.changed = true;
}

std::string clock_text() {
  const time_t now = system_clock::to_time_t(system_clock::now());
  tm local{};
  localtime_r(&now, &local);
  char text[16];
  strftime(text, sizeof text, "%H:%M:%S", &local);
  return text;
}

void redraw(application& app) {
  const handle<cairo_t> context{cairo_create(app.canvas.get())};
  draw_frame(context.get(), {app.view, app.camera, app.input, clock_text(), steady_clock::now()});
  show_picture(app.shown, app.canvas.get());
}

void take_arrivals(application& app) {
  const unsigned long events_before = app.input.events;
  while (XPending(app.shown.display.get()) > 0) apply(app, next_arrival(app.shown));
  if (app.input.events != events_before) publish_input(app.shown, describe(app.input));
}

milliseconds until_next_second() {
  const auto now = system_clock::now().time_since_epoch();
  return std::chrono::ceil<milliseconds>(1s - now % 1s);
}

void wait_for_arrivals(const application& app, milliseconds longest) {
  pollfd connection{ConnectionNumber(app.shown.display.get()), POLLIN, 0};
  poll(&connection, 1, static_cast<int>(std::max(longest, 0ms).count()));
}

// Input is taken as it comes, the picture follows at most 30 times a second.
void run_until(application& app, steady_clock::time_point end) {
  auto next_frame = steady_clock::now();
  auto next_second = next_frame;
  for (auto now = next_frame; now < end; now = steady_clock::now()) {
    take_arrivals(app);
    if (now >= next_second) {
      app.changed = true;
      next_second = now + until_next_second();
    }
    if (app.changed && now >= next_frame) {
      redraw(app);
      app.changed = false;
      next_frame = now + frame_interval;
    }
    const auto wake = std::min({end, next_second, app.changed ? next_frame : next_second});
    wait_for_arrivals(app, std::chrono::ceil<milliseconds>(wake - steady_clock::now()));
  }
}

steady_clock::time_point end_time(double exit_after_s) {
  if (exit_after_s == 0) return steady_clock::time_point::max();
  return steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                   std::chrono::duration<double>(exit_after_s));
}

// The window must have been exposed, that is mapped, before it shows anything.
void show_first_picture(application& app) {
  while (next_arrival(app.shown).kind != arrival_kind::exposed) {
  }
  app.input.held = keys_down(app.shown.display.get());
  publish_input(app.shown, describe(app.input));
  redraw(app);
  XSync(app.shown.display.get(), False);
}

void tell_ready(int fd) {
  if (fd < 0) return;
  if (write(fd, "ready\n", 6) != 6) perror("lumen-ui-host: --ready-fd");
  close(fd);
}

}  // namespace

int main(int argc, char** argv) try {
  options chosen;
  CLI::App parser{"", "lumen-ui-host"};
  define_options(parser, chosen);
  if (const auto status = read_command_line(parser, argc, argv)) return *status;

  start_worker_threads(chosen.hang_thread);
  application app{show_window()};
  show_first_picture(app);
  tell_ready(chosen.ready_fd);
  run_until(app, end_time(chosen.exit_after_s));
  return 0;
} catch (const std::exception& error) {
  fprintf(stderr, "lumen-ui-host: %s\n", error.what());
  return 1;
}
