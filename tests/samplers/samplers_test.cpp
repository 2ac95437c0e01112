#include <fcntl.h>
#include <gmock/gmock.h>
#include <malloc.h>
#include <orv/command.h>
#include <orv/cpu.h>
#include <orv/protocol.h>
#include <orv/stack.h>
#include <stdlib.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "agent_probe.h"
#include "fed_programs.h"
#include "private_mounts.h"
#include "process.h"

namespace {

using orv_test::fed_programs;
using orv_test::mounted;
using orv_test::take_messages;
using testing::ElementsAre;
namespace fs = std::filesystem;

constexpr char lister_file[] = "/tmp/stackmon";
constexpr char lister[] = "ps -eLo pid,tid,pcpu,esp,comm,state";
constexpr char heading[] = "  PID   TID %CPU      ESP COMMAND         S\n";

// A camera of one thread, where anything may be planted in /tmp.
class Samplers : public orv_test::AgentTest {
 protected:
  void SetUp() override {
    ORV_SKIP_WITHOUT_PRIVATE_MOUNTS();
    AgentTest::SetUp();
    tmp_.emplace(orv_test::memory_files{"mode=1777"}, "/tmp");
    fed_.feed_ps(std::string{heading} + "1 7 0.0 bef01234 worker S\n");
    fed_.feed_cat("/proc/1/task/7/maps", "bee00000-bee21000 rw-p 00000000 00:00 0  [stack]\n");
  }

  static std::string ask() { return orv_test::answer_of(orv_stack_handler); }

  // Neither sampler finds a thread, and no command but the lister was run.
  void expect_nothing() const {
    EXPECT_EQ(ask(), "523,0,");
    EXPECT_EQ(orv_get_cpu_info(result_cpu_info), 0);
    EXPECT_THAT(fed_.take_commands(), testing::Each(lister));
  }

  void expect_the_thread() const {
    EXPECT_EQ(ask(), "523,1,7,worker,135168,3202351104,$,");
    EXPECT_EQ(orv_get_cpu_info(result_cpu_info), 1);
  }

  std::optional<mounted> tmp_;
  fed_programs fed_;
};

TEST_F(Samplers, TakeTheSameThreadsFromTheSameLines) {
  fed_.feed_ps(std::string{heading} +
               " 10 10  1.5 befff000 lumen-ui-host S\n"
               " 10 11  0.0 0befd000 lumen-ui-host2  R\n"
               " 20 20  0.0 00000000 kthreadd        S\n"
               " 30 30 99.9 bef01234 two words       D\n"
               " 40 40  0.0 bef01234 ps              R\n"
               " 30 31  0.0 bef01234                 R\n"
               "$(touch${IFS}/tmp/pwned) 50 0.0 bef01234 evil S\n"
               " 60 60;reboot 0.0 bef01234 evil S\n");
  const std::string two_stacks =
      "00008000-00009000 r-xp 00000000 00:00 0  /bin/app\n"
      "0be00000-0be21000 rw-p 00000000 00:00 0  [stack:11]\n"
      "bee00000-bee21000 rw-p 00000000 00:00 0  [stack]\n";
  fed_.feed_cat("/proc/10/task/10/maps", two_stacks);
  fed_.feed_cat("/proc/10/task/11/maps", two_stacks);
  fed_.feed_cat("/proc/30/task/30/maps", two_stacks);

  ASSERT_EQ(orv_get_stack_info(result_stack_info), 4);
  EXPECT_THAT(take_messages(),
              ElementsAre("I 10  10   1.5    3204444160         3202351104         3202486272      "
                          "   135168       S   lumen-ui-host",
                          "I 10  11   0.0    200265728         3202351104         3202486272      "
                          "   135168       R   lumen-ui-host2",
                          "I 30  30   99.9    3203404340         199229440         199364608      "
                          "   135168       w   two",
                          "I 30  31   0.0    3203404340         0         0         0       R   "));
  EXPECT_THAT(fed_.take_commands(),
              ElementsAre(lister, "cat /proc/10/task/10/maps", "cat /proc/10/task/11/maps",
                          "cat /proc/30/task/30/maps", "cat /proc/30/task/31/maps"));
  EXPECT_EQ(result_stack_info[1].state[1], '\0');

  ASSERT_EQ(orv_get_cpu_info(result_cpu_info), 4);
  EXPECT_THAT(take_messages(),
              ElementsAre("I 10      S\n     lumen-ui-host", "I 11      R\n     lumen-ui-host2",
                          "I 30      words     two", "I 31      R\n     "));
  EXPECT_THAT(fed_.take_commands(), ElementsAre(lister));
  EXPECT_FALSE(fs::exists("/tmp/pwned"));
}

TEST_F(Samplers, TakeLongLinesInPiecesOf81Characters) {
  std::string first = "1 7 0.0 bef01234 worker S";
  first.resize(81, ' ');
  fed_.feed_ps(first + "1 8 0.0 bef01234 other R\n");
  ASSERT_EQ(orv_get_cpu_info(result_cpu_info), 2);
  EXPECT_STREQ(result_cpu_info[0].state, "S");
  EXPECT_EQ(result_cpu_info[1].tid, 8);
  EXPECT_STREQ(result_cpu_info[1].state, "R\n");
}

TEST_F(Samplers, RecordAThreadWhoseStackIsNotToldWithoutOne) {
  fed_.feed_ps("1 7 0.0 bef01234 worker S\n1 8 0.0 bef01234 gone S\n1 9 0.0 bef01234 wide S\n");
  fed_.feed_cat("/proc/1/task/9/maps", "7ffd1c2e4000-7ffd1c305000 rw-p [stack]\n");
  EXPECT_EQ(ask(), "523,3,7,worker,135168,3202351104,$,8,gone,0,0,$,9,wide,0,0,$,");
}

TEST_F(Samplers, FindNothingInWhatIsNoListing) {
  std::mt19937 random{1};
  std::string noise(100000, '\0');
  std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random()); });
  for (const std::string& listing : {std::string{}, std::string{heading}, noise,
                                     std::string(100000, 'x'), std::string(1000, '\n')}) {
    fed_.feed_ps(listing);
    expect_nothing();
  }
}

void write_mode(fs::perms permissions) {
  std::ofstream{lister_file} << std::string(100, 'x');
  fs::permissions(lister_file, permissions);
}

struct stat file_status() {
  struct stat status {};
  EXPECT_EQ(lstat(lister_file, &status), 0);
  return status;
}

TEST_F(Samplers, KeepAFileThatOnlyTheyCanWriteTo) {
  write_mode(fs::perms{0644});
  const ino_t kept = file_status().st_ino;
  expect_the_thread();
  EXPECT_EQ(file_status().st_ino, kept);
}

TEST_F(Samplers, ReplaceWhatWasPlantedInTheirFilesPlace) {
  std::ofstream{"/tmp/victim"} << "precious";
  const std::function<void()> plants[] = {
      [] { fs::create_symlink("/tmp/victim", lister_file); },
      [] { fs::create_hard_link("/tmp/victim", lister_file); },
      [] { mkfifo(lister_file, S_IRWXU); },
      [] { write_mode(fs::perms{0620}); },
      [] { write_mode(fs::perms{0602}); },
      [] {
        write_mode(fs::perms{0600});
        [[maybe_unused]] const int refused = chown(lister_file, 1, 1);  // to an ordinary user
      },
  };
  for (const auto& plant : plants) {
    fs::remove(lister_file);
    plant();
    expect_the_thread();
    EXPECT_EQ(file_status().st_mode, S_IFREG | S_IRUSR | S_IWUSR);
    EXPECT_EQ(file_status().st_uid, geteuid());
  }
  EXPECT_EQ(fs::file_size("/tmp/victim"), 8U);
}

TEST_F(Samplers, FindNothingWhereTheyCannotHaveAFile) {
  testing::internal::CaptureStderr();  // the shell complains
  fs::create_directory(lister_file);
  expect_nothing();
  EXPECT_TRUE(fs::is_directory(lister_file));
  {
    const mounted read_only{orv_test::memory_files{"", MS_RDONLY}, "/tmp"};
    expect_nothing();
  }
  testing::internal::GetCapturedStderr();
}

TEST_F(Samplers, FindNothingWhenTheirFileIsTakenAway) {
  fed_.then_ps_runs("mv /tmp/stackmon /tmp/elsewhere");
  expect_nothing();
  fed_.then_ps_runs("mv /tmp/stackmon /tmp/elsewhere; ln -s /tmp/elsewhere /tmp/stackmon");
  expect_nothing();
}

TEST_F(Samplers, TakeTheWholeLinesThatAFullFileSystemHolds) {
  std::string listing;
  const std::string line = "1 7 0.0 bef01234 two words S\n";
  while (listing.size() < 8192) {
    listing += line;
  }
  fed_.feed_ps(listing);
  const mounted small{orv_test::memory_files{"size=4k"}, "/tmp"};
  testing::internal::CaptureStderr();
  EXPECT_EQ(orv_get_cpu_info(result_cpu_info), static_cast<int>(4096 / line.size()));
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(fs::file_size(lister_file), 4096U);
}

// From now on the process can open one more descriptor: a file, but no pipe.
class one_descriptor_left {
 public:
  one_descriptor_left() {
    getrlimit(RLIMIT_NOFILE, &before_);
    for (int i = 0; i < 32; ++i) {  // the shell's own lie below
      held_.push_back(open("/dev/null", O_RDONLY | O_CLOEXEC));
    }
    const rlimit tight{static_cast<rlim_t>(held_.back()) + 2, before_.rlim_max};
    setrlimit(RLIMIT_NOFILE, &tight);
  }
  one_descriptor_left(const one_descriptor_left&) = delete;
  one_descriptor_left& operator=(const one_descriptor_left&) = delete;
  ~one_descriptor_left() {
    setrlimit(RLIMIT_NOFILE, &before_);
    for (const int fd : held_) {
      close(fd);
    }
  }

 private:
  rlimit before_{};
  std::vector<int> held_;
};

TEST_F(Samplers, FillNoMoreThanTheArrayOf5000ThreadsWithoutStacks) {
  std::string listing = heading;
  for (int tid = 1; tid <= 5000; ++tid) {
    listing += "1 " + std::to_string(tid) + " 0.0 bef01234 many S\n";
  }
  fed_.feed_ps(listing);
  EXPECT_EQ(orv_get_cpu_info(result_cpu_info), 4096);
  EXPECT_EQ(result_cpu_info[4095].tid, 4096);
  take_messages();

  result_stack_info[0].stack_size = 1;
  testing::internal::CaptureStderr();
  {
    const one_descriptor_left tight;
    EXPECT_EQ(orv_get_stack_info(result_stack_info), 4096);
  }
  testing::internal::GetCapturedStderr();
  const std::vector<std::string> messages = take_messages();
  ASSERT_EQ(messages.size(), 2 * 4096U);
  EXPECT_EQ(messages[0], "E Failed to run command");
  EXPECT_EQ(messages[1], "I 1  1   0.0    3203404340         0         0         0       S   many");
  EXPECT_EQ(result_stack_info[4095].tid, 4096);
}

TEST_F(Samplers, AnswerAndLogThreadByThread) {
  expect_the_thread();
  const auto messages = take_messages();
  ASSERT_EQ(messages.size(), 8U);
  EXPECT_THAT(std::vector(messages.begin() + 1, messages.end() - 1),
              ElementsAre("I TASK ID:      7", "I TASK NAME:    worker", "I TASK SIZE:    135168",
                          "I Base POINTER: -1092616192", "I ", "I end- "));
}

TEST_F(Samplers, AnswerWithTheGroupsThatFitAndTheWholeCount) {
  const std::string name(30, 'n');
  std::string listing;
  std::string answer = "523,101,";
  for (int tid = 1000; tid < 1100; ++tid) {
    listing += "1 " + std::to_string(tid) + " 0.0 bef01234 " + name + " S\n";
    answer += tid < 1097 ? std::to_string(tid) + "," + name + ",0,0,$," : "";
  }
  fed_.feed_ps_alone(listing + "1 2 0.0 bef01234 n S\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(ask(), answer) << "or a short group jumped the queue";
  testing::internal::GetCapturedStderr();
}

TEST_F(Samplers, LeaveNothingBehind) {
  const auto repeat = [](int times) {
    for (int i = 0; i < times; ++i) {
      EXPECT_EQ(ask(), "523,1,7,worker,0,0,$,");
      orv_test::answer_of(orv_heap_handler);
      orv_test::take_log();
      orv_test::take_writes();
    }
  };
  fed_.feed_ps_alone("1 7 0.0 bef01234 worker S\n");
  testing::internal::CaptureStderr();
  repeat(10);
  const auto descriptors = orv_test::count_descriptors();
  const size_t memory_before = mallinfo2().uordblks;
  repeat(1000);
  EXPECT_EQ(orv_test::count_descriptors(), descriptors);
  EXPECT_LT(mallinfo2().uordblks, memory_before + 8000);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a child was left";
  testing::internal::GetCapturedStderr();
}

}  // namespace
