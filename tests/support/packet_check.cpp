#include "packet_check.h"

#include <algorithm>
#include <sstream>
#include <vector>

#include "store/packet_items.h"

namespace orv_test {
namespace {

constexpr size_t most_characters = 80095;

// Four for each number; a mark has none.
std::string bytes_of(const std::string& text) {
  const auto count = [&](char letter) { return std::count(text.begin(), text.end(), letter); };
  return std::to_string(4 * (count(',') - count('$')));
}

}  // namespace

std::string packet_fault(const std::string& packet) {
  const std::string header = "848," + bytes_of(packet) + ",";
  if (packet.size() > most_characters || !packet.starts_with(header)) {
    return std::to_string(packet.size()) + " characters that do not begin with " + header;
  }
  return orv_client::store::parse_items(packet.substr(header.size())) ? "" : "what is no item";
}

std::string without_times(const std::string& packet) {
  std::istringstream text{packet};
  std::vector<std::string> fields;
  for (std::string field; std::getline(text, field, ',');) {
    fields.push_back(field);
  }
  for (size_t at = 2; at + 3 < fields.size();) {
    fields[at + 2] = "T";
    const std::string& code = fields[at + 1];
    const size_t stack_fields = 4 + 6 * std::stoul(fields[at + 3]);
    at += code == "1" ? 5 : code == "2" ? 8 : stack_fields;
  }
  std::string joined;
  for (const std::string& field : fields) {
    joined += field + ",";
  }
  return joined;
}

}  // namespace orv_test
