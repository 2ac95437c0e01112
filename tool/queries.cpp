// What the target says of itself: its identity and its memory.

#include <nlohmann/json.hpp>
#include <utility>

#include "subcommands.h"
#include "text.h"

namespace orvctl {
namespace {

using nlohmann::ordered_json;

std::string table_of(const orv_identity& found) {
  const std::pair<const char*, std::string> rows[] = {
      {"category", found.category}, {"platform", found.platform},
      {"model", found.model},       {"board", found.board},
      {"firmware", found.firmware}, {"byte order", hexadecimal(found.byte_order)},
      {"build", found.build_type},  {"cis_no", std::to_string(found.cis_no)},
  };
  std::string table;
  for (const auto& [name, value] : rows) {
    table += format("%-10s  %s\n", name, printable(value).c_str());
  }
  return table;
}

std::string json_of(const orv_identity& found) {
  const ordered_json object{{"category", found.category},     {"platform", found.platform},
                            {"model", found.model},           {"board", found.board},
                            {"firmware", found.firmware},     {"byte_order", found.byte_order},
                            {"build_type", found.build_type}, {"cis_no", found.cis_no}};
  return json_text(object, 2);
}

std::string table_of(const orv_memory& found) {
  return format("total  %s (%u bytes)\n", memory_size(found.total_bytes).c_str(),
                found.total_bytes);
}

std::string json_of(const orv_memory& found) {
  return json_text({{"total_bytes", found.total_bytes}}, 2);
}

// Prints the record that an answer to the request holds.
template <class Record>
exit_status show(const context& shared, const orv_request& request,
                 const Record* orv_reply::*record) {
  const answer got = camera{shared}.ask(request, shared.timeout_ms());
  if (got) {
    const Record& found = *(got.get()->*record);
    shared.out.write(shared.json ? json_of(found) : table_of(found));
  }
  return got.status();
}

}  // namespace

void add_target(const subcommand& program, context& shared) {
  const subcommand target = program.add("target", "Ask the target who it is");
  target.flag("--json", shared.json, "Print a JSON object");
  target.run([&shared] { return show(shared, orv_identity_request(), &orv_reply::identity); });
}

void add_heap(const subcommand& program, context& shared) {
  const subcommand heap = program.add("heap", "Ask how much memory the target has");
  heap.footer(
      "The protocol carries 32 bits: of 4 GiB and more, the amount beyond the last whole\n"
      "4 GiB is shown.");
  heap.flag("--json", shared.json, "Print a JSON object");
  heap.run([&shared] { return show(shared, orv_memory_request(), &orv_reply::memory); });
}

}  // namespace orvctl
