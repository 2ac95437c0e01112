/* A host as someone else would write it: host ORVCTL starts the agent and has the tool ask it who
 * it is. Uses each part of the interface once. */
#include <glib.h>
#include <stdio.h>
#include <stdlib.h>

#include <orv/agent.h>
#include <orv/command.h>
#include <orv/config_mode.h>
#include <orv/protocol.h>
#include <orv/thread.h>

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

static void tool_ended(GPid pid, gint status, gpointer loop) {
  (void)pid;
  printf("the tool ended with %d\n", status);
  g_main_loop_quit(loop);
}

static void ask_through_the_tool(char* orvctl) {
  char* arguments[] = {orvctl, "target", NULL};
  GMainLoop* loop = g_main_loop_new(NULL, FALSE);
  GPid pid;
  need(g_spawn_async(NULL, arguments, NULL, G_SPAWN_DO_NOT_REAP_CHILD, NULL, NULL, &pid, NULL),
       "the tool's start");
  g_child_watch_add(pid, tool_ended, loop);
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
}

int main(int argc, char** argv) {
  int mode = -1;
  (void)argc;
  use_threads();
  need(orv_check_config_mode(&mode) == 0 && mode == ORV_CONFIG_MODE_NORMAL, "mode without a file");
  need(orv_start_time == 0, "start time before the start");
  need(orv_init_handler() == 0, "start");
  need(orv_start_time != 0, "start time");
  ask_through_the_tool(argv[1]);
  orv_destroy_handler();
  return 0;
}
