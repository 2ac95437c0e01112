// The store, the log and the version texts in processes to which one allocation is refused: the
// first, the second, and so on, until a whole story needs no more.

#include <dlfcn.h>
#include <dlog.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vconf.h>
#include <version_info.h>

#include <fstream>
#include <string>

#include "main_loop.h"
#include "process.h"

namespace {

using orv_test::background;

// GLib ends a process that gets no memory.
bool is_glib(void* caller) {
  Dl_info library{};
  return dladdr(caller, &library) != 0 && strstr(library.dli_fname, "libglib") != nullptr;
}

int allocations_until_refusal = 0;
bool counting = false;

[[maybe_unused]] bool is_refused(void* caller) {
  return counting && !is_glib(caller) && --allocations_until_refusal == 0;
}

}  // namespace

#ifndef __SANITIZE_ADDRESS__
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
void* __libc_malloc(size_t size);
__attribute__((visibility("default"))) void* malloc(size_t size) {
  return is_refused(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
#endif

namespace {

constexpr char request[] = "memory/refused/request";
constexpr char answer[] = "memory/refused/answer";
int requests = 0;
int answers = 0;

void take_request(keynode_t* node, void* /*user_data*/) {
  ++requests;
  EXPECT_EQ(vconf_keynode_get_type(node), VCONF_TYPE_INT);
  EXPECT_EQ(vconf_set_int(answer, requests), 0);
}

void take_answer(keynode_t* /*node*/, void* /*user_data*/) {
  ++answers;
}

bool reaches(const int& count, int expected) {
  return orv_test::run_until([&] { return count >= expected; }, 1000);
}

// A call to which memory was refused fails, and succeeds when it is made again.
bool registers(const char* key, vconf_callback_fn callback) {
  return vconf_notify_key_changed(key, callback, nullptr) == 0 ||
         vconf_notify_key_changed(key, callback, nullptr) == 0;
}

bool reads_back(const char* text) {
  char* first = vconf_get_str("memory/refused/text");
  char* read = first != nullptr ? first : vconf_get_str("memory/refused/text");
  const bool same = read != nullptr && strcmp(read, text) == 0;
  free(read);
  return same;
}

void remove_directory_of(const char* key) {
  char path[PATH_MAX];
  snprintf(path, sizeof path, "%s/%s/.value", getenv("ORV_PLATFORM_ROOT"), key);
  unlink(path);
  *strrchr(path, '/') = '\0';
  EXPECT_EQ(rmdir(path), 0);
}

void tell_story(const char* long_text) {
  EXPECT_EQ(vconf_set_str("memory/refused/text", "short"), 0);
  EXPECT_TRUE(reads_back("short"));
  EXPECT_EQ(vconf_set_str("memory/refused/text", long_text), 0);
  EXPECT_TRUE(reads_back(long_text));
  EXPECT_TRUE(registers(request, take_request));
  EXPECT_TRUE(registers(answer, take_answer));
  for (int i = 1; i <= 3; ++i) {
    EXPECT_EQ(vconf_set_int(request, i), 0);
    EXPECT_TRUE(reaches(answers, i));
  }
  remove_directory_of(request);
  EXPECT_EQ(vconf_set_int(request, 4), 0);
  EXPECT_TRUE(reaches(answers, 4));
  EXPECT_EQ(requests, 4);
  EXPECT_EQ(vconf_ignore_key_changed(request, take_request), 0);
  EXPECT_GT(__dlog_print(3, DLOG_INFO, "REFUSED", "%s", "text"), 0);
  EXPECT_STREQ(get_project_name(), "REFUSED-ONE");
}

enum { came_to_an_end, refused_one, failed };

int story_with_refusal(int number) {
  const std::string long_text(5000, 'x');
  allocations_until_refusal = number;
  counting = true;
  tell_story(long_text.c_str());
  counting = false;
  if (testing::Test::HasFailure()) {
    return failed;
  }
  return allocations_until_refusal > 0 ? came_to_an_end : refused_one;
}

TEST(Platform, OutlivesEveryRefusedAllocation) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "a sanitizer's allocator refuses nothing";
#endif
  const std::string file = std::string{getenv("ORV_PLATFORM_ROOT")} + "/version-info";
  std::ofstream{file} << "project=REFUSED-ONE\n";
  int outcome = refused_one;
  int number = 0;
  for (; outcome == refused_one; ++number) {
    SCOPED_TRACE(number + 1);
    background process{[&] { return story_with_refusal(number + 1); }};
    outcome = process.wait();
    EXPECT_TRUE(outcome == refused_one || outcome == came_to_an_end) << outcome;
  }
  EXPECT_GT(number, 5) << "nothing was refused";
}

}  // namespace
