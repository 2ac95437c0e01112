// Mounts that this test process alone sees.
#ifndef ORV_TESTS_SUPPORT_PRIVATE_MOUNTS_H
#define ORV_TESTS_SUPPORT_PRIVATE_MOUNTS_H

#include <gtest/gtest.h>
#include <sched.h>
#include <string.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>
#include <string>

namespace orv_test {

// An ordinary user may mount only as the root of a user namespace.
inline bool become_root() {
  const std::string uid = std::to_string(geteuid());
  const std::string gid = std::to_string(getegid());
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
    return false;
  }
  std::ofstream{"/proc/self/setgroups"} << "deny";
  std::ofstream{"/proc/self/uid_map"} << "0 " + uid + " 1";
  std::ofstream{"/proc/self/gid_map"} << "0 " + gid + " 1";
  return true;
}

// Moves the process into mounts of its own, once; false where the kernel refuses. Call it before
// the process has a second thread.
inline bool have_private_mounts() {
  static const bool have = (unshare(CLONE_NEWNS) == 0 || become_root()) &&
                           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
  return have;
}

#define ORV_SKIP_WITHOUT_PRIVATE_MOUNTS() \
  if (!orv_test::have_private_mounts()) GTEST_SKIP() << "the kernel refuses private mounts"

// An empty file system in memory.
struct memory_files {
  std::string options;      // as in "size=4k"
  unsigned long flags = 0;  // of mount(2)
};

// A mount that goes when this goes. Without private mounts it only fails the test.
class mounted {
 public:
  // A file or directory shown at another path.
  mounted(const std::string& source, const std::string& place)
      : mounted{source.c_str(), place, nullptr, MS_BIND, ""} {}
  mounted(const memory_files& files, const std::string& place)
      : mounted{"tmpfs", place, "tmpfs", files.flags, files.options} {}
  mounted(const mounted&) = delete;
  mounted& operator=(const mounted&) = delete;
  ~mounted() {
    if (is_mounted_) {
      umount2(place_.c_str(), MNT_DETACH);
    }
  }

 private:
  mounted(const char* source, const std::string& place, const char* type, unsigned long flags,
          const std::string& options)
      : place_{place},
        is_mounted_{have_private_mounts() &&
                    mount(source, place.c_str(), type, flags, options.c_str()) == 0} {
    EXPECT_TRUE(is_mounted_) << place << ": " << strerror(errno);
  }

  std::string place_;
  bool is_mounted_;
};

}  // namespace orv_test

#endif
