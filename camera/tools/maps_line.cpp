#include "maps_line.h"

#include <algorithm>

#include "text.h"

namespace orv::camera {
namespace {

bool take_prefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

std::string_view take_digits(std::string_view& text) {
  const std::string_view digits = text.substr(0, text.find_first_not_of("0123456789"));
  text.remove_prefix(digits.size());
  return digits;
}

}  // namespace

std::optional<mapping> parse_mapping(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  const std::string_view range = take_word(line);
  const std::size_t hyphen = range.find('-');
  if (hyphen == range.npos) return std::nullopt;
  const auto start = to_number(range.substr(0, hyphen), 16);
  const auto end = to_number(range.substr(hyphen + 1), 16);
  const std::string_view permissions = take_word(line);
  const std::string_view offset = take_word(line), device = take_word(line);
  const std::string_view inode = take_word(line);
  if (!start || !end || offset.empty() || device.empty() || inode.empty()) return std::nullopt;

  const char* inode_end = inode.data() + inode.size();
  const auto details_length = static_cast<std::size_t>(inode_end - permissions.data());
  line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
  return mapping{*start, *end, {permissions.data(), details_length}, line};
}

std::string_view name_for_thread(const mapping& mapping,
                                 std::optional<std::uint64_t> stack_address) {
  if (stack_address && mapping.start <= *stack_address && *stack_address < mapping.end) {
    return "[stack]";
  }
  // Some libraries name the stacks that they allocate: "[anon: glibc: pthread stack: 42]".
  const bool marks_a_stack =
      mapping.name.starts_with('[') && mapping.name.find("stack") != mapping.name.npos;
  return marks_a_stack ? std::string_view{} : mapping.name;
}

void print_mapping(FILE* out, const mapping& mapping) {
  constexpr int name_column = 49;  // where a 32-bit kernel puts it
  const int length = fprintf(out, "%08x-%08x %.*s ", static_cast<std::uint32_t>(mapping.start),
                             static_cast<std::uint32_t>(mapping.end),
                             static_cast<int>(mapping.details.size()), mapping.details.data());
  if (!mapping.name.empty()) {
    fprintf(out, "%*s%.*s", std::max(name_column - length, 1), "",
            static_cast<int>(mapping.name.size()), mapping.name.data());
  }
  fputc('\n', out);
}

std::optional<maps_file> parse_maps_path(std::string_view path) {
  if (!take_prefix(path, "/proc/")) return std::nullopt;
  maps_file file{take_digits(path), std::nullopt};
  if (file.pid.empty()) return std::nullopt;
  if (take_prefix(path, "/task/")) file.tid = take_digits(path);
  if (path != "/maps" || (file.tid && file.tid->empty())) return std::nullopt;
  return file;
}

}  // namespace orv::camera
