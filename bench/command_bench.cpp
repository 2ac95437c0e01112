// A whole command between two processes, beside the bare store and beside an echo over D-Bus.

#include <benchmark/benchmark.h>
#include <gio/gio.h>
#include <orv/agent.h>
#include <orv/protocol.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <vconf.h>

#include <memory>
#include <string>

#include "command_client.h"
#include "ratio_table.h"
#include "serving_process.h"

namespace orv_bench {
namespace {

constexpr char answer_text[] = "CSC,Q7,LUMEN-ONE,EVT2,LUMEN-ONE_1.04.2_20260830,240,RELEASE,0";

// As long as the agent's, for the floor, which so lives on the same store.
constexpr key_set bare_keys = {{"memory/raw/cmd_param1", "memory/raw/cmd_param2",
                                "memory/raw/cmd_param3", "memory/raw/cmd_param4"},
                               "memory/raw/cmd_data",
                               "memory/raw/cmd",
                               "memory/raw/result_data",
                               "memory/raw/result"};

constexpr orv_command target_query{1, 1, 1, 1, ORV_COMMAND_TARGET_INFO};

void measure_commands(benchmark::State& state, const key_set& keys, const char* role) {
  const serving_process server{role};
  command_client client{keys};
  const auto ask = [&] {
    client.run(target_query, "");
    benchmark::DoNotOptimize(client.result_data());
  };
  ask();
  const int woken_before = server.wake_ups();
  int64_t commands = 0;
  for (auto _ : state) {
    ask();
    ++commands;
  }
  state.counters["wake-ups a command"] =
      static_cast<double>(server.wake_ups() - woken_before) / static_cast<double>(commands);
}

void whole_command(benchmark::State& state) {
  measure_commands(state, agent_keys, "agent");
}
void bare_store(benchmark::State& state) {
  measure_commands(state, bare_keys, "store");
}

shared_counters* loop_counters = nullptr;

gint count_wake_ups(GPollFD* fds, guint count, gint timeout) {
  const gint ready = g_poll(fds, count, timeout);
  if (timeout != 0) {
    ++loop_counters->wake_ups;
  }
  return ready;
}

[[noreturn]] void run_loop(shared_counters& counters) {
  loop_counters = &counters;
  g_main_context_set_poll_func(nullptr, count_wake_ups);
  counters.ready = 1;
  g_main_loop_run(g_main_loop_new(nullptr, FALSE));
  exit(0);
}

// What the agent reads and writes for one command, and nothing else.
void mirror_traffic(keynode_t* node, void* /*user_data*/) {
  int number = 0;
  benchmark::DoNotOptimize(vconf_keynode_get_name(node));
  vconf_keynode_get_type(node);
  vconf_get_int(bare_keys.command, &number);
  for (const char* parameter : bare_keys.parameters) {
    vconf_get_int(parameter, &number);
  }
  char* data = vconf_get_str(bare_keys.data);
  vconf_set_str(bare_keys.result_data, answer_text);
  vconf_set_int(bare_keys.result, 0);
  free(data);
}

// A message bus of the benchmark's own. It takes DISPLAY out of the environment, which other cases
// need.
class private_bus {
 public:
  private_bus() : bus_{g_test_dbus_new(G_TEST_DBUS_NONE)} {
    const std::string display = getenv("DISPLAY") != nullptr ? getenv("DISPLAY") : "";
    g_test_dbus_up(bus_);
    setenv("DISPLAY", display.c_str(), 1);
  }
  private_bus(const private_bus&) = delete;
  private_bus& operator=(const private_bus&) = delete;
  ~private_bus() {
    const std::string display = getenv("DISPLAY");
    g_test_dbus_stop(bus_);
    g_object_unref(bus_);
    setenv("DISPLAY", display.c_str(), 1);
  }
  [[nodiscard]] std::string address() const { return g_test_dbus_get_bus_address(bus_); }

 private:
  GTestDBus* bus_;
};

GDBusConnection* connect_to(const std::string& address) {
  return g_dbus_connection_new_for_address_sync(
      address.c_str(),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, nullptr);
}

constexpr char echo_name[] = "orv.bench.Echo";
constexpr char echo_path[] = "/orv/bench/Echo";

void dbus_echo(benchmark::State& state) {
  const private_bus bus;
  const serving_process server{"echo", bus.address()};
  GDBusConnection* connection = connect_to(bus.address());
  for (auto _ : state) {
    GVariant* reply = g_dbus_connection_call_sync(
        connection, echo_name, echo_path, echo_name, "Echo", g_variant_new("(s)", answer_text),
        nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    if (reply == nullptr) {
      state.SkipWithError("no echo");
      break;
    }
    g_variant_unref(reply);
  }
  g_dbus_connection_close_sync(connection, nullptr, nullptr);
  g_object_unref(connection);
}

void echo(GDBusConnection* /*connection*/, const gchar* /*sender*/, const gchar* /*path*/,
          const gchar* /*interface*/, const gchar* /*method*/, GVariant* arguments,
          GDBusMethodInvocation* invocation, gpointer /*user_data*/) {
  const gchar* text = nullptr;
  g_variant_get(arguments, "(&s)", &text);
  g_dbus_method_invocation_return_value(invocation, g_variant_new("(s)", text));
}

BENCHMARK(whole_command)->Name("command/whole")->UseRealTime();
BENCHMARK(bare_store)->Name("command/bare-store")->UseRealTime();
BENCHMARK(dbus_echo)->Name("command/dbus-echo")->UseRealTime();

const bool wanted[] = {
    want("command/whole", "command/bare-store", 1.05),
    want("command/whole", "command/dbus-echo", 0.65),
    want_counter("command/whole", "wake-ups a command", 1),
};

}  // namespace

void serve_agent(shared_counters& counters) {
  if (orv_init_handler() == 0) {
    run_loop(counters);
  }
}

void serve_bare_store(shared_counters& counters) {
  if (vconf_notify_key_changed(bare_keys.command, mirror_traffic, nullptr) == 0) {
    run_loop(counters);
  }
}

void serve_echo(shared_counters& counters, const std::string& bus_address) {
  static const GDBusInterfaceVTable table = {echo, nullptr, nullptr, {}};
  GDBusNodeInfo* description = g_dbus_node_info_new_for_xml(
      "<node><interface name='orv.bench.Echo'><method name='Echo'>"
      "<arg type='s' direction='in'/><arg type='s' direction='out'/>"
      "</method></interface></node>",
      nullptr);
  GDBusConnection* connection = connect_to(bus_address);
  g_dbus_connection_register_object(connection, echo_path, description->interfaces[0], &table,
                                    nullptr, nullptr, nullptr);
  g_bus_own_name_on_connection(
      connection, echo_name, G_BUS_NAME_OWNER_FLAGS_NONE,
      [](GDBusConnection*, const gchar*, gpointer ready) {
        static_cast<shared_counters*>(ready)->ready = 1;
      },
      nullptr, &counters, nullptr);
  g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}

}  // namespace orv_bench
