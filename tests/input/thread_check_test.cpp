// Faults of threads, by their stat lines.

#include <gmock/gmock.h>
#include <orv/health.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "agent_probe.h"
#include "emulation.h"
#include "process.h"

namespace {

using orv_test::take_messages;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using ThreadCheck = orv_test::AgentTest;

int check(std::string line) {
  return CheckThread(line.data());
}

std::string fault(const std::string& of) {
  return "E XXXXXXXXXXXXXXXXXXXX THREAD FAULT " + of;
}

TEST_F(ThreadCheck, TellsFaultsByTheStateAndTheExemptNames) {
  const struct {
    const char* line;
    int result;
    std::vector<std::string> messages;
  } rows[] = {
      {"1234 (AeMain) S 1 2 3", 0, {}},
      {"1234 (AeMain) R 1 2 3", 0, {}},
      {"1234 (AeMain) D 1 2 3", -1, {fault("[1234] (AeMain) : [D]")}},
      {"1234 (AeMain) I 1\n", -1, {fault("[1234] (AeMain) : [I]")}},
      {"1234 (AeMain) s\n", -1, {fault("[1234] (AeMain) : [s]")}},
      {"  1234   (AeMain)  T", -1, {fault("[1234] (AeMain) : [T]")}},
      {"1300 (lumen-ui-host-n) T 1", 0, {}},
      {"1300 (lumen-ui-host-) T 1", -1, {fault("[1300] (lumen-ui-host-) : [T]")}},
      {"1301 (Shutter Assert ) Z 1",
       -1,
       {"I tail [Assert]", "I tail [)]", fault("[1301] (Shutter Assert ) : [Z]")}},
      {"1302 (stman Listner) R 1", 0, {"I tail [Listner)]"}},
      {"1303 (a   b) X 1", -1, {"I tail [b)]", fault("[1303] (a b) : [X]")}},
      // As the kernel prints a thread that is called "AeMain) S"; its name ends too early here.
      {"1304 (AeMain) S) D 1", 0, {}},
      {"1305 (tab\there) D\t1", -1, {fault("[1305] (tab\there) : [D]")}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(check(row.line), row.result);
    EXPECT_THAT(take_messages(), ElementsAreArray(row.messages));
  }
}

TEST_F(ThreadCheck, RefusesWhatIsNoStatLineWithoutAWord) {
  const std::string nines(49, '9');
  const std::string name = "(" + std::string(47, 'x') + ")";
  for (const std::string& line :
       {std::string{}, std::string{"   "}, std::string{"1234"}, std::string{"1234 (AeMain)"},
        std::string{"1234 (Ae Main D 1 2"}, nines + "9 (AeMain) D", "1 x" + name + " D",
        "1 (" + std::string(20, 'x') + " " + std::string(27, 'x') + ") D",
        "1 (" + std::string(5000, 'x') + ") D",
        "1 (a" + std::string(5000, ' ') +
            "b c d e f g h i j k l m n o p "
            "q r s t u v w x y z) D",
        std::string{"1234 (AeMain) DDDDDDDDDD"}}) {
    SCOPED_TRACE(line);
    EXPECT_EQ(check(line), 0);
    EXPECT_THAT(take_messages(), IsEmpty());
  }
  EXPECT_EQ(check(nines + " " + name + " DDDDDDDDD " + std::string(5000, '1')), -1);
  EXPECT_THAT(take_messages(), ElementsAre(fault("[" + nines + "] " + name + " : [D]")));
}

TEST_F(ThreadCheck, AsksTheListsAsTheyStand) {
  EXPECT_EQ(exceptionThreadCheck("(lumen-ui-host-n)"), 0);
  EXPECT_EQ(exceptionThreadCheck("(sensorapi)"), -1);
  EXPECT_EQ(monitorThreadCheck("(sensorapi)"), -1);
  EXPECT_EQ(monitorThreadCheck("(recorder)"), -1);
  for (const char* name : {"sensorapi", "(sensorapi", "(Sensorapi)", "(lumen-ui-host-n)", ""}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(monitorThreadCheck(name), 0);
  }
  const char* const exempt = std::exchange(exception_thread_list[0], "(AeMain)");
  EXPECT_EQ(check("1 (AeMain) D"), 0);
  EXPECT_EQ(check("1 (lumen-ui-host-n) D"), -1);
  exception_thread_list[0] = nullptr;
  EXPECT_EQ(exceptionThreadCheck("(AeMain)"), -1);
  exception_thread_list[0] = exempt;
  const char* const recorder = std::exchange(monitor_thread_list[0], nullptr);
  EXPECT_EQ(monitorThreadCheck("(sensorapi)"), 0);
  monitor_thread_list[0] = recorder;
}

TEST_F(ThreadCheck, FindsTheOneThreadOfTheApplicationThatHangs) {
  ORV_SKIP_WHEN_EMULATED("no wait is uninterruptible");
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const orv_test::background application{
      {"lumen-ui-host", "--hang-thread", "AeMain", "--ready-fd", std::to_string(ready[1])}};
  close(ready[1]);
  char byte = 0;
  EXPECT_EQ(read(ready[0], &byte, 1), 1) << "the application did not start";
  close(ready[0]);
  const std::string tasks = "/proc/" + std::to_string(application.pid()) + "/task";
  int threads = 0;
  int faults = 0;
  for (const auto& task : std::filesystem::directory_iterator{tasks}) {
    std::string line;
    std::getline(std::ifstream{task.path() / "stat"}, line);
    ++threads;
    if (CheckThread(line.data()) != 0) {
      ++faults;
      EXPECT_THAT(take_messages().back(), testing::HasSubstr("(AeMain) : [D]"));
    }
  }
  EXPECT_GT(threads, 50);
  EXPECT_EQ(faults, 1);
}

}  // namespace
