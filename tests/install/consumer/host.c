/* A host as someone else would write it: host ORVCTL starts the agent and has the tool ask it who
 * it is. */
#include <glib.h>
#include <stdio.h>
#include <stdlib.h>

#include <orv/agent.h>

static void need(int holds, const char* what) {
  if (!holds) {
    printf("wrong: %s\n", what);
    exit(1);
  }
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
  (void)argc;
  need(orv_start_time == 0, "start time before the start");
  need(orv_init_handler() == 0, "start");
  need(orv_start_time != 0, "start time");
  ask_through_the_tool(argv[1]);
  orv_destroy_handler();
  return 0;
}
