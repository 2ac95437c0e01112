// The carrier "model": a model of an agent, within the process. For tests of programs that use the
// library, without a store and a host.
//
// "model:" answers each command a millisecond after the one before. "model:slow" takes 300 ms for
// each, "model:failing" answers -1, and "model:silent" never answers. It has no monitors and no
// log.

#include <glib.h>
#include <orv/protocol.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "../carrier.h"

namespace orv_client {
namespace {

struct behaviour {
  std::string_view name;
  milliseconds takes;
  bool answers;
  int32_t result;
};

constexpr behaviour behaviours[] = {
    {"", milliseconds{1}, true, ORV_RESULT_OK},
    {"slow", milliseconds{300}, true, ORV_RESULT_OK},
    {"failing", milliseconds{1}, true, ORV_RESULT_FAILED},
    {"silent", milliseconds{1}, false, ORV_RESULT_OK},
};

struct row {
  int32_t code;
  const char* text;  // null: only the result
};

constexpr row rows[] = {
    {ORV_COMMAND_EVENT, nullptr},
    {ORV_COMMAND_MONITOR, nullptr},
    {ORV_COMMAND_TARGET_INFO, "CSC,Q7,MODEL-ONE,EVT2,MODEL-ONE_1.0,240,RELEASE,0"},
    {ORV_COMMAND_HEAP_INFO, "1,1,536870912"},
    {ORV_COMMAND_STACK_INFO, "523,2,1,main,8388608,3202351104,$,2,worker,135168,3068000000,$,"},
};

struct model {
  const behaviour* behaves;
  steady_clock::time_point idle_from;  // what was sent so far is answered then
};

struct pending {
  steady_clock::time_point begins;
  carried_reply_fn on_reply;
  void* user_data;
  orv_reply reply;
  guint timer;
};

gboolean end(gpointer data) {
  const auto* one = static_cast<const pending*>(data);
  one->on_reply(&one->reply, one->user_data);
  return G_SOURCE_REMOVE;
}

void forget(gpointer data) {
  delete static_cast<pending*>(data);
}

orv_reply failure(orv_outcome outcome, orv_why why, const char* message) {
  return {outcome, why, 0, nullptr, message, nullptr, nullptr, nullptr};
}

void* open(const char* place, carried_reply_fn on_failure, void* user_data) {
  const auto* found = std::find_if(std::begin(behaviours), std::end(behaviours),
                                   [place](const auto& one) { return one.name == place; });
  if (found == std::end(behaviours)) {
    const orv_reply reply = failure(ORV_NOT_RUN, ORV_WHY_BAD_ADDRESS,
                                    "a model is \"\", \"slow\", \"failing\" or \"silent\"");
    on_failure(&reply, user_data);
    return nullptr;
  }
  return new model{found, steady_clock::now()};
}

void close(void* opened) {
  delete static_cast<model*>(opened);
}

orv_reply reply_of(const model& by, const orv_request& request, bool in_time, bool begins) {
  const auto* found = std::find_if(std::begin(rows), std::end(rows),
                                   [&](const row& one) { return one.code == request.code; });
  if (!begins) {
    return failure(ORV_NOT_RUN, ORV_WHY_BUSY, "the model was busy");
  }
  if (!in_time || !by.behaves->answers || found == std::end(rows)) {
    return failure(ORV_MAY_HAVE_RUN, ORV_WHY_NO_ANSWER, "the model did not answer");
  }
  return {ORV_RAN, ORV_WHY_NONE, by.behaves->result, found->text, "", nullptr, nullptr, nullptr};
}

void* command(void* opened, const orv_request* request, time_limit limit, carried_reply_fn on_reply,
              void* user_data) {
  auto& by = *static_cast<model*>(opened);
  const auto begins = std::max(by.idle_from, steady_clock::now());
  const auto answered = begins + by.behaves->takes;
  by.idle_from = answered;
  const orv_reply reply = reply_of(by, *request, answered <= limit.end, begins < limit.end);
  const auto when = reply.outcome == ORV_RAN ? answered : limit.end;
  const auto wait = std::chrono::ceil<milliseconds>(when - steady_clock::now());
  auto* made = new pending{begins, on_reply, user_data, reply, 0};
  made->timer =
      g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(std::max<int64_t>(wait.count(), 0)),
                         end, made, forget);
  return made;
}

orv_outcome cancel(void* started) {
  const auto* one = static_cast<const pending*>(started);
  const bool begun = one->begins <= steady_clock::now();
  g_source_remove(one->timer);
  return begun ? ORV_MAY_HAVE_RUN : ORV_NOT_RUN;
}

// Its watches and logs end at once, each with one line.
struct pending_end {
  carried_event_fn on_event;
  carried_line_fn on_line;
  void* user_data;
  guint timer;
};

constexpr char no_monitors[] = "a model has no monitors and no log";

gboolean end_watch(gpointer data) {
  const auto* one = static_cast<const pending_end*>(data);
  const orv_reply reply = failure(ORV_NOT_RUN, ORV_WHY_BAD_REQUEST, no_monitors);
  const orv_watch_event event{ORV_WATCH_ENDED, nullptr, 0, "", &reply};
  one->on_event(&event, one->user_data);
  return G_SOURCE_REMOVE;
}

gboolean end_log(gpointer data) {
  const auto* one = static_cast<const pending_end*>(data);
  const orv_reply reply = failure(ORV_NOT_RUN, ORV_WHY_NO_LOG, no_monitors);
  one->on_line(nullptr, &reply, one->user_data);
  return G_SOURCE_REMOVE;
}

void forget_end(gpointer data) {
  delete static_cast<pending_end*>(data);
}

void* watch(void* /*opened*/, const orv_watch_options* /*options*/, carried_event_fn on_event,
            void* user_data) {
  auto* made = new pending_end{on_event, nullptr, user_data, 0};
  made->timer = g_idle_add_full(G_PRIORITY_DEFAULT, end_watch, made, forget_end);
  return made;
}

void* log(void* /*opened*/, int /*follow*/, carried_line_fn on_line, void* user_data) {
  auto* made = new pending_end{nullptr, on_line, user_data, 0};
  made->timer = g_idle_add_full(G_PRIORITY_DEFAULT, end_log, made, forget_end);
  return made;
}

void stop_ending(void* /*it ends by itself*/) {}

void cancel_ending(void* started) {
  g_source_remove(static_cast<const pending_end*>(started)->timer);
}

}  // namespace
}  // namespace orv_client

extern "C" ORV_CLIENT_API const orv_client::carrier orv_carrier_table;
const orv_client::carrier orv_carrier_table = {
    .scheme = "model",
    .open = orv_client::open,
    .close = orv_client::close,
    .command = orv_client::command,
    .cancel = orv_client::cancel,
    .watch = orv_client::watch,
    .stop_watch = orv_client::stop_ending,
    .cancel_watch = orv_client::cancel_ending,
    .log = orv_client::log,
    .stop_log = orv_client::stop_ending,
    .cancel_log = orv_client::cancel_ending,
};
