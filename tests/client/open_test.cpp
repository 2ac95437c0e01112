// Opening cameras: addresses, stores and their lock files.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "camera_host.h"

namespace {

namespace fs = std::filesystem;

using orv_test::ask;
using orv_test::camera_handle;
using orv_test::opening;
using orv_test::reply_handle;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// A fork opens them: each process can use one store only.
std::vector<std::string> openings_elsewhere(const std::vector<std::string>& addresses) {
  const std::string result = orv_test::store_directory() + ".result";
  orv_test::background other{[&]() -> int {
    std::ofstream out{result};
    for (const std::string& address : addresses) {
      out << opening(address.empty() ? nullptr : address.c_str()) << "\n";
    }
    return 0;
  }};
  EXPECT_EQ(other.wait(), 0);
  auto lines = orv_test::lines_of(std::ifstream{result});
  fs::remove(result);
  return lines;
}

std::string opening_elsewhere(const std::string& address) {
  const auto lines = openings_elsewhere({address});
  return lines.empty() ? "nothing" : lines.front();
}

class Opening : public testing::Test {
 protected:
  Opening() : directory_{orv_test::store_directory() + ".open"} {
    fs::create_directory(directory_);
    chmod(directory_.c_str(), 0700);
  }
  ~Opening() override { fs::remove_all(directory_); }

  std::string open() { return opening_elsewhere("store:" + directory_); }

  // As an agent leaves it.
  void start_agent() {
    orv_test::background agent{[this]() -> int {
      setenv("ORV_PLATFORM_ROOT", directory_.c_str(), 1);
      return vconf_set_int(VCONFKEY_ORV_RESULT, ORV_RESULT_NONE);
    }};
    EXPECT_EQ(agent.wait(), 0);
  }

  std::string directory_;
};

TEST_F(Opening, FindsNoCameraWhereNoAgentWasStarted) {
  EXPECT_EQ(open(), "1 5 store " + directory_ +
                        ": no agent has been started on it; is a host running on it?");
  EXPECT_FALSE(fs::exists(directory_ + "/.orv-tools"));
  fs::remove_all(directory_);
  EXPECT_EQ(open(),
            "1 5 store " + directory_ + ": No such file or directory; is a host running on it?");
  EXPECT_FALSE(fs::exists(directory_)) << "made";
}

TEST_F(Opening, RefusesAStoreThatOthersCanReach) {
  start_agent();
  EXPECT_EQ(open(), "open");
  chmod(directory_.c_str(), 0755);
  EXPECT_EQ(open(), "1 6 store " + directory_ +
                        " is open to others (mode 0755); close it with chmod 700 or name another "
                        "root");
  EXPECT_THAT(opening_elsewhere("store:/etc/passwd"), StartsWith("1 6 store /etc/passwd is not a"));
}

TEST_F(Opening, RefusesAPlantedLockFile) {
  start_agent();
  const std::string lock = directory_ + "/.orv-tools";
  const std::string victim = orv_test::store_directory() + "/victim";
  std::ofstream{victim} << "precious";
  const std::pair<const char*, std::function<int()>> rows[] = {
      {"is a symbolic link", [&] { return symlink(victim.c_str(), lock.c_str()); }},
      {"has 2 links", [&] { return link(victim.c_str(), lock.c_str()); }},
      {"is no regular file", [&] { return mkfifo(lock.c_str(), 0600); }},
      {"cannot be opened", [&] { return mkdir(lock.c_str(), 0700); }},
      {"is open to others",
       [&] { return close(creat(lock.c_str(), 0600)) | chmod(lock.c_str(), 0644); }},
  };
  chmod(victim.c_str(), 0600);
  for (const auto& [fault, plant] : rows) {
    SCOPED_TRACE(fault);
    ASSERT_EQ(plant(), 0);
    EXPECT_THAT(open(),
                AllOf(StartsWith("1 6 store " + lock + " " + fault), EndsWith("; remove it")));
    fs::remove(lock);
  }
  EXPECT_EQ(orv_test::lines_of(std::ifstream{victim}).front(), "precious");
  fs::remove(victim);
  EXPECT_EQ(open(), "open");
  struct stat made {};
  ASSERT_EQ(stat(lock.c_str(), &made), 0);
  EXPECT_EQ(made.st_mode & 07777U, 0600U);
}

TEST_F(Opening, ReachesOneStoreAProcess) {
  start_agent();
  // What is not there decides nothing.
  EXPECT_THAT(
      openings_elsewhere({"store:/nonexistent/store", "store:" + directory_,
                          "store:" + directory_ + "/.", "store:" + orv_test::store_directory()}),
      ElementsAre(StartsWith("1 5 "), "open", "open",
                  "1 4 store " + orv_test::store_directory() + ": this process uses the store " +
                      directory_ + ", and a process can use one only"));
}

TEST(Address, IsRefusedByName) {
  EXPECT_EQ(opening("/dev/shm/store"), "1 2 \"/dev/shm/store\" is no address, as in store:DIR");
  EXPECT_EQ(opening("fax:12"), "1 3 fax:12: no carrier for \"fax:\"; there is: model, store");
  EXPECT_THAT(opening("../fax:12"), StartsWith("1 3 "));
  EXPECT_THAT(opening("model:shy"), HasSubstr("\"silent\""));
}

TEST(Model, AnswersWithinTheProcess) {
  const camera_handle model{orv_camera_open("model:", nullptr)};
  ASSERT_TRUE(model);
  EXPECT_STREQ(ask(model, orv_identity_request())->identity->model, "MODEL-ONE");
  EXPECT_EQ(ask(model, orv_threads_request())->threads->listed, 2U);
  EXPECT_EQ(ask(model, orv_key_request(ORV_KEY_TAP, "KEY_OK"))->outcome, ORV_RAN);
  const std::pair<const char*, orv_why> rows[] = {{"model:silent", ORV_WHY_NO_ANSWER},
                                                  {"model:slow", ORV_WHY_NO_ANSWER},
                                                  {"model:failing", ORV_WHY_NONE}};
  for (const auto& [address, why] : rows) {
    SCOPED_TRACE(address);
    const camera_handle camera{orv_camera_open(address, nullptr)};
    const reply_handle reply = ask(camera, orv_health_request(), 50);
    EXPECT_EQ(reply->why, why);
    EXPECT_EQ(reply->result, why == ORV_WHY_NONE ? -1 : 0);
  }
}

}  // namespace
