#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>
#include <vconf.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "keys.h"
#include "main_loop.h"
#include "process.h"

namespace {

namespace fs = std::filesystem;
using orv_test::background;
using orv_test::key_counter;
using orv_test::run_until;
using orv_test::text_of;

fs::path root() {
  return getenv("ORV_PLATFORM_ROOT");
}

int number_of(const char* key) {
  int number = 12345;
  const int outcome = vconf_get_int(key, &number);
  EXPECT_TRUE(outcome == 0 || number == 12345) << "touched on failure";
  return outcome == 0 ? number : outcome;
}

class Store : public testing::Test {
 protected:
  void SetUp() override { fs::remove_all(root()); }
};

TEST_F(Store, KeepsEveryValueExactly) {
  for (const int number : {0, -1, INT_MAX, INT_MIN}) {
    ASSERT_EQ(vconf_set_int("memory/a/int", number), 0);
    EXPECT_EQ(number_of("memory/a/int"), number);
  }
  std::string bytes;
  for (int c = 1; c < 256; ++c) {
    bytes.push_back(static_cast<char>(c));
  }
  for (const size_t length : {0U, 1U, 1023U, 1024U, 4095U, 4096U, 131072U, 1048576U}) {
    SCOPED_TRACE(length);
    std::string text;
    while (text.size() < length) {
      text += bytes.substr(0, length - text.size());
    }
    ASSERT_EQ(vconf_set_str("memory/a/text", text.c_str()), 0);
    EXPECT_TRUE(text_of("memory/a/text") == text);
  }
  EXPECT_LT(vconf_set_str("memory/a/text", std::string(1048577, 'x').c_str()), 0);
  EXPECT_EQ(text_of("memory/a/text").size(), 1048576U);
}

TEST_F(Store, TellsAMissingKeyFromOneOfAnotherType) {
  EXPECT_EQ(number_of("memory/none"), VCONF_ERROR_STORE);  // not even a root
  ASSERT_EQ(vconf_set_str("memory/text", "12"), 0);
  ASSERT_EQ(vconf_set_int("memory/int", 12), 0);
  EXPECT_EQ(number_of("memory/none"), VCONF_ERROR_NO_KEY);
  EXPECT_EQ(number_of("memory/text"), VCONF_ERROR_TYPE);
  EXPECT_EQ(text_of("memory/int"), "(none)");
  EXPECT_EQ(number_of("memory"), VCONF_ERROR_NO_KEY);
}

TEST_F(Store, RefusesAtOnceWhatIsNoRegularFile) {
  const fs::path place = root() / "memory/odd/.value";
  const std::string full(4096, 'x');  // what one read of the store may take
  const auto make_fifo_with = [&](size_t size) {
    const int fd = mkfifo(place.c_str(), 0600) == 0 ? open(place.c_str(), O_RDWR) : -1;
    EXPECT_EQ(write(fd, full.data(), size), static_cast<ssize_t>(size));
    return fd;
  };
  const auto read_both = [] {
    return number_of("memory/odd") == VCONF_ERROR_STORE && text_of("memory/odd") == "(none)" ? 0
                                                                                             : 1;
  };
  const std::pair<const char*, std::function<int()>> rows[] = {
      {"fifo", [&] { return mkfifo(place.c_str(), 0600); }},
      {"fifo that holds bytes", [&] { return make_fifo_with(full.size()); }},
      {"directory", [&] { return mkdir(place.c_str(), 0700); }},
      {"empty file", [&] { return creat(place.c_str(), 0600); }},
  };
  fs::create_directories(place.parent_path());
  fs::permissions(root(), fs::perms::owner_all);
  for (const auto& [name, make] : rows) {
    SCOPED_TRACE(name);
    const int descriptor = make();
    ASSERT_GE(descriptor, 0);
    background reader{read_both};
    EXPECT_EQ(reader.wait(1000), 0);
    if (descriptor > 0) {
      close(descriptor);
    }
    fs::remove(place);
  }
}

TEST_F(Store, ReadsNoMoreThanIsLeftOfAFileThatIsCut) {
  const fs::path place = root() / "memory/cut/.value";
  const std::string text(9000, 's');
  ASSERT_EQ(vconf_set_str("memory/cut", text.c_str()), 0);
  const background cutter{[&]() -> int {
    while (true) {
      fs::resize_file(place, 100);
      std::ofstream{place, std::ios::in} << 's' << text;
    }
  }};
  for (int i = 0; i < 20'000; ++i) {
    const std::string seen = text_of("memory/cut");
    ASSERT_TRUE(seen == "(none)" || text.starts_with(seen)) << seen.size();
  }
}

TEST_F(Store, RefusesNamesThatLeaveItsTree) {
  ASSERT_EQ(vconf_set_int("memory/a", 1), 0);
  const std::string long_part(256, 'x');
  std::string long_key = "x";
  while (long_key.size() < 1024) {
    long_key += "/x";
  }
  for (const std::string& key :
       {std::string{""}, std::string{"/memory/a"}, std::string{"memory/../a"}, std::string{".."},
        std::string{"memory//a"}, std::string{"memory/a/"}, std::string{"memory/./a"},
        std::string{"memory/.value"}, long_part, long_key}) {
    SCOPED_TRACE(key);
    EXPECT_LT(vconf_set_int(key.c_str(), 1), 0);
    EXPECT_LT(vconf_set_str(key.c_str(), "x"), 0);
    EXPECT_LT(number_of(key.c_str()), 0);
    EXPECT_LT(vconf_notify_key_changed(
                  key.c_str(), [](keynode_t*, void*) {}, nullptr),
              0);
  }
  EXPECT_FALSE(fs::exists(root().parent_path() / "a"));
}

TEST_F(Store, DeliversEveryWriteOnce) {
  const key_counter numbers{"memory/w/number"};
  const key_counter texts{"memory/w/text"};
  for (int i = 0; i < 500; ++i) {
    vconf_set_int("memory/w/number", 7);  // the same value, unread: must not merge
  }
  vconf_set_str("memory/w/text", "x");
  vconf_set_int("memory/w/number/below", 1);  // a key below a watched one is another key
  ASSERT_TRUE(texts.reaches(1));
  EXPECT_EQ(numbers.seen(), 500);
  EXPECT_EQ(texts.seen(), 1);
  EXPECT_EQ(numbers.last_name(), "memory/w/number");
  EXPECT_EQ(numbers.last_type(), VCONF_TYPE_INT);
  EXPECT_NE(texts.last_type(), VCONF_TYPE_INT);
}

TEST_F(Store, DeliversTheWritesOfOtherProcesses) {
  const key_counter seen{"memory/w"};
  const auto writer = [] {
    for (int i = 0; i < 300; ++i) {
      vconf_set_int("memory/w", i);
    }
    return 0;
  };
  background one{writer};
  background two{writer};
  ASSERT_TRUE(seen.reaches(600));
  EXPECT_EQ(one.wait(), 0);
  EXPECT_EQ(two.wait(), 0);
  EXPECT_FALSE(run_until([&] { return seen.seen() > 600; }, 50));
}

void ignore_itself(keynode_t* node, void* count) {
  ++*static_cast<int*>(count);
  vconf_ignore_key_changed(vconf_keynode_get_name(node), ignore_itself);
}

// The lines that the kernel prints of this process's marks.
std::vector<std::string> marks_on(const fs::path& directory) {
  struct stat status {};
  EXPECT_EQ(stat(directory.c_str(), &status), 0);
  std::ostringstream name;
  name << " ino:" << std::hex << status.st_ino << ' ';
  std::vector<std::string> marks;
  for (const auto& descriptor : fs::directory_iterator{"/proc/self/fdinfo"}) {
    for (const auto& line : orv_test::lines_of(std::ifstream{descriptor.path()})) {
      if (line.find(name.str()) != std::string::npos) {
        marks.push_back(line);
      }
    }
  }
  return marks;
}

void answer_request(keynode_t* /*node*/, void* /*user_data*/) {
  vconf_set_int("memory/answer", 1);
}

TEST_F(Store, HoldsWhatItAnswersSoThatNoReadersEndWaits) {
  ASSERT_EQ(vconf_notify_key_changed("memory/request", answer_request, nullptr), 0);
  const key_counter requests{"memory/request"};
  for (const char* removed : {"memory/none", "memory"}) {
    SCOPED_TRACE(removed);
    fs::remove_all(root() / removed);
    const int before = requests.seen();
    vconf_set_int("memory/request", 1);
    ASSERT_TRUE(requests.reaches(before + 1));
    // Of the directory's own end, so that no write wakes this process.
    EXPECT_THAT(marks_on(root() / "memory/answer"),
                testing::ElementsAre(testing::HasSubstr(" mask:400 ")));
  }
  vconf_ignore_key_changed("memory/request", answer_request);
  const key_counter answers{"memory/answer"};
  vconf_set_int("memory/answer", 2);
  EXPECT_TRUE(answers.reaches(1));
}

TEST_F(Store, EndsADeliveryWhenACallbackRemovesItself) {
  int calls = 0;
  ASSERT_EQ(vconf_notify_key_changed("memory/w", ignore_itself, &calls), 0);
  const key_counter other{"memory/w"};
  for (int i = 0; i < 3; ++i) {
    vconf_set_int("memory/w", i);
  }
  ASSERT_TRUE(other.reaches(3));
  EXPECT_EQ(calls, 1);
  EXPECT_LT(vconf_ignore_key_changed("memory/w", ignore_itself), 0);
}

TEST_F(Store, LooksAgainAfterTheEventQueueOverflowed) {
  std::ifstream limit_file{"/proc/sys/fs/inotify/max_queued_events"};
  int limit = 0;
  ASSERT_TRUE(limit_file >> limit);
  const key_counter flooded{"memory/flooded"};
  const key_counter late{"memory/late"};
  for (int i = 0; i < limit + 10; ++i) {
    ASSERT_EQ(vconf_set_int("memory/flooded", i), 0);
  }
  vconf_set_int("memory/late", 1);  // its event finds no room
  ASSERT_TRUE(late.reaches(1));
  const int before = flooded.seen();
  vconf_set_int("memory/flooded", 0);
  EXPECT_TRUE(flooded.reaches(before + 1));
}

TEST_F(Store, WatchesAgainAfterTheTreeWasRemoved) {
  const key_counter seen{"memory/deep/key"};
  for (const char* removed : {"memory/deep/key", "memory", ""}) {
    SCOPED_TRACE(removed);
    const int before = seen.seen();
    fs::remove_all(root() / removed);
    vconf_set_int("memory/deep/key", 1);
    ASSERT_TRUE(seen.reaches(before + 1));
    vconf_set_int("memory/deep/key", 2);
    ASSERT_TRUE(seen.reaches(before + 2));
    EXPECT_EQ(number_of("memory/deep/key"), 2);
  }
  fs::rename(root() / "memory/deep/key", root() / "memory/deep/moved");
  const int before = seen.seen();
  vconf_set_int("memory/deep/key", 3);
  EXPECT_TRUE(seen.reaches(before + 1));
}

TEST_F(Store, StaysWithItsRootWhenAnotherTakesItsName) {
  const key_counter seen{"memory/known"};
  const fs::path moved = root().string() + "-moved";
  fs::rename(root(), moved);
  fs::create_directories(root() / "memory/new");
  const key_counter seen_afterwards{"memory/new"};
  vconf_set_int("memory/known", 1);
  vconf_set_int("memory/new", 1);
  EXPECT_TRUE(seen.reaches(1));
  EXPECT_TRUE(seen_afterwards.reaches(1));
  fs::remove_all(root());
  fs::rename(moved, root());
}

TEST_F(Store, WatchesAgainOnceItsRootCanBeMade) {
  const key_counter seen{"memory/key"};
  fs::remove_all(root());
  std::ofstream{root()} << "in the way";
  EXPECT_FALSE(run_until([] { return false; }, 50));
  fs::remove(root());
  vconf_set_int("memory/key", 1);
  EXPECT_TRUE(seen.reaches(1));
}

// A value that says of itself whether it is whole.
std::string self_describing(uint32_t seed) {
  const size_t length = 1 + seed % 100'000;
  return std::to_string(length) + ":" + std::string(length, static_cast<char>('a' + seed % 26));
}

bool is_whole(const std::string& text) {
  const size_t colon = text.find(':');
  return colon != std::string::npos && text.size() - colon - 1 == std::stoul(text) &&
         text.find_first_not_of(text.back(), colon + 1) == std::string::npos;
}

int write_for_ever(uint32_t seed) {
  std::minstd_rand random{seed};
  while (true) {
    vconf_set_str("memory/hammer", self_describing(static_cast<uint32_t>(random())).c_str());
  }
}

TEST_F(Store, ShowsOnlyWholeValuesWhateverMomentAWriterIsKilledAt) {
  ASSERT_EQ(vconf_set_str("memory/hammer", "1:a"), 0);
  std::minstd_rand random{42};
  const auto new_writer = [&] {
    const auto seed = static_cast<uint32_t>(random());
    return std::make_unique<background>([seed] { return write_for_ever(seed); });
  };
  std::unique_ptr<background> writers[] = {new_writer(), new_writer()};
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds{3};
  auto next_kill = std::chrono::steady_clock::now();
  int reads = 0;
  int torn = 0;
  while (std::chrono::steady_clock::now() < deadline) {
    ++reads;
    torn += is_whole(text_of("memory/hammer")) ? 0 : 1;
    if (std::chrono::steady_clock::now() >= next_kill) {
      writers[random() % 2] = new_writer();  // the old one is killed
      next_kill = std::chrono::steady_clock::now() + std::chrono::milliseconds{3 + random() % 20};
    }
  }
  EXPECT_GT(reads, 50);
  EXPECT_EQ(torn, 0) << "of " << reads << " reads";
}

TEST_F(Store, SweepsWhatKilledWritersLeftBehind) {
  ASSERT_EQ(vconf_set_int("memory/orv/cmd", 1), 0);
  const fs::path old_file = root() / "memory/orv/cmd/.t0123";
  const fs::path new_file = root() / "memory/orv/cmd/.t4567";
  std::ofstream{old_file} << "i2";
  std::ofstream{new_file} << "i3";
  const utimbuf long_ago{1, 1};
  ASSERT_EQ(utime(old_file.c_str(), &long_ago), 0);
  for (int i = 0; i < 100 && fs::exists(old_file); ++i) {
    vconf_set_int("memory/orv/cmd", i);
  }
  EXPECT_FALSE(fs::exists(old_file));
  EXPECT_TRUE(fs::exists(new_file)) << "may be another writer's";
}

TEST_F(Store, RefusesARootThatOthersCanReach) {
  const fs::path path = root().string() + "-refused";
  const auto make_open_to = [&](mode_t mode) {
    return fs::create_directory(path) && chmod(path.c_str(), mode) == 0;
  };
  const std::pair<std::function<bool()>, const char*> rows[] = {
      {[&] { return make_open_to(0750); }, "is open to others (mode 0750)"},
      {[&] { return static_cast<bool>(std::ofstream{path} << "x"); }, "ot a directory"},
      {[&] { return symlink("/dev/shm", path.c_str()) == 0; }, "ot a directory"},
      {[&] { return symlink("nowhere", path.c_str()) == 0; }, "ot a directory"},
      // Only root can give a directory away.
      {[&] { return make_open_to(0700) && chown(path.c_str(), 12345, 12345) == 0; },
       "belongs to user 12345"},
  };
  for (const auto& [prepare, message] : rows) {
    SCOPED_TRACE(message);
    fs::remove_all(path);
    if (!prepare()) {
      EXPECT_STREQ(message, "belongs to user 12345");
      continue;
    }
    const auto told = orv_test::run({"orvctl", "--store", path, "target"});
    EXPECT_EQ(told.status, 4);
    EXPECT_THAT(told.err, testing::HasSubstr(message));
    EXPECT_EQ(std::count(told.err.begin(), told.err.end(), '\n'), 1) << told.err;
    const auto host = orv_test::run({"env", "ORV_PLATFORM_ROOT=" + path.string(), "orv-host"});
    EXPECT_EQ(host.status, 1);
    EXPECT_THAT(host.err, testing::HasSubstr(message));
  }
  fs::remove_all(path);
}

}  // namespace
