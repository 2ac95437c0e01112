/* A host as someone else would write it: host ORVCTL starts the agent and has the tool ask it who
 * it is. Uses each part of the interface once. */
#include <glib.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <orv/agent.h>
#include <orv/command.h>
#include <orv/config_mode.h>
#include <orv/cpu.h>
#include <orv/health.h>
#include <orv/input.h>
#include <orv/meminfo.h>
#include <orv/monitor.h>
#include <orv/protocol.h>
#include <orv/stack.h>
#include <orv/thread.h>
#include <orv/timer.h>

static void need(int holds, const char* what) {
  if (!holds) {
    printf("wrong: %s\n", what);
    exit(1);
  }
}

static void* own_id(void* id) {
  *(pthread_t*)id = orv_get_current_thread_id();
  return id;
}

static void use_threads(void) {
  pthread_t thread;
  pthread_t seen;
  void* result = NULL;
  need(orv_thread_create(&thread, "consumer", 0, 1, 0, own_id, &seen) == 0, "thread");
  need(orv_thread_join(thread, &result) == 0 && result == &seen, "join");
  need(pthread_equal(thread, seen), "id");
}

static void use_readers(void) {
  int mode = -1;
  uint32_t total_kb = 0;
  const struct meminfo_row row = {"MemTotal", &total_kb};
  need(orv_check_config_mode(&mode) == 0 && mode == ORV_CONFIG_MODE_NORMAL, "mode without a file");
  orv_meminfo(&row, 1);
  need(total_kb != 0, "memory");
  need(orv_get_cpu_info(result_cpu_info) > 0 && result_cpu_info[0].tid > 0, "threads");
  need(orv_get_stack_info(res_stack_info) > 0 && res_stack_info[0].esp != 0, "stacks");
  need(get_stack_address("7ffe") == 0x7ffe, "address");
  need(IsDigit("12") == 0 && IsDigit("1a") == -1, "digits");
  need(strcmp(orv_key_map[ORV_KEY_MAP_ROWS - 1].key_name, "end") == 0, "the key map's end");
}

static void tool_ended(GPid pid, gint status, gpointer loop) {
  (void)pid;
  printf("the tool ended with %d\n", status);
  g_main_loop_quit(loop);
}

static int count(void* ticks) {
  ++*(int*)ticks;
  return 1;
}

static void ask_through_the_tool(char* orvctl) {
  char* arguments[] = {orvctl, "target", NULL};
  GMainLoop* loop = g_main_loop_new(NULL, FALSE);
  uint32_t timer_id = 0;
  int ticks = 0;
  GPid pid;
  orv_start_timer(1, count, &ticks, &timer_id);
  need(g_spawn_async(NULL, arguments, NULL, G_SPAWN_DO_NOT_REAP_CHILD, NULL, NULL, &pid, NULL),
       "the tool's start");
  g_child_watch_add(pid, tool_ended, loop);
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
  need(timer_id != 0 && ticks > 0, "timer");
  orv_stop_timer(&timer_id);
  need(timer_id == 0, "stopped timer");
}

int main(int argc, char** argv) {
  (void)argc;
  use_threads();
  use_readers();
  need(orv_start_time == 0, "start time before the start");
  need(orv_init_handler() == 0, "start");
  need(orv_start_time != 0, "start time");
  ask_through_the_tool(argv[1]);
  orv_destroy_handler();
  return 0;
}
