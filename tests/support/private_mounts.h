// Mounts that this test process alone sees.
#ifndef ORV_TESTS_SUPPORT_PRIVATE_MOUNTS_H
#define ORV_TESTS_SUPPORT_PRIVATE_MOUNTS_H

#include <string>

namespace orv_test {

// Moves the process into mounts of its own, once; false where the kernel refuses. Call it before
// the process has a second thread.
bool have_private_mounts();

// An empty file system in memory.
struct memory_files {
  std::string options;      // as in "size=4k"
  unsigned long flags = 0;  // of mount(2)
};

// A mount that goes when this goes. Without private mounts it only fails the test.
class mounted {
 public:
  // A file or directory shown at another path.
  mounted(const std::string& source, const std::string& place);
  mounted(const memory_files& files, const std::string& place);
  mounted(const mounted&) = delete;
  mounted& operator=(const mounted&) = delete;
  ~mounted();

 private:
  mounted(const char* source, const std::string& place, const char* type, unsigned long flags,
          const std::string& options);

  std::string place_;
  bool is_mounted_;
};

}  // namespace orv_test

#endif
