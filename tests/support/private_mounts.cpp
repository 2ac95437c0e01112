#include "private_mounts.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <string.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>

namespace orv_test {
namespace {

void write_file(const char* path, const std::string& text) {
  std::ofstream{path} << text;
}

// An ordinary user may mount only as the root of a user namespace.
bool become_root() {
  const std::string uid = std::to_string(geteuid());
  const std::string gid = std::to_string(getegid());
  if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
    return false;
  }
  write_file("/proc/self/setgroups", "deny");
  write_file("/proc/self/uid_map", "0 " + uid + " 1");
  write_file("/proc/self/gid_map", "0 " + gid + " 1");
  return true;
}

}  // namespace

bool have_private_mounts() {
  static const bool have = (unshare(CLONE_NEWNS) == 0 || become_root()) &&
                           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
  return have;
}

mounted::mounted(const char* source, const std::string& place, const char* type,
                 unsigned long flags, const std::string& options)
    : place_{place},
      is_mounted_{have_private_mounts() &&
                  mount(source, place.c_str(), type, flags, options.c_str()) == 0} {
  EXPECT_TRUE(is_mounted_) << place << ": " << strerror(errno);
}

mounted::mounted(const std::string& source, const std::string& place)
    : mounted{source.c_str(), place, nullptr, MS_BIND, ""} {}

mounted::mounted(const memory_files& files, const std::string& place)
    : mounted{"tmpfs", place, "tmpfs", files.flags, files.options} {}

mounted::~mounted() {
  if (is_mounted_) {
    umount2(place_.c_str(), MNT_DETACH);
  }
}

}  // namespace orv_test
