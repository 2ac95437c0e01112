// Injection and the look at the camera application, beside the bare calls that they cannot do
// without and beside the tools that one would take otherwise.

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <benchmark/benchmark.h>
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
constexpr int slow_crowd = 1000;

void tap_key(benchmark::State& state) {
  for (auto _ : state) {
    if (!orv::inject_key_tap(keycode)) {
      state.SkipWithError("the tap failed");
      break;
    }
  }
}

void tap_key_by_xlib(benchmark::State& state) {
  for (auto _ : state) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
      state.SkipWithError("no display");
      break;
    }
    XTestFakeKeyEvent(display, keycode, True, CurrentTime);
    XTestFakeKeyEvent(display, keycode, False, CurrentTime);
    XCloseDisplay(display);
  }
}

void send_virtual_key(benchmark::State& state) {
  const crowd others{130};
  const serving_process host{"agent"};
  command_client client{agent_keys};
  const orv_command tap{ORV_EVENT_VIRTUAL_KEY, 2, 0, 0, ORV_COMMAND_EVENT};
  for (auto _ : state) {
    if (client.run(tap, key_name) != ORV_RESULT_OK) {
      state.SkipWithError("the agent's verdict is not 0");
      break;
    }
  }
}

void send_key_by_xdotool(benchmark::State& state) {
  const crowd others{130};
  for (auto _ : state) {
    if (run_program({"xdotool", "key", "--delay", "0", keycode_text}) != 0) {
      state.SkipWithError("xdotool failed");
      break;
    }
  }
}

void check_application(benchmark::State& state) {
  const crowd others{static_cast<int>(state.range(0))};
  for (auto _ : state) {
    if (check_failed() != 1) {
      state.SkipWithError("the check did not find the application");
      break;
    }
  }
}

void scan_bare(benchmark::State& state) {
  const crowd others{static_cast<int>(state.range(0))};
  char path[300];
  char text[512];
  for (auto _ : state) {
    DIR* processes = opendir("/proc");
    while (const dirent* entry = readdir(processes)) {
      if (entry->d_name[0] < '0' || entry->d_name[0] > '9') {
        continue;
      }
      stpcpy(stpcpy(stpcpy(path, "/proc/"), entry->d_name), "/stat");
      const int stat = open(path, O_RDONLY | O_CLOEXEC);
      benchmark::DoNotOptimize(read(stat, text, sizeof text));
      close(stat);
    }
    closedir(processes);
  }
}

void scan_by_libproc2(benchmark::State& state) {
  const crowd others{static_cast<int>(state.range(0))};
  pids_item items[] = {PIDS_ID_PID, PIDS_CMD};
  bool found = true;
  for (auto _ : state) {
    pids_info* info = nullptr;
    if (procps_pids_new(&info, items, 2) != 0) {
      state.SkipWithError("procps_pids_new failed");
      break;
    }
    const pids_fetch* all = procps_pids_reap(info, PIDS_FETCH_TASKS_ONLY);
    found =
        found && std::any_of(all->stacks, all->stacks + all->counts->total, [&](pids_stack* one) {
          return strcmp(PIDS_VAL(1, str, one, info), application) == 0;
        });
    procps_pids_unref(&info);
  }
  if (!found) {
    state.SkipWithError("the application was not found");
  }
}

void scan_by_pgrep(benchmark::State& state) {
  const crowd others{static_cast<int>(state.range(0))};
  for (auto _ : state) {
    if (run_program({"pgrep", "-x", application}) != 0) {
      state.SkipWithError("pgrep failed");
      break;
    }
  }
}

BENCHMARK(tap_key)->Name("input/key-tap")->UseRealTime();
BENCHMARK(tap_key_by_xlib)->Name("input/bare-xlib-tap")->UseRealTime();
BENCHMARK(send_virtual_key)->Name("input/virtual-key-command")->UseRealTime();
BENCHMARK(send_key_by_xdotool)->Name("input/xdotool-key")->UseRealTime();

const bool wanted[] = {
    want("input/key-tap", "input/bare-xlib-tap", 1.05),
    want("input/virtual-key-command", "input/xdotool-key", 0.35),
};

bool register_scans(int processes) {
  const auto add = [processes](const char* name, void (*body)(benchmark::State&)) {
    std::string full_name = name + std::string{"-"} + std::to_string(processes);
    auto* added = benchmark::RegisterBenchmark(full_name.c_str(), body);
    added->Arg(processes)->UseRealTime();
    if (processes >= slow_crowd) {
      added->Iterations(1);  // the crowd is made for each run
    }
    return full_name;
  };
  const std::string check = add("health/check", check_application);
  want(check, add("health/bare-scan", scan_bare), 1.05);
  want(check, add("health/libproc2", scan_by_libproc2), 0.5);
  want(check, add("health/pgrep", scan_by_pgrep), 1.0 / 6);
  return true;
}

const bool registered[] = {register_scans(50), register_scans(500), register_scans(3000)};

}  // namespace
}  // namespace orv_bench
