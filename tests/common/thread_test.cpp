#include <errno.h>
#include <gmock/gmock.h>
#include <limits.h>
#include <orv/thread.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

#include <atomic>
#include <string>

#include "agent_probe.h"

namespace {

std::string failing;  // the wrapped call that answers EPERM
int attributes_alive = 0;

// errno is left at something else, as the calls may.
template <class F, class... P>
int call(const char* name, F* real, P... arguments) {
  errno = ENOENT;
  return failing == name ? EPERM : real(arguments...);
}

}  // namespace

// The linker gives these their names.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

int __real_pthread_attr_init(pthread_attr_t* attributes);
int __real_pthread_attr_setdetachstate(pthread_attr_t* attributes, int state);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument);
int __real_pthread_attr_destroy(pthread_attr_t* attributes);
int __real_pthread_cancel(pthread_t thread);

int __wrap_pthread_attr_init(pthread_attr_t* attributes) {
  const int result = call("init", __real_pthread_attr_init, attributes);
  attributes_alive += result == 0 ? 1 : 0;
  return result;
}
int __wrap_pthread_attr_setdetachstate(pthread_attr_t* attributes, int state) {
  return call("setdetachstate", __real_pthread_attr_setdetachstate, attributes, state);
}
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument) {
  return call("create", __real_pthread_create, thread, attributes, start, argument);
}
int __wrap_pthread_attr_destroy(pthread_attr_t* attributes) {
  --attributes_alive;
  return call("destroy", __real_pthread_attr_destroy, attributes);
}
int __wrap_pthread_cancel(pthread_t thread) {
  return call("cancel", __real_pthread_cancel, thread);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace {

using orv_test::take_messages;
using testing::ElementsAre;
using testing::IsEmpty;

// Lives until it is cancelled.
void* live(void* /*unused*/) {
  while (true) {
    pause();
  }
}

class Thread : public orv_test::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    failing.clear();
  }
  void TearDown() override { EXPECT_EQ(attributes_alive, 0); }

  int create(int32_t stack_size_bytes, uint32_t joinable = 1) {
    return orv_thread_create(&thread_, "lens", 9, joinable, stack_size_bytes, live, nullptr);
  }

  pthread_t thread_{};
};

std::string created(const std::string& name, pthread_t thread, unsigned stack_size_bytes) {
  return "I " + name + " Thread created (ID=" + std::to_string(static_cast<unsigned>(thread)) +
         ", stack_size=" + std::to_string(stack_size_bytes) + ") ";
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
    pthread_t thread{};
    ASSERT_EQ(orv_thread_create(&thread, nullptr, 0, 7, asked, look_at_self, &seen), 0);
    void* result = nullptr;
    EXPECT_EQ(orv_thread_join(thread, &result), 0);
    EXPECT_EQ(result, &seen);
    EXPECT_EQ(seen.id, thread);
    EXPECT_EQ(seen.stack_size_bytes, given);
    EXPECT_THAT(take_messages(), ElementsAre(created("(null)", thread, given),
                                             "I orv_thread_join():: Thread join success "));
  }
}

TEST_F(Thread, IsNotMadeWhenAStepFails) {
  const struct {
    const char* failing;
    int stack_size_bytes;
    std::string line;
    int code;
  } rows[] = {
      {"init", 0, "Got error from pthread_attr_init ", EPERM},
      {"", 1, "Got error from pthread_attr_setstacksize ", EINVAL},
      {"", 16383, "Got error from pthread_attr_setstacksize ", EINVAL},
      {"setdetachstate", 0, "Got error from pthread_attr_setdetachstate ", EPERM},
      {"create", 0, "pthread_create() failed ", EPERM},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    failing = row.failing;
    EXPECT_EQ(create(row.stack_size_bytes), -1);
    EXPECT_THAT(take_messages(),
                ElementsAre("E orv_thread_create():: " + row.line, reason(row.code)));
    EXPECT_EQ(attributes_alive, 0);
  }
  failing.clear();
  EXPECT_EQ(create(INT_MIN), -1);
  const auto records = orv_test::take_log();
  EXPECT_EQ(records.size(), 2U);
  for (const auto& record : records) {
    EXPECT_EQ(record.file, "orv_thread.cpp");
    EXPECT_EQ(record.function, "orv_thread_create");
  }
  EXPECT_EQ(orv_thread_create(&thread_, "a", 0, 1, 1, nullptr, nullptr), -1);
  EXPECT_THAT(take_messages(), IsEmpty()) << "no start routine, no word";
}

TEST_F(Thread, LivesThoughItsAttributesCannotBeDestroyed) {
  failing = "destroy";
  ASSERT_EQ(create(0), 0);
  EXPECT_THAT(take_messages(),
              ElementsAre(created("lens", thread_, 1048576),
                          "E orv_thread_create():: pthread attr destroy failed ", reason(EPERM)));
  __real_pthread_cancel(thread_);
  EXPECT_EQ(orv_thread_join(thread_, nullptr), 0);
}

std::atomic<pthread_t> signalled;

TEST_F(Thread, IsSignalledAndCancelledInSilence) {
  signal(SIGUSR1, [](int /*number*/) { signalled = pthread_self(); });
  ASSERT_EQ(create(0), 0);
  take_messages();
  EXPECT_EQ(orv_thread_kill(thread_, 0), 0);
  EXPECT_EQ(orv_thread_kill(thread_, SIGUSR1), 0);
  EXPECT_TRUE(orv_test::run_until([&] { return signalled == thread_; }));
  EXPECT_EQ(orv_thread_cancel(thread_), 0);
  EXPECT_THAT(take_messages(), IsEmpty());
  void* result = nullptr;
  EXPECT_EQ(orv_thread_join(thread_, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
}

TEST_F(Thread, IsNamedWhereAnOperationOnItFails) {
  ASSERT_EQ(create(0, 0), 0);
  take_messages();
  failing = "cancel";
  EXPECT_EQ(orv_thread_join(thread_, nullptr), -1) << "it is detached";
  EXPECT_EQ(orv_thread_cancel(thread_), -1);
  EXPECT_EQ(orv_thread_kill(thread_, 1000), -1);
  const std::string shown = "[" + std::to_string(static_cast<unsigned>(thread_));
  EXPECT_THAT(
      take_messages(),
      ElementsAre(
          "E orv_thread_join():: Thread join failed for thread " + shown + "] ", reason(EINVAL),
          "E orv_thread_cancel():: Thread cancel failed for thread " + shown + "] ", reason(EPERM),
          "E orv_thread_kill():: Thread kill failed for thread " + shown + ":1000] ",
          reason(EINVAL)));
  __real_pthread_cancel(thread_);
}

}  // namespace
