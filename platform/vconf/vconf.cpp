#include "vconf.h"

#include <limits.h>
#include <stdint.h>
#include <string.h>

#include <charconv>
#include <new>
#include <optional>

#include "notifier.h"
#include "value_file.h"

namespace {

std::optional<int> parse_integer(const char* text) {
  int32_t number = 0;
  const char* end = text + strlen(text);
  const auto [stop, error] = std::from_chars(text, end, number);
  return error == std::errc{} && stop == end ? std::optional{number} : std::nullopt;
}

}  // namespace

int vconf_get_int(const char* key, int* value) {
  vconf::value found{};
  const int outcome = vconf::read_value(key, found);
  if (outcome != 0) {
    return outcome;
  }
  const auto number =
      found.type == vconf::value_type::integer ? parse_integer(found.text()) : std::nullopt;
  if (!number) {
    return VCONF_ERROR_TYPE;
  }
  *value = *number;
  return 0;
}

char* vconf_get_str(const char* key) {
  vconf::value found{};
  if (vconf::read_value(key, found) != 0 || found.type != vconf::value_type::text) {
    return nullptr;
  }
  return found.long_text ? found.long_text.release() : strdup(found.short_text);
}

int vconf_set_int(const char* key, int value) {
  char text[16];
  const auto [end, error] = std::to_chars(text, text + sizeof text, value);
  return vconf::write_value(key, vconf::value_type::integer,
                            {text, static_cast<size_t>(end - text)});
}

int vconf_set_str(const char* key, const char* value) {
  if (value == nullptr) {
    return VCONF_ERROR_TYPE;
  }
  const std::string_view text{value};
  if (text.size() > vconf::max_value_size) {
    return VCONF_ERROR_STORE;
  }
  return vconf::write_value(key, vconf::value_type::text, text);
}

int vconf_notify_key_changed(const char* key, vconf_callback_fn callback, void* user_data) try {
  return vconf::add_registration(key, callback, user_data);
} catch (const std::bad_alloc&) {
  return VCONF_ERROR_STORE;
}

int vconf_ignore_key_changed(const char* key, vconf_callback_fn callback) {
  return vconf::remove_registrations(key, callback);
}

char* vconf_keynode_get_name(keynode_t* node) {
  return node->name;
}

int vconf_keynode_get_type(keynode_t* node) {
  vconf::value found{};
  const int outcome = vconf::read_value(node->name, found);
  if (outcome != 0) {
    return outcome;
  }
  return found.type == vconf::value_type::integer ? VCONF_TYPE_INT : VCONF_TYPE_STRING;
}
