#include "packet_check.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace orv_test {
namespace {

constexpr size_t most_characters = 80095;
constexpr size_t tick_field = 2;  // of every item

std::vector<std::string> split(const std::string& packet) {
  std::vector<std::string> fields;
  for (size_t at = 0; at < packet.size();) {
    const size_t comma = std::min(packet.find(',', at), packet.size());
    fields.push_back(packet.substr(at, comma - at));
    at = comma + 1;
  }
  return fields;
}

bool is_number(const std::string& field) {
  const std::string digits = field.substr(field.starts_with('-') ? 1 : 0);
  return !digits.empty() && digits.size() <= 10 &&
         digits.find_first_not_of("0123456789") == std::string::npos;
}

// A letter a field: "n" for any number, "$" for the mark, another digit for itself.
bool has_shape(const std::vector<std::string>& fields, size_t at, std::string_view shape) {
  for (const char letter : shape) {
    const bool fits = at < fields.size() &&
                      (letter == 'n' ? is_number(fields[at]) : fields[at] == std::string{letter});
    if (!fits) {
      return false;
    }
    ++at;
  }
  return true;
}

// How many fields the item that begins here has; 0 when it is none.
size_t item_length(const std::vector<std::string>& fields, size_t at) {
  if (has_shape(fields, at, "n1nn$") && fields[at] == "16") {
    return 5;
  }
  if (has_shape(fields, at, "n2n11n0$") && fields[at] == "28") {
    return 8;
  }
  if (!has_shape(fields, at, "n3nn")) {
    return 0;
  }
  const size_t groups = std::stoul(fields[at + 3]);
  for (size_t group = 0; group < groups; ++group) {
    if (!has_shape(fields, at + 4 + 6 * group, "nnnnn$")) {
      return 0;
    }
  }
  return fields[at] == std::to_string(16 + 20 * groups) ? 4 + 6 * groups : 0;
}

// Where the items begin; an item that is none ends the list.
std::vector<size_t> item_starts(const std::vector<std::string>& fields) {
  std::vector<size_t> starts;
  size_t at = 2;
  for (size_t length = 1; at < fields.size() && length != 0; at += length) {
    length = item_length(fields, at);
    starts.push_back(at);
  }
  return starts;
}

}  // namespace

std::string packet_fault(const std::string& packet) {
  if (packet.size() > most_characters) {
    return std::to_string(packet.size()) + " characters";
  }
  const std::vector<std::string> fields = split(packet);
  if (!packet.ends_with(',') || fields.size() < 2 || fields[0] != "848") {
    return "no header, or no comma at the end";
  }
  const std::vector<size_t> starts = item_starts(fields);
  if (!starts.empty() && item_length(fields, starts.back()) == 0) {
    return "no item at field " + std::to_string(starts.back()) + ": " + fields[starts.back()];
  }
  const auto numbers = std::count_if(fields.begin(), fields.end(), is_number);
  return fields[1] == std::to_string(4 * numbers)
             ? ""
             : "total " + fields[1] + ", but " + std::to_string(numbers) + " numbers";
}

std::string without_times(const std::string& packet) {
  std::vector<std::string> fields = split(packet);
  for (const size_t start : item_starts(fields)) {
    if (start + tick_field < fields.size()) {
      fields[start + tick_field] = "T";
    }
  }
  std::string text;
  for (const std::string& field : fields) {
    text += field + ",";
  }
  return text;
}

}  // namespace orv_test
