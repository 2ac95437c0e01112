#include <errno.h>
#include <gmock/gmock.h>
#include <limits.h>
#include <orv/thread.h>
#include <semaphore.h>
#include <signal.h>
#include <string.h>
#include <time.h>

#include <string>

#include "agent_probe.h"

namespace {

// What the wrapped calls answer with, 0 for the real call.
struct call_faults {
  int init = 0;
  int set_detach_state = 0;
  int create = 0;
  int destroy = 0;
  int cancel = 0;
};
call_faults faults;
int attributes_alive = 0;

}  // namespace

// The linker gives these their names. errno is left at something else, as the calls may.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {

int __real_pthread_attr_init(pthread_attr_t* attributes);
int __real_pthread_attr_setdetachstate(pthread_attr_t* attributes, int state);
int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument);
int __real_pthread_attr_destroy(pthread_attr_t* attributes);
int __real_pthread_cancel(pthread_t thread);

int __wrap_pthread_attr_init(pthread_attr_t* attributes) {
  errno = ENOENT;
  attributes_alive += faults.init == 0 ? 1 : 0;
  return faults.init != 0 ? faults.init : __real_pthread_attr_init(attributes);
}
int __wrap_pthread_attr_setdetachstate(pthread_attr_t* attributes, int state) {
  errno = ENOENT;
  return faults.set_detach_state != 0 ? faults.set_detach_state
                                      : __real_pthread_attr_setdetachstate(attributes, state);
}
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument) {
  errno = ENOENT;
  return faults.create != 0 ? faults.create
                            : __real_pthread_create(thread, attributes, start, argument);
}
int __wrap_pthread_attr_destroy(pthread_attr_t* attributes) {
  --attributes_alive;
  const int result = __real_pthread_attr_destroy(attributes);
  return faults.destroy != 0 ? faults.destroy : result;
}
int __wrap_pthread_cancel(pthread_t thread) {
  errno = ENOENT;
  return faults.cancel != 0 ? faults.cancel : __real_pthread_cancel(thread);
}

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace {

using orv_test::take_messages;
using testing::ElementsAre;
using testing::IsEmpty;

class Thread : public orv_test::AgentTest {
 protected:
  void SetUp() override {
    AgentTest::SetUp();
    faults = {};
    sem_init(&gate_.open, 0, 0);
    sem_init(&gate_.passed, 0, 0);
  }
  void TearDown() override { EXPECT_EQ(attributes_alive, 0); }

  struct gate {
    sem_t open;
    sem_t passed;
  };
  // Started so, a thread lives until the gate is opened, or until it is cancelled.
  static void* live(void* at_gate) {
    sem_wait(&static_cast<gate*>(at_gate)->open);
    sem_post(&static_cast<gate*>(at_gate)->passed);
    return nullptr;
  }
  void release() {
    timespec deadline{};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += 5;
    sem_post(&gate_.open);
    EXPECT_EQ(sem_clockwait(&gate_.passed, CLOCK_MONOTONIC, &deadline), 0);
  }

  pthread_t start(uint32_t joinable) {
    pthread_t thread{};
    EXPECT_EQ(orv_thread_create(&thread, "a", 9, joinable, 0, live, &gate_), 0);
    take_messages();
    return thread;
  }
  int create(int32_t stack_size_bytes) {
    pthread_t thread{};
    return orv_thread_create(&thread, "a", 0, 1, stack_size_bytes, live, &gate_);
  }

  gate gate_{};
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

TEST_F(Thread, CannotBeJoinedWhenDetached) {
  const pthread_t thread = start(0);
  EXPECT_EQ(orv_thread_join(thread, nullptr), -1);
  EXPECT_THAT(take_messages(), ElementsAre("E orv_thread_join():: Thread join failed for thread " +
                                               bracketed(thread),
                                           reason(EINVAL)));
  release();
}

TEST_F(Thread, IsNotMadeWhenAStepFails) {
  const auto one_fault = [](int call_faults::*call) {
    call_faults made;
    made.*call = EPERM;
    return made;
  };
  const std::string message = "E orv_thread_create():: ";
  const struct {
    call_faults given;
    int stack_size_bytes;
    std::string line;
    int code;
  } rows[] = {
      {one_fault(&call_faults::init), 0, message + "Got error from pthread_attr_init ", EPERM},
      {{}, 1, message + "Got error from pthread_attr_setstacksize ", EINVAL},
      {{}, 16383, message + "Got error from pthread_attr_setstacksize ", EINVAL},
      {one_fault(&call_faults::set_detach_state), 0,
       message + "Got error from pthread_attr_setdetachstate ", EPERM},
      {one_fault(&call_faults::create), 0, message + "pthread_create() failed ", EPERM},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    faults = row.given;
    EXPECT_EQ(create(row.stack_size_bytes), -1);
    EXPECT_THAT(take_messages(), ElementsAre(row.line, reason(row.code)));
    EXPECT_EQ(attributes_alive, 0);
  }
  EXPECT_EQ(create(INT_MIN), -1);
  EXPECT_EQ(take_messages().size(), 2U);
}

TEST_F(Thread, LivesThoughItsAttributesCannotBeDestroyed) {
  faults.destroy = EBUSY;
  pthread_t thread{};
  ASSERT_EQ(orv_thread_create(&thread, "lens", 0, 1, 0, live, &gate_), 0);
  EXPECT_THAT(take_messages(),
              ElementsAre(created("lens", thread, 1048576),
                          "E orv_thread_create():: pthread attr destroy failed ", reason(EBUSY)));
  release();
  EXPECT_EQ(orv_thread_join(thread, nullptr), 0);
}

TEST_F(Thread, IsRefusedInSilenceWithoutAStartRoutine) {
  pthread_t thread{};
  EXPECT_EQ(orv_thread_create(&thread, "a", 0, 1, 1, nullptr, nullptr), -1);
  EXPECT_THAT(take_messages(), IsEmpty());
}

TEST_F(Thread, IsCancelledInSilence) {
  const pthread_t thread = start(1);
  EXPECT_EQ(orv_thread_cancel(thread), 0);
  EXPECT_THAT(take_messages(), IsEmpty());
  void* result = nullptr;
  EXPECT_EQ(orv_thread_join(thread, &result), 0);
  EXPECT_EQ(result, PTHREAD_CANCELED);
}

void* wait_for_signal(void* received) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGUSR1);
  sigwait(&signals, static_cast<int*>(received));
  return nullptr;
}

TEST_F(Thread, ReceivesTheSignalInSilence) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGUSR1);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  pthread_t thread{};
  int received = 0;
  ASSERT_EQ(orv_thread_create(&thread, "a", 0, 1, 0, wait_for_signal, &received), 0);
  take_messages();
  EXPECT_EQ(orv_thread_kill(thread, 0), 0);
  EXPECT_EQ(orv_thread_kill(thread, SIGUSR1), 0);
  EXPECT_THAT(take_messages(), IsEmpty());
  EXPECT_EQ(orv_thread_join(thread, nullptr), 0);
  EXPECT_EQ(received, SIGUSR1);
}

TEST_F(Thread, ThatCannotBeCancelledOrSignalledIsNamed) {
  const pthread_t thread = start(1);
  faults.cancel = ESRCH;
  EXPECT_EQ(orv_thread_cancel(thread), -1);
  EXPECT_EQ(orv_thread_kill(thread, 1000), -1);
  EXPECT_THAT(
      take_messages(),
      ElementsAre(
          "E orv_thread_cancel():: Thread cancel failed for thread " + bracketed(thread),
          reason(ESRCH),
          "E orv_thread_kill():: Thread kill failed for thread " + bracketed(thread, ":1000"),
          reason(EINVAL)));
  release();
  EXPECT_EQ(orv_thread_join(thread, nullptr), 0);
}

TEST_F(Thread, FailuresAreRecordedUnderTheOperation) {
  EXPECT_EQ(create(1), -1);
  const auto records = orv_test::take_log();
  EXPECT_EQ(records.size(), 2U);
  for (const auto& record : records) {
    EXPECT_EQ(record.file, "orv_thread.cpp");
    EXPECT_EQ(record.function, "orv_thread_create");
  }
}

}  // namespace
