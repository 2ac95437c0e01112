/* A host as someone else would write it: host COMMAND... starts the agent and then a command that
 * drives it. */
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

static void command_ended(GPid pid, gint status, gpointer loop) {
  (void)pid;
  printf("the command ended with %d\n", status);
  g_main_loop_quit(loop);
}

static void serve(char** command) {
  GMainLoop* loop = g_main_loop_new(NULL, FALSE);
  GPid pid;
  need(g_spawn_async(NULL, command, NULL, G_SPAWN_DO_NOT_REAP_CHILD, NULL, NULL, &pid, NULL),
       "the command's start");
  g_child_watch_add(pid, command_ended, loop);
  g_main_loop_run(loop);
  g_main_loop_unref(loop);
}

int main(int argc, char** argv) {
  (void)argc;
  need(orv_start_time == 0, "start time before the start");
  need(orv_init_handler() == 0, "start");
  need(orv_start_time != 0, "start time");
  serve(argv + 1);
  orv_destroy_handler();
  return 0;
}
