#include "key_path.h"

#include <pthread.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/random.h>
#include <unistd.h>

#include <atomic>

namespace vconf {
namespace {

// Of this process: process ids repeat across process namespaces that share a store, random numbers
// do not. 0 where none was drawn yet, in a fork too.
std::atomic<uint64_t> own_id{0};

void forget_own_id() {
  own_id = 0;
}

uint64_t draw_id() {
  [[maybe_unused]] static const int registered = pthread_atfork(nullptr, nullptr, forget_own_id);
  uint64_t id = 0;
  if (getrandom(&id, sizeof id, 0) != static_cast<ssize_t>(sizeof id)) {
    id = static_cast<uint64_t>(getpid());
  }
  uint64_t none = 0;
  own_id.compare_exchange_strong(none, id);
  return own_id;
}

uint64_t process_id() {
  const uint64_t known = own_id.load(std::memory_order_relaxed);
  return known != 0 ? known : draw_id();
}

}  // namespace

path_text value_path(std::string_view key) {
  path_text path;
  snprintf(path.text, sizeof path.text, "%.*s/.value", static_cast<int>(key.size()), key.data());
  return path;
}

path_text temporary_path(std::string_view key) {
  static std::atomic<uint32_t> writes{0};
  path_text path;
  snprintf(path.text, sizeof path.text, "%.*s/.t%016llx%08x", static_cast<int>(key.size()),
           key.data(), static_cast<unsigned long long>(process_id()), writes.fetch_add(1));
  return path;
}

}  // namespace vconf
