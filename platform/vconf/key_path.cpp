#include "key_path.h"

#include <stdint.h>
#include <stdio.h>
#include <sys/random.h>
#include <unistd.h>

#include <atomic>

namespace vconf {
namespace {

// Process ids repeat across process namespaces that share a store, random numbers do not.
uint64_t random_id() {
  uint64_t id = 0;
  if (getrandom(&id, sizeof id, 0) != static_cast<ssize_t>(sizeof id)) {
    id = static_cast<uint64_t>(getpid());
  }
  return id;
}

}  // namespace

path_text value_path(std::string_view key) {
  path_text path;
  snprintf(path.text, sizeof path.text, "%.*s/.value", static_cast<int>(key.size()), key.data());
  return path;
}

path_text temporary_path(std::string_view key) {
  static const uint64_t process_id = random_id();
  static std::atomic<uint32_t> writes{0};
  path_text path;
  snprintf(path.text, sizeof path.text, "%.*s/.t%016llx%08x", static_cast<int>(key.size()),
           key.data(), static_cast<unsigned long long>(process_id), writes.fetch_add(1));
  return path;
}

}  // namespace vconf
