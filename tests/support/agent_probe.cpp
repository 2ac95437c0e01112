#include "agent_probe.h"

#include <dlog.h>
#include <glib.h>
#include <stdarg.h>
#include <stdlib.h>
#include <vconf.h>

#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "packet_check.h"

namespace orv_test {
namespace {

std::mutex log_guard;
std::vector<log_record> records;
std::vector<std::string> writes;
std::map<std::pair<fault, std::string>, int> faults;
std::string emptied_key;

const int* find_fault(fault kind, const char* key) {
  const auto found = faults.find({kind, key});
  return found == faults.end() ? nullptr : &found->second;
}

// Whatever the agent writes behind a true packet, or where there was none, is a true packet.
void check_packet(const std::string& old, const std::string& written) {
  const bool was_true = !old.starts_with("848,") || packet_fault(old).empty();
  if (was_true && written.starts_with("848,")) {
    EXPECT_EQ(packet_fault(written), "") << written;
  }
}

std::string message_of(const std::string& line) {
  constexpr size_t colour = 5;
  constexpr size_t reset = 4;
  return line.size() < colour + reset ? line : line.substr(colour, line.size() - colour - reset);
}

}  // namespace

std::vector<log_record> take_log() {
  const std::lock_guard lock{log_guard};
  return std::exchange(records, {});
}

std::vector<std::string> take_messages() {
  std::vector<std::string> messages;
  for (const log_record& one : take_log()) {
    messages.push_back((one.priority == DLOG_ERROR ? "E " : "I ") + message_of(one.line));
  }
  return messages;
}

std::vector<std::string> take_messages_of(const std::string& file) {
  std::vector<std::string> messages;
  for (const log_record& one : take_log()) {
    if (one.file == file) {
      messages.push_back(one.function + "|" + message_of(one.line));
    }
  }
  return messages;
}

std::vector<std::string> take_writes() {
  return std::exchange(writes, {});
}

void fail(fault kind, const std::string& key, int result) {
  faults[{kind, key}] = result;
}

void empty_after_read(const std::string& key) {
  emptied_key = key;
}

void AgentTest::SetUp() {
  std::filesystem::remove_all(std::filesystem::path{getenv("ORV_PLATFORM_ROOT")} / "memory");
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
  }
  faults.clear();
  emptied_key.clear();
  take_log();
  take_writes();
}

}  // namespace orv_test

using orv_test::fault;

// The linker gives these their names.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

int __real_vconf_get_int(const char* key, int* value);
char* __real_vconf_get_str(const char* key);
int __real_vconf_set_int(const char* key, int value);
int __real_vconf_set_str(const char* key, const char* value);
int __real_vconf_notify_key_changed(const char* key, vconf_callback_fn callback, void* user_data);

int __wrap_vconf_get_int(const char* key, int* value) {
  const int* failing = orv_test::find_fault(fault::read, key);
  return failing != nullptr ? *failing : __real_vconf_get_int(key, value);
}

char* __wrap_vconf_get_str(const char* key) {
  if (orv_test::find_fault(fault::read, key) != nullptr) {
    return nullptr;
  }
  char* const text = __real_vconf_get_str(key);
  if (orv_test::emptied_key == key) {
    orv_test::emptied_key.clear();
    __real_vconf_set_str(key, "");
  }
  return text;
}

int __wrap_vconf_set_int(const char* key, int value) {
  orv_test::writes.push_back(std::string{key} + "=" + std::to_string(value));
  return __real_vconf_set_int(key, value);
}

int __wrap_vconf_set_str(const char* key, const char* value) {
  orv_test::writes.push_back(std::string{key} + "=" + value);
  orv_test::check_packet(orv_test::text_at(key), value);
  return __real_vconf_set_str(key, value);
}

int __wrap_vconf_notify_key_changed(const char* key, vconf_callback_fn callback, void* user_data) {
  const int* failing = orv_test::find_fault(fault::notify, key);
  return failing != nullptr ? *failing : __real_vconf_notify_key_changed(key, callback, user_data);
}

int __wrap___dlog_print(int log_id, int priority, const char* tag, const char* format, ...) {
  EXPECT_STREQ(format, "%s: %s(%d) > %s");
  va_list arguments;
  va_start(arguments, format);
  const char* file = va_arg(arguments, const char*);
  const char* function = va_arg(arguments, const char*);
  va_arg(arguments, int);
  const char* line = va_arg(arguments, const char*);
  const std::lock_guard lock{orv_test::log_guard};
  orv_test::records.push_back({log_id, priority, tag, file, function, line});
  va_end(arguments);
  return 0;
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace orv_test {

std::string text_at(const char* key) {
  const std::unique_ptr<char, decltype(&free)> text{__real_vconf_get_str(key), free};
  return text ? text.get() : "(none)";
}

int int_at(const char* key) {
  int number = 0;
  EXPECT_EQ(__real_vconf_get_int(key, &number), 0) << key;
  return number;
}

void put(const char* key, const char* text) {
  ASSERT_EQ(__real_vconf_set_str(key, text), 0);
}
void put(const char* key, int number) {
  ASSERT_EQ(__real_vconf_set_int(key, number), 0);
}

std::string answer_of(void (*handler)(orv_command*, const char*)) {
  orv_command record{};
  handler(&record, "");
  EXPECT_EQ(int_at(VCONFKEY_ORV_RESULT), ORV_RESULT_OK);
  return text_at(VCONFKEY_ORV_RESULT_DATA);
}

}  // namespace orv_test
