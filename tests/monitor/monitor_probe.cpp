#include "monitor_probe.h"

#include <glib.h>

#include <utility>

#include "packet_check.h"

namespace orv_test {
namespace {

std::vector<unsigned> intervals;
size_t refused_size = 0;
int still_granted = 0;

}  // namespace

std::vector<unsigned> take_intervals() {
  return std::exchange(intervals, {});
}

void refuse_memory(size_t size, int granted) {
  refused_size = size;
  still_granted = granted;
}

void MonitorTest::SetUp() {
  AgentTest::SetUp();
  g_packet_data = {};
  refuse_memory(0);
  take_intervals();
}

void MonitorTest::TearDown() {
  for (const int type : {ORV_MON_TYPE_CPU, ORV_MON_TYPE_HEAP, ORV_MON_TYPE_STACK}) {
    stop(type);
  }
}

int MonitorTest::start(int type, int interval_ms) {
  orv_command request{type, 1, interval_ms, 0, 0};
  return orv_monitor(&request, ORV_MON_ACTION_START);
}

int MonitorTest::stop(int type) {
  orv_command request{type, 0, 0, 0, 0};
  return orv_monitor(&request, ORV_MON_ACTION_TERMINATE);
}

std::string MonitorTest::packet_after(const std::string& old_text) const {
  put(VCONFKEY_ORV_RESULT_DATA, old_text.c_str());
  EXPECT_EQ(proc_(nullptr), 1);
  return without_times(text_at(VCONFKEY_ORV_RESULT_DATA));
}

}  // namespace orv_test

// The linker gives these their names, and looks for them from shared libraries as well.
#pragma GCC visibility push(default)
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

guint __real_g_timeout_add(guint interval, GSourceFunc callback, gpointer user_data);
guint __wrap_g_timeout_add(guint interval, GSourceFunc callback, gpointer user_data) {
  orv_test::intervals.push_back(interval);
  return __real_g_timeout_add(interval, callback, user_data);
}

void* __real_malloc(size_t size);
void* __wrap_malloc(size_t size) {
  const bool refused =
      size != 0 && size == orv_test::refused_size && orv_test::still_granted-- <= 0;
  return refused ? nullptr : __real_malloc(size);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
#pragma GCC visibility pop
