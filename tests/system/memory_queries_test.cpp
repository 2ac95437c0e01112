// The memory and the stack query, asked as a user does, in a camera with its application.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>

#include "mapping.h"
#include "process.h"

namespace {

using nlohmann::json;
using orv_test::eventually;
using orv_test::mapping;
using orv_test::run;
using testing::HasSubstr;
namespace fs = std::filesystem;

class MemoryQueries : public testing::Test {
 protected:
  void SetUp() override {
    host_ = std::make_unique<orv_test::background>(std::vector<std::string>{"orv-host"});
    ASSERT_TRUE(eventually([] {
      return run({"orvctl", "--timeout", "0.1", "target"}).status == 0;
    }));
  }

  std::unique_ptr<orv_test::background> host_;
};

// The last word but one. Empty for a thread that runs or is gone.
std::optional<uint64_t> stack_pointer(const fs::path& task) {
  std::ifstream text{task / "syscall"};
  std::string before;
  std::string last;
  for (std::string word; text >> word; last = word) {
    before = last;
  }
  return before.starts_with("0x") ? std::optional{std::stoull(before, nullptr, 16)} : std::nullopt;
}

std::optional<mapping> stack_of(const fs::path& task) {
  const auto pointer = stack_pointer(task);
  return pointer ? orv_test::mapping_of(task / "maps", *pointer) : std::nullopt;
}

std::map<int, mapping> kernels_view() {
  std::map<int, mapping> stacks;
  std::error_code gone;
  for (const auto& process : fs::directory_iterator{"/proc"}) {
    for (const auto& task : fs::directory_iterator{process.path() / "task", gone}) {
      if (const auto stack = stack_of(task.path())) {
        stacks[std::stoi(task.path().filename())] = *stack;
      }
    }
  }
  return stacks;
}

TEST_F(MemoryQueries, TellEveryStackAsTheKernelSeesIt) {
  if (!stack_of("/proc/1/task/1")) {
    GTEST_SKIP() << "this user may not see the stacks of other processes";
  }
  const auto before = kernels_view();
  const json answer = json::parse(run({"orvctl", "stack", "--json"}).out);
  const auto after = kernels_view();
  int compared = 0;
  for (const json& thread : answer["threads"]) {
    SCOPED_TRACE(thread.dump());
    const auto seen = before.find(thread["tid"]);
    const auto seen_again = after.find(thread["tid"]);
    // What ended, ran another program or grew meanwhile is left out.
    if (seen == before.end() || seen_again == after.end() || seen->second != seen_again->second) {
      continue;
    }
    EXPECT_EQ(thread["base"], static_cast<uint32_t>(seen->second.start));
    EXPECT_EQ(thread["size_bytes"], seen->second.end - seen->second.start);
    ++compared;
  }
  EXPECT_GT(compared, 50) << "the application alone has more threads, and nearly all of them wait";
  EXPECT_EQ(answer["count"], answer["threads"].size());
}

TEST_F(MemoryQueries, PrintATableWithTheLargestStackMarked) {
  std::istringstream table{run({"orvctl", "stack", "--sort", "size"}).out};
  std::string line;
  std::getline(table, line);
  EXPECT_EQ(line, "    TID  NAME                  STACK        BASE");
  std::getline(table, line);
  EXPECT_THAT(line, testing::EndsWith("  largest"));
  EXPECT_EQ(run({"orvctl", "stack", "--sort", "pid"}).err,
            "orvctl: --sort: pid not in {base,name,size,tid}; see orvctl --help\n");
}

TEST_F(MemoryQueries, TellTheMemoryOfTheMachine) {
  std::ifstream meminfo{"/proc/meminfo"};
  std::string name;
  uint64_t total_kb = 0;
  meminfo >> name >> total_kb;
  const std::string bytes = std::to_string(static_cast<uint32_t>(total_kb * 1024));
  EXPECT_THAT(run({"orvctl", "heap"}).out, HasSubstr(" (" + bytes + " bytes)\n"));
  EXPECT_EQ(run({"orvctl", "heap", "--json"}).out, "{\n  \"total_bytes\": " + bytes + "\n}\n");
}

}  // namespace
