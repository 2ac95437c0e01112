/* The protocol between a test tool and the agent: keys of the store, codes and numbers.
 *
 * The tool writes the four parameter keys and the data key, then the command key. The agent runs
 * the command on its host's main loop and answers through the result key; a command that answers
 * with a text writes the result data key first.
 */
#ifndef ORV_PROTOCOL_H
#define ORV_PROTOCOL_H

/* Written by the tool; integers, but for the data text. */
#define VCONFKEY_ORV_COMMAND "memory/orv/cmd"
#define VCONFKEY_ORV_COMMAND_PARAM1 "memory/orv/cmd_param1"
#define VCONFKEY_ORV_COMMAND_PARAM2 "memory/orv/cmd_param2"
#define VCONFKEY_ORV_COMMAND_PARAM3 "memory/orv/cmd_param3"
#define VCONFKEY_ORV_COMMAND_PARAM4 "memory/orv/cmd_param4"
#define VCONFKEY_ORV_COMMAND_DATA "memory/orv/cmd_data"

/* Written by the agent: an integer and a text. */
#define VCONFKEY_ORV_RESULT "memory/orv/result"
#define VCONFKEY_ORV_RESULT_DATA "memory/orv/result_data"

/* The store's type number of an integer key. */
#define ORV_VCONF_TYPE_INT 41

/* Command codes. The agent accepts the codes marked "no answer" and does nothing for them. */
enum {
  ORV_COMMAND_END = 0,
  ORV_COMMAND_AGENT_START = 0x10, /* no answer */
  ORV_COMMAND_AGENT_STOP = 0x11,  /* no answer */
  ORV_COMMAND_HEARTBEAT = 0x101,  /* no answer */
  ORV_COMMAND_EVENT = 0x104,
  ORV_COMMAND_OSD_IMAGE = 0x106, /* no answer */
  ORV_COMMAND_MONITOR = 0x108,
  ORV_COMMAND_MULTI_LANG = 0x109, /* no answer */
  ORV_COMMAND_SET_CONFIG = 0x201, /* no answer */
  ORV_COMMAND_TARGET_INFO = 0x208,
  ORV_COMMAND_STACK_INFO = 0x20b,
  ORV_COMMAND_HEAP_INFO = 0x20c,
  ORV_COMMAND_SEND_BUFFER = 0x350 /* no answer; heads the monitors' packets */
};

/* Values of the result key. */
enum {
  ORV_RESULT_NONE = -2, /* since the agent's start, until the first answer */
  ORV_RESULT_FAILED = -1,
  ORV_RESULT_OK = 0
};

/* Parameter 1 of ORV_COMMAND_EVENT. */
enum { ORV_EVENT_KEY = 0, ORV_EVENT_VIRTUAL_KEY = 2, ORV_EVENT_TOUCH = 3 };

/* Parameter 2 of a key or a touch event. */
enum { ORV_RELEASE = 0, ORV_PRESS = 1 };

/* Parameter 1 of ORV_COMMAND_MONITOR. */
enum { ORV_MON_TYPE_CPU = 1, ORV_MON_TYPE_HEAP = 2, ORV_MON_TYPE_STACK = 4 };

/* Parameter 2 of ORV_COMMAND_MONITOR. */
enum { ORV_MONITOR_STOP = 0, ORV_MONITOR_START = 1 };

/* Item codes in a monitor packet. The stack item's code is not the stack monitor's type. */
enum { ORV_ITEM_CPU = 1, ORV_ITEM_HEAP = 2, ORV_ITEM_STACK = 3 };

/* A thread's state in a stack item; 0 stands for any other. */
enum {
  ORV_STATE_SLEEPING = 2,
  ORV_STATE_WAITING = 6, /* and not to be interrupted */
  ORV_STATE_STOPPED = 8,
  ORV_STATE_RUNNING = 9,
  ORV_STATE_PAGING = 16,
  ORV_STATE_ZOMBIE = 17
};

/* How often the monitors with an interval of their own tick, in milliseconds. */
enum { ORV_HEAP_MONITOR_INTERVAL_MS = 1000, ORV_STACK_MONITOR_INTERVAL_MS = 2000 };

/* What every monitor packet begins with: ORV_COMMAND_SEND_BUFFER in decimal, and a comma. */
#define ORV_PACKET_START "848,"

/* Sizes of a monitor packet, in bytes: four for each number in it; marks do not count. */
enum {
  ORV_PACKET_HEADER_SIZE = 8,
  ORV_ITEM_CPU_SIZE = 16,
  ORV_ITEM_HEAP_SIZE = 28,
  ORV_ITEM_STACK_SIZE = 16,       /* without its thread groups */
  ORV_ITEM_STACK_GROUP_SIZE = 20, /* a thread */
  ORV_PACKET_MAX_TEXT = 80096     /* the packet's text with its terminating NUL */
};

#endif
