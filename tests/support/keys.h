// What a test sees of the store's keys.
#ifndef ORV_TESTS_SUPPORT_KEYS_H
#define ORV_TESTS_SUPPORT_KEYS_H

#include <gtest/gtest.h>
#include <stdlib.h>
#include <vconf.h>

#include <memory>
#include <string>
#include <utility>

#include "main_loop.h"

namespace orv_test {

// "(none)" when there is none.
inline std::string text_of(const char* key) {
  const std::unique_ptr<char, decltype(&free)> text{vconf_get_str(key), free};
  return text ? text.get() : "(none)";
}

// 99 when there is none.
inline int number_at(const char* key) {
  int number = 99;
  vconf_get_int(key, &number);
  return number;
}

// Counts a key's notifications while it lives.
class key_counter {
 public:
  explicit key_counter(std::string key) : key_{std::move(key)} {
    EXPECT_EQ(vconf_notify_key_changed(key_.c_str(), count, this), 0);
  }
  key_counter(const key_counter&) = delete;
  key_counter& operator=(const key_counter&) = delete;
  ~key_counter() { vconf_ignore_key_changed(key_.c_str(), count); }

  [[nodiscard]] bool reaches(int expected, int deadline_ms = 5000) const {
    return run_until([&] { return seen_ >= expected; }, deadline_ms);
  }
  [[nodiscard]] int seen() const { return seen_; }
  [[nodiscard]] const std::string& last_name() const { return name_; }
  [[nodiscard]] int last_type() const { return type_; }

 private:
  static void count(keynode_t* node, void* self) {
    auto& me = *static_cast<key_counter*>(self);
    ++me.seen_;
    me.name_ = vconf_keynode_get_name(node);
    me.type_ = vconf_keynode_get_type(node);
  }
  std::string key_;
  int seen_ = 0;
  std::string name_;
  int type_ = 0;
};

}  // namespace orv_test

#endif
