#include <errno.h>
#include <gmock/gmock.h>
#include <orv/thread.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <atomic>
#include <map>
#include <string>

#include "agent_probe.h"
#include "process.h"

namespace {

// Of the wrapped calls: what one answers with instead of being made, and how often it was asked
// for.
std::map<std::string, int> faults;
std::map<std::string, int> calls;

}  // namespace

// The linker gives these their names. errno is left at something else, as the calls may.
#define WRAP(call, parameters, arguments)                                    \
  int __real_##call parameters;                                              \
  int __wrap_##call parameters {                                             \
    errno = ENOENT;                                                          \
    ++calls[#call];                                                          \
    return faults.contains(#call) ? faults[#call] : __real_##call arguments; \
  }

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

WRAP(pthread_attr_init, (pthread_attr_t * attributes), (attributes))
WRAP(pthread_attr_setdetachstate, (pthread_attr_t * attributes, int state), (attributes, state))
WRAP(pthread_create,
     (pthread_t * thread, const pthread_attr_t* attributes, void* (*start)(void*), void* argument),
     (thread, attributes, start, argument))
WRAP(pthread_attr_destroy, (pthread_attr_t * attributes), (attributes))
WRAP(pthread_cancel, (pthread_t thread), (thread))

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace {

using orv_test::take_messages;
using testing::ElementsAre;
using testing::IsEmpty;

// Until it is cancelled.
void* live(void* /*argument*/) {
  for (;;) {
    pause();
  }
}

class Thread : public orv_test::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    faults.clear();
    calls.clear();
  }

  static int create(int32_t stack_size_bytes) {
    return orv_thread_create(&thread_, "a", 9, 1, stack_size_bytes, live, nullptr);
  }

  static pthread_t start(uint32_t joinable) {
    EXPECT_EQ(orv_thread_create(&thread_, "a", 9, joinable, 0, live, nullptr), 0);
    take_messages();
    return thread_;
  }

  static inline pthread_t thread_;
};

std::string created(const std::string& name, pthread_t thread, unsigned stack_size_bytes) {
  return "I " + name + " Thread created (ID=" + std::to_string(static_cast<unsigned>(thread)) +
         ", stack_size=" + std::to_string(stack_size_bytes) + ") ";
}

std::string bracketed(pthread_t thread, const std::string& more = "") {
  return "[" + std::to_string(static_cast<unsigned>(thread)) + more + "] ";
}

std::string reason(int code) {
  return "I " + std::string{strerror(code)} + "(errno=" + std::to_string(code) + ") ";
}

struct self {
  pthread_t id{};
  size_t stack_size_bytes = 0;
};

void* look_at_self(void* argument) {
  auto* seen = static_cast<self*>(argument);
  seen->id = orv_get_current_thread_id();
  pthread_attr_t attributes;
  if (pthread_getattr_np(seen->id, &attributes) == 0) {
    pthread_attr_getstacksize(&attributes, &seen->stack_size_bytes);
    __real_pthread_attr_destroy(&attributes);
  }
  orv_thread_exit(seen);
}

TEST_F(Thread, GetsTheStackThatItsLineShows) {
  for (const auto& [asked, given] : {std::pair{131072, 131072U}, {0, 1048576U}}) {
    SCOPED_TRACE(asked);
    self seen;
    ASSERT_EQ(orv_thread_create(&thread_, nullptr, 0, 7, asked, look_at_self, &seen), 0);
    EXPECT_EQ(calls["pthread_attr_destroy"], calls["pthread_attr_init"]);
    void* result = nullptr;
    EXPECT_EQ(orv_thread_join(thread_, &result), 0);
    EXPECT_EQ(result, &seen);
    EXPECT_EQ(seen.id, thread_);
    EXPECT_EQ(seen.stack_size_bytes, given);
    EXPECT_THAT(take_messages(), ElementsAre(created("(null)", thread_, given),
                                             "I orv_thread_join():: Thread join success "));
  }
}

TEST_F(Thread, CannotBeJoinedWhenDetached) {
  const pthread_t thread = start(0);
  EXPECT_EQ(orv_thread_join(thread, nullptr), -1);
  EXPECT_THAT(take_messages(), ElementsAre("E orv_thread_join():: Thread join failed for thread " +
                                               bracketed(thread),
                                           reason(EINVAL)));
  pthread_cancel(thread);
}

TEST_F(Thread, IsNotMadeWhenAStepFails) {
  const struct {
    const char* failing;
    int stack_size_bytes;
    const char* line;
    int code;
  } rows[] = {
      {"pthread_attr_init", 0, "Got error from pthread_attr_init ", EPERM},
      {"", INT32_MIN, "Got error from pthread_attr_setstacksize ", EINVAL},
      {"", -1, "Got error from pthread_attr_setstacksize ", EINVAL},
      {"", 1, "Got error from pthread_attr_setstacksize ", EINVAL},
      {"", 16383, "Got error from pthread_attr_setstacksize ", EINVAL},
      {"pthread_attr_setdetachstate", 0, "Got error from pthread_attr_setdetachstate ", EPERM},
      {"pthread_create", 0, "pthread_create() failed ", EPERM},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    faults = {{row.failing, EPERM}};
    calls.clear();
    EXPECT_EQ(create(row.stack_size_bytes), -1);
    EXPECT_THAT(take_messages(),
                ElementsAre(std::string{"E orv_thread_create():: "} + row.line, reason(row.code)));
    EXPECT_EQ(calls["pthread_attr_destroy"], faults.contains("pthread_attr_init") ? 0 : 1);
  }
  faults.clear();
  faults["pthread_create"] = EPERM;
  EXPECT_EQ(create(0), -1);
  EXPECT_THAT(orv_test::take_messages_of("orv_thread.cpp"),
              ElementsAre("orv_thread_create|orv_thread_create():: pthread_create() failed ",
                          "orv_thread_create|" + reason(EPERM).substr(2)));
}

TEST_F(Thread, LivesThoughItsAttributesCannotBeDestroyed) {
  faults["pthread_attr_destroy"] = EBUSY;
  ASSERT_EQ(create(0), 0);
  EXPECT_THAT(take_messages(),
              ElementsAre(created("a", thread_, 1048576),
                          "E orv_thread_create():: pthread attr destroy failed ", reason(EBUSY)));
  EXPECT_EQ(orv_thread_cancel(thread_), 0);
  EXPECT_EQ(orv_thread_join(thread_, nullptr), 0);
}

TEST_F(Thread, IsRefusedInSilenceWithoutAStartRoutine) {
  EXPECT_EQ(orv_thread_create(&thread_, "a", 0, 1, 1, nullptr, nullptr), -1);
  EXPECT_THAT(take_messages(), IsEmpty());
}

TEST_F(Thread, IsSignalledAndCancelledInSilence) {
  static std::atomic<pthread_t> receiver{};
  signal(SIGUSR1, [](int) { receiver = pthread_self(); });
  const pthread_t thread = start(1);
  EXPECT_EQ(orv_thread_kill(thread, SIGUSR1), 0);
  EXPECT_TRUE(orv_test::eventually([&] { return receiver == thread; }));
  EXPECT_EQ(orv_thread_cancel(thread), 0);
  EXPECT_THAT(take_messages(), IsEmpty());
  void* result = nullptr;
  EXPECT_EQ(orv_thread_join(thread, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
}

TEST_F(Thread, ThatCannotBeCancelledOrSignalledIsNamed) {
  const pthread_t thread = start(1);
  faults["pthread_cancel"] = ESRCH;
  EXPECT_EQ(orv_thread_cancel(thread), -1);
  EXPECT_EQ(orv_thread_kill(thread, 1000), -1);
  EXPECT_THAT(
      take_messages(),
      ElementsAre(
          "E orv_thread_cancel():: Thread cancel failed for thread " + bracketed(thread),
          reason(ESRCH),
          "E orv_thread_kill():: Thread kill failed for thread " + bracketed(thread, ":1000"),
          reason(EINVAL)));
  __real_pthread_cancel(thread);
  EXPECT_EQ(orv_thread_join(thread, nullptr), 0);
}

}  // namespace
