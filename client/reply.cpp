// Replies as their receivers get them.

#include <orv/protocol.h>

#include <string>
#include <vector>

#include "answers.h"
#include "camera.h"
#include "printable.h"

namespace orv_client {
namespace {

// A reply and all that its pointers lead to.
struct whole_reply : orv_reply {
  std::string own_text;
  std::string own_message;
  orv_client::identity who;
  orv_identity own_identity;
  orv_memory own_memory;
  thread_list found;
  std::vector<orv_thread> own_list;
  orv_threads own_threads;
};

bool take_identity(whole_reply& reply) {
  auto found = parse_identity(reply.own_text);
  if (found) {
    const orv_client::identity& who = reply.who = *std::move(found);
    reply.own_identity = {
        who.category.c_str(), who.platform.c_str(), who.model.c_str(),      who.board.c_str(),
        who.firmware.c_str(), who.byte_order,       who.build_type.c_str(), who.cis_no};
    reply.identity = &reply.own_identity;
  }
  return reply.identity != nullptr;
}

bool take_memory(whole_reply& reply) {
  if (const auto found = parse_memory(reply.own_text)) {
    reply.own_memory = {*found};
    reply.memory = &reply.own_memory;
  }
  return reply.memory != nullptr;
}

bool take_threads(whole_reply& reply) {
  auto found = parse_threads(reply.own_text);
  if (found) {
    reply.found = *std::move(found);
    for (const thread_stack& one : reply.found.threads) {
      reply.own_list.push_back({one.tid, one.name.c_str(), one.size_bytes, one.base});
    }
    reply.own_threads = {reply.own_list.data(), reply.own_list.size(), reply.found.sampled};
    reply.threads = &reply.own_threads;
  }
  return reply.threads != nullptr;
}

struct record_row {
  int32_t code;
  const char* what;
  bool (*take)(whole_reply& reply);
};

constexpr record_row records[] = {
    {ORV_COMMAND_TARGET_INFO, "target identity", take_identity},
    {ORV_COMMAND_HEAP_INFO, "memory summary", take_memory},
    {ORV_COMMAND_STACK_INFO, "thread list", take_threads},
};

void take_record(whole_reply& reply, int32_t code) {
  for (const record_row& row : records) {
    if (row.code == code && !row.take(reply)) {
      reply.why = ORV_WHY_BAD_ANSWER;
      reply.own_message =
          "the agent's answer is no " + std::string{row.what} + ": " + printable(reply.own_text);
    }
  }
}

}  // namespace

orv_reply* make_reply(const orv_reply& carried, int32_t code) noexcept try {
  auto made = std::make_unique<whole_reply>();
  static_cast<orv_reply&>(*made) = carried;
  made->own_message = carried.message;
  if (carried.outcome == ORV_RAN && carried.result != ORV_RESULT_OK && made->own_message.empty()) {
    made->own_message = "the agent answered " + std::to_string(carried.result);
  }
  if (carried.text != nullptr) {
    made->own_text = carried.text;
    made->text = made->own_text.c_str();
    take_record(*made, code);
  }
  made->message = made->own_message.c_str();
  return made.release();
} catch (...) {
  return nullptr;
}

}  // namespace orv_client

void orv_reply_free(orv_reply* reply) {
  delete static_cast<orv_client::whole_reply*>(reply);
}
