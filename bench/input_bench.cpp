// Injection and the look at the camera application, beside the bare calls that they cannot do
// without and beside the tools that one would take otherwise.

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <dirent.h>
#include <fcntl.h>
#include <libproc2/pids.h>
#include <orv/health.h>
#include <orv/protocol.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

#include "child_process.h"
#include "command_client.h"
#include "handler/injection.h"
#include "ratio_table.h"
#include "serving_process.h"

namespace orv_bench {
namespace {

constexpr char key_name[] = "KEY_MENU";
constexpr int keycode = 135;
constexpr char keycode_text[] = "135";
constexpr char application[] = "lumen-ui-host";

void tap_key_by_xlib() {
  Display* display = XOpenDisplay(nullptr);
  require(display != nullptr, "no display");
  XTestFakeKeyEvent(display, keycode, True, CurrentTime);
  XTestFakeKeyEvent(display, keycode, False, CurrentTime);
  XCloseDisplay(display);
}

void key_tap(row& row) {
  row.alternate([] { require(orv::inject_key_tap(keycode), "the tap failed"); }, tap_key_by_xlib);
}

void virtual_key_command(row& row) {
  const crowd others{130};
  const serving_process host{"agent"};
  command_client client{agent_keys};
  const orv_command tap{ORV_EVENT_VIRTUAL_KEY, 2, 0, 0, ORV_COMMAND_EVENT};
  row.alternate(
      [&] { require(client.run(tap, key_name) == ORV_RESULT_OK, "the agent's verdict is not 0"); },
      [] {
        require(run_program({"xdotool", "key", "--delay", "0", keycode_text}) == 0,
                "xdotool failed");
      });
}

void scan_bare() {
  char path[300];
  char text[512];
  DIR* processes = opendir("/proc");
  while (const dirent* entry = readdir(processes)) {
    stpcpy(stpcpy(stpcpy(path, "/proc/"), entry->d_name), "/stat");
    if (access(path, F_OK) != 0 || entry->d_name[0] < '0' || entry->d_name[0] > '9') {
      continue;
    }
    const int stat = open(path, O_RDONLY | O_CLOEXEC);
    keep(read(stat, text, sizeof text));
    close(stat);
  }
  closedir(processes);
}

void scan_by_libproc2() {
  pids_item items[] = {PIDS_ID_PID, PIDS_CMD};
  pids_info* info = nullptr;
  require(procps_pids_new(&info, items, 2) == 0, "procps_pids_new failed");
  const pids_fetch* all = procps_pids_reap(info, PIDS_FETCH_TASKS_ONLY);
  const bool found = std::any_of(
      all->stacks, all->stacks + all->counts->total,
      [&](pids_stack* one) { return strcmp(PIDS_VAL(1, str, one, info), application) == 0; });
  procps_pids_unref(&info);
  require(found, "the application was not found");
}

void scan_by_pgrep() {
  require(run_program({"pgrep", "-x", application}) == 0, "pgrep failed");
}

const bool registered[] = {
    compare("input/key-tap", "input/bare-xlib-tap", 1.05, key_tap),
    compare("input/virtual-key-command", "input/xdotool-key", 0.35, virtual_key_command),
};

bool register_scans(int processes) {
  const auto add = [processes](const char* against, double at_most, void (*scan)()) {
    const std::string size = "-" + std::to_string(processes);
    compare("health/check" + size, against + size, at_most, [processes, scan](row& row) {
      const crowd others{processes};
      row.alternate([] { require(check_failed() == 1, "the check did not find the application"); },
                    scan);
    });
  };
  add("health/bare-scan", 1.05, scan_bare);
  add("health/libproc2", 0.5, scan_by_libproc2);
  add("health/pgrep", 1.0 / 6, scan_by_pgrep);
  return true;
}

const bool registered_scans[] = {register_scans(50), register_scans(500), register_scans(3000)};

}  // namespace
}  // namespace orv_bench
