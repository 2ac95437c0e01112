// A whole command between two processes, beside the bare store and beside an echo over D-Bus.

#include <gio/gio.h>
#include <orv/agent.h>
#include <orv/client.h>
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

void ask(command_client& client) {
  client.run(target_query, "");
  keep(client.result_data());
}

void whole_command(row& row) {
  const serving_process agent{"agent"};
  const serving_process store{"store"};
  command_client asker{agent_keys};
  command_client bare{bare_keys};
  ask(asker);
  const int woken_before = agent.wake_ups();
  int commands = 0;
  row.alternate(
      [&] {
        ask(asker);
        ++commands;
      },
      [&] { ask(bare); });
  const int woken = agent.wake_ups() - woken_before;
  row.expect("wake-ups a command", static_cast<double>(woken) / commands, 1);
}

struct camera_closer {
  void operator()(orv_camera* camera) const noexcept { orv_camera_close(camera); }
};

void note_reply(const orv_reply* reply, void* outcome) {
  *static_cast<int*>(outcome) = reply->outcome;
}

void send(orv_camera* camera, const orv_request& request) {
  int outcome = -1;
  orv_send(camera, &request, 5000, note_reply, &outcome);
  while (outcome < 0) {
    g_main_context_iteration(nullptr, TRUE);
  }
  require(outcome == ORV_RAN, "the agent did not answer");
}

// The bare exchange is with other keys: an open camera listens to the agent's.
void client_command(row& row) {
  const serving_process agent{"agent"};
  const serving_process store{"store"};
  const std::unique_ptr<orv_camera, camera_closer> camera{orv_camera_open(nullptr, nullptr)};
  require(camera != nullptr, "the camera cannot be opened");
  command_client bare{bare_keys};
  const orv_request request = orv_identity_request();
  row.alternate([&] { send(camera.get(), request); }, [&] { ask(bare); });
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
  keep(vconf_keynode_get_name(node));
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

void call_echo(GDBusConnection* connection) {
  GVariant* reply = g_dbus_connection_call_sync(connection, echo_name, echo_path, echo_name, "Echo",
                                                g_variant_new("(s)", answer_text), nullptr,
                                                G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
  require(reply != nullptr, "no echo");
  g_variant_unref(reply);
}

void whole_command_and_echo(row& row) {
  const private_bus bus;
  const serving_process echoer{"echo", bus.address()};
  const serving_process agent{"agent"};
  GDBusConnection* connection = connect_to(bus.address());
  command_client asker{agent_keys};
  row.alternate([&] { ask(asker); }, [&] { call_echo(connection); });
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

const bool registered[] = {
    compare("command/whole", "command/bare-store", 1.05, whole_command),
    compare("command/whole", "command/dbus-echo", 0.65, whole_command_and_echo),
    compare("command/client", "command/bare-store", 1.05, client_command),
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
