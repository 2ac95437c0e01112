/* The platform as a camera might have it, from its contract alone: no header of the stand-ins, no
 * files. One text for its three libraries. As soon as it is watched the store has the agent press a
 * key and then asks who it is; it prints what the agent writes, and ends the host after the answer. */
#include <glib.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

struct node {
  const char* name;
};
typedef void (*changed)(struct node* node, void* user_data);

static struct node command_node = {"memory/orv/cmd"};
static changed watcher;
static int command = 0x104;

static gboolean write_command(gpointer user_data) {
  watcher(&command_node, user_data);
  return G_SOURCE_REMOVE;
}

int vconf_notify_key_changed(const char* key, changed callback, void* user_data) {
  if (strcmp(key, command_node.name) != 0) {
    return -1;
  }
  watcher = callback;
  g_idle_add(write_command, user_data);
  return 0;
}

int vconf_ignore_key_changed(const char* key, changed callback) {
  printf("ignore %s %d\n", key, callback == watcher);
  return 0;
}

char* vconf_keynode_get_name(struct node* node) {
  return (char*)(gpointer)node->name;
}

int vconf_keynode_get_type(struct node*) {
  return 41;
}

int vconf_get_int(const char* key, int* value) {
  const int press = strcmp(key, "memory/orv/cmd_param2") == 0;
  *value = strcmp(key, command_node.name) == 0 ? command : press;
  return 0;
}

char* vconf_get_str(const char*) {
  return strdup("KEY_OK");
}

int vconf_set_int(const char* key, int value) {
  printf("%s=%d\n", key, value);
  const int answered = strcmp(key, "memory/orv/result") == 0 && value != -2;
  if (answered && command == 0x208) {
    kill(getpid(), SIGTERM);
  } else if (answered) {
    command = 0x208;
    g_idle_add(write_command, NULL);
  }
  return 0;
}

int vconf_set_str(const char* key, const char* value) {
  return printf("%s=%s\n", key, value) < 0;
}

int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  printf("log %d %d %s ", log_id, priority, tag);
  vprintf(format, arguments);
  va_end(arguments);
  return 0;
}

const char* get_project_name(void) {
  return "ANOTHER";
}
const char* get_board_version_name(void) {
  return "MP";
}
const char* get_fw_version_full(void) {
  return "9.9";
}
