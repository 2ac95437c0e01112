#include "worker_threads.h"

#include <pthread.h>
#include <sched.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>

namespace {

constexpr int burst_us = 1500;

struct worker_row {
  const char* name;  // the kernel keeps 15 characters of a thread's name
  int stack_kb;
  int period_ms;  // of its bursts; 0: it only waits
};

constexpr worker_row worker_table[] = {
    {"recorder", 512, 0},          {"CBackEndStill0", 256, 0},  {"CBackEndStill1", 256, 0},
    {"CBackEndStill2", 256, 0},    {"CBackEndStill3", 256, 0},  {"CBackEndStill4", 256, 0},
    {"CBackEndStill5", 256, 0},    {"CBackEndStill6", 256, 0},  {"CBackEndStill7", 256, 0},
    {"CBackEndStill8", 256, 0},    {"CBackEndStill9", 256, 0},  {"CBackEndQView10", 192, 0},
    {"CBackEndQView11", 192, 0},   {"CBackEndQView12", 192, 0}, {"CBackEndQView13", 192, 0},
    {"CLdcmProcess", 128, 0},      {"CLdcsProcess", 128, 0},    {"CRawProcess", 384, 0},
    {"CSEProcess", 128, 0},        {"CWBProcess", 128, 0},      {"CEffectProcess", 128, 0},
    {"CTransferProces", 128, 0},   {"AlarmTimer", 64, 0},       {"videoErrHndl", 64, 0},
    {"frontEndMsg", 128, 0},       {"frontEndEvent", 128, 0},   {"videoEvent", 128, 0},
    {"FrontendQz", 96, 0},         {"q7x_mipi_thread", 64, 0},  {"CaptureControll", 256, 0},
    {"AeMain", 256, 310},          {"AeMsg", 128, 0},           {"AeComp", 128, 0},
    {"AFMain", 256, 370},          {"AwbMain", 256, 470},       {"shell_lumenhost", 128, 0},
    {"ui_th_common", 256, 0},      {"lens_poll_th", 64, 590},   {"LensControlServ", 128, 0},
    {"StrobeSvc", 96, 0},          {"GPSSvc", 96, 0},           {"videosrc", 512, 250},
    {"Liveview_Histog", 128, 410}, {"MG1Thread", 96, 0},        {"MG2Thread", 96, 0},
    {"ShutterPI", 64, 0},          {"ShtTimer", 64, 0},         {"Shutter Assert ", 64, 0},
    {"FD_task", 1024, 530},        {"Panorama_task", 1024, 0},  {"OBJ_task", 1024, 0},
    {"stman Listner", 128, 0},     {"sensorapi", 128, 0},       {"lumen-ui-host-n", 128, 0},
};

constexpr bool names_fit_and_differ() {
  for (const worker_row& row : worker_table) {
    if (std::string_view{row.name}.size() > 15) return false;
    for (const worker_row& other : worker_table)
      if (&row != &other && std::string_view{row.name} == other.name) return false;
  }
  return true;
}
static_assert(names_fit_and_differ());

constexpr double total_load() {
  double load = 0;
  for (const worker_row& row : worker_table)
    if (row.period_ms > 0) load += burst_us / 1e3 / row.period_ms;
  return load;
}
static_assert(total_load() < 0.04, "of one core");

[[noreturn]] void wait_forever() {
  for (;;) pause();
}

long thread_cpu_us() {
  timespec used{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
  return used.tv_sec * 1'000'000L + used.tv_nsec / 1000;
}

[[noreturn]] void work_in_bursts(int period_ms) {
  const timespec rest{period_ms / 1000, period_ms % 1000 * 1'000'000L};
  for (;;) {
    const long end_us = thread_cpu_us() + burst_us;
    while (thread_cpu_us() < end_us) {
    }
    nanosleep(&rest, nullptr);
  }
}

// Runs as a process that shares this one's memory and ends with the thread that started it.
// Its name must not be the application's: that one is counted by its name.
int wait_for_the_end(void* /*unused*/) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  prctl(PR_SET_NAME, "hang-partner");
  wait_forever();
}

// The kernel keeps a thread that has started a vfork child in state D until the child
// executes a program or ends, which this one never does. No signal but a deadly one wakes
// the thread, so the process can still be ended.
[[noreturn]] void hang() {
  alignas(16) static char partner_stack[16 * 1024];
  clone(wait_for_the_end, std::end(partner_stack), CLONE_VM | CLONE_VFORK | SIGCHLD, nullptr);
  wait_forever();
}

void* run_worker(void* row) {
  const int period_ms = static_cast<const worker_row*>(row)->period_ms;
  if (period_ms > 0) work_in_bursts(period_ms);
  wait_forever();
}

void* run_hanging(void* /*row*/) {
  hang();
}

// The name is set from here, so all names stand when the last thread has been started.
void start_worker(const worker_row& row, void* (*run)(void*)) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  pthread_attr_setstacksize(&attributes, static_cast<std::size_t>(row.stack_kb) * 1024);
  pthread_t thread{};
  const int error = pthread_create(&thread, &attributes, run, const_cast<worker_row*>(&row));
  pthread_attr_destroy(&attributes);
  if (error != 0) {
    fprintf(stderr, "lumen-ui-host: cannot start the thread %s: %s\n", row.name, strerror(error));
    _exit(1);
  }
  pthread_setname_np(thread, row.name);
}

}  // namespace

bool is_worker_thread(std::string_view name) {
  return std::any_of(std::begin(worker_table), std::end(worker_table),
                     [&](const worker_row& row) { return name == row.name; });
}

void start_worker_threads(std::string_view hang_name) {
  for (const worker_row& row : worker_table)
    start_worker(row, hang_name == row.name ? run_hanging : run_worker);
}
