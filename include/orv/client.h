/* liborv-client: drives a camera through its test agent.
 *
 * A camera is opened by an address. Everything that the agent can be asked is a request; a request
 * is sent to a camera with a timeout and ends in exactly one reply. Requests, watches and logs each
 * come in two forms: one returns at once and calls back later, the other waits.
 *
 * Results. Every reply has one of three outcomes: the agent ran the command, and the reply holds
 * its answer; the command has certainly not run, and the reply says why; or it may have run. Only a
 * request that has certainly not run can be repeated without thought. The library itself never
 * sends an injection (a key or a touch) twice, and one that is unanswered at its deadline is
 * withdrawn: a host that was frozen meanwhile finds nothing to run when it wakes.
 *
 * Threads. The platform's store delivers on the thread that runs the default GLib main context, so
 * all callbacks run there, and something has to run that context: a GMainLoop of the program's own,
 * or a waiting call. Every function may be called on any thread. A waiting call runs the default
 * context itself where no other thread does, and otherwise waits for the thread that does; called
 * from within a callback of that context it fails at once (ORV_WHY_IN_CALLBACK), since it would
 * hold up the loop that it waits for.
 *
 * Platform. The store's functions take no handle: one process can reach one store only, and the
 * first address that is opened decides which. Any number of cameras, threads and processes may use
 * that store at a time: commands take turns, by a lock on a file in the address's directory.
 *
 * Ownership. What a function returns as a plain pointer belongs to the caller, who gives it back
 * with the function named there. What a callback is given belongs to the library and lives for the
 * call. Texts that go in are copied. Pointers may not be null unless that is said; texts are
 * NUL-terminated. Times are milliseconds, sizes are bytes.
 */
#ifndef ORV_CLIENT_H
#define ORV_CLIENT_H

#include <stddef.h>
#include <stdint.h>

#define ORV_CLIENT_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

typedef struct orv_camera orv_camera;
typedef struct orv_watch orv_watch;
typedef struct orv_log orv_log;

/* ---- Replies ---- */

typedef enum orv_outcome {
  ORV_RAN = 0,         /* the agent ran it and answered */
  ORV_NOT_RUN = 1,     /* it has not run and will not */
  ORV_MAY_HAVE_RUN = 2 /* it was sent, and its answer was not seen */
} orv_outcome;

typedef enum orv_why {
  ORV_WHY_NONE = 0,
  /* ORV_NOT_RUN */
  ORV_WHY_BAD_REQUEST,    /* a parameter is out of its range */
  ORV_WHY_BAD_ADDRESS,    /* the address cannot be read */
  ORV_WHY_UNKNOWN_SCHEME, /* no carrier is installed for the address's scheme */
  ORV_WHY_SECOND_STORE,   /* this process has opened another store */
  ORV_WHY_NO_CAMERA,      /* the store is missing, or no agent has been started on it */
  ORV_WHY_STORE_REFUSED,  /* the directory is another user's or open to others */
  ORV_WHY_STORE_FAILED,   /* the store cannot be written or watched */
  ORV_WHY_BUSY,           /* others had their turns until the deadline */
  ORV_WHY_WATCHED,        /* another watch has the monitors */
  ORV_WHY_IN_CALLBACK,    /* a waiting call within a callback */
  ORV_WHY_CLOSED,         /* the camera was closed; also with ORV_MAY_HAVE_RUN */
  ORV_WHY_NO_LOG,         /* the platform's log reader cannot be run */
  ORV_WHY_NO_MEMORY,      /* also with ORV_MAY_HAVE_RUN */
  /* ORV_MAY_HAVE_RUN */
  ORV_WHY_NO_ANSWER, /* none came before the deadline; with ORV_NOT_RUN, none to the query that had
                        to come first, since an earlier command was unanswered */
  ORV_WHY_OVERWRITTEN, /* a monitor's tick replaced the answer before it was read */
  /* ORV_RAN */
  ORV_WHY_BAD_ANSWER /* the text is not what this query answers; identity, memory, threads are null
                      */
} orv_why;

/* Who the target is. Texts may hold any characters, control characters included. */
typedef struct orv_identity {
  const char* category;
  const char* platform;
  const char* model;
  const char* board;
  const char* firmware;
  int32_t byte_order; /* 240 (0xf0): little endian */
  const char* build_type;
  int32_t cis_no;
} orv_identity;

typedef struct orv_memory {
  uint32_t total_bytes; /* modulo 2^32: the protocol carries no more */
} orv_memory;

typedef struct orv_thread {
  int32_t tid;
  const char* name;          /* may be empty */
  uint32_t stack_size_bytes; /* 0, as the base, when the target could not learn it */
  uint32_t stack_base;
} orv_thread;

typedef struct orv_threads {
  const orv_thread* list; /* in the target's order */
  size_t listed;
  int32_t sampled; /* as many or more: the answer may not have had room for all */
} orv_threads;

typedef struct orv_reply {
  orv_outcome outcome;
  orv_why why;
  int32_t result;      /* ORV_RAN: the agent's, 0 for success and -1 for failure; else 0 */
  const char* text;    /* the agent's text, as it came; null where there is none */
  const char* message; /* one line that a user can read, without newline; empty after success */
  const orv_identity* identity; /* of an identity request; else null */
  const orv_memory* memory;     /* of a memory request; else null */
  const orv_threads* threads;   /* of a threads request; else null */
} orv_reply;

typedef void (*orv_reply_fn)(const orv_reply* reply, void* user_data);

/* Gives back what a waiting call returned; null is ignored. */
ORV_CLIENT_API void orv_reply_free(orv_reply* reply);

/* ---- Cameras ---- */

/* The address of the camera that a program should use when it is told none: ORV_CAMERA of the
 * environment, or else "store:" and the directory that ORV_PLATFORM_ROOT names, or else "store:",
 * which is the camera's own store. The library's text, valid for the process's life. */
ORV_CLIENT_API const char* orv_default_address(void);

/* Opens the camera at the address: "store:DIR", "store:" or "" for the default store, or null for
 * orv_default_address(). Needs no running host. Null on failure, and then, unless `failure` is
 * null, *failure is a reply with outcome ORV_NOT_RUN, to be freed; null where there is no memory
 * for one. */
ORV_CLIENT_API orv_camera* orv_camera_open(const char* address, orv_reply** failure);

/* Ends what is in flight: each request gets its reply (ORV_WHY_CLOSED), each watch and log its last
 * event, before this returns; within a callback of the same camera, right after it. Monitors of a
 * watch that is ended so go on: stop a watch and await its end first. Null is ignored. */
ORV_CLIENT_API void orv_camera_close(orv_camera* camera);

/* ---- Requests ---- */

/* Any command of the agent's: its code, four parameters, and a text; null is the empty text. */
typedef struct orv_request {
  int32_t code;
  int32_t parameters[4];
  const char* data;
} orv_request;

/* Who is it? How much memory, which threads? */
ORV_CLIENT_API orv_request orv_identity_request(void);
ORV_CLIENT_API orv_request orv_memory_request(void);
/* The target takes about 20 ms for each of its threads: allow some seconds. */
ORV_CLIENT_API orv_request orv_threads_request(void);

/* `name` is that of a key (orv_keys), and has to live until the request is sent. A pressed key
 * stays down until it is released; a tap is one command, so nothing can leave it half done. */
typedef enum orv_key_action { ORV_KEY_TAP, ORV_KEY_PRESS, ORV_KEY_RELEASE } orv_key_action;
ORV_CLIENT_API orv_request orv_key_request(orv_key_action action, const char* name);

/* Puts a finger down, or moves it and lifts it, at pixels from the screen's top left corner, -32768
 * to 32767. */
typedef enum orv_touch_action { ORV_TOUCH_PRESS, ORV_TOUCH_RELEASE } orv_touch_action;
ORV_CLIENT_API orv_request orv_touch_request(orv_touch_action action, int32_t x, int32_t y);

/* The three monitors, also as a set of bits. */
enum { ORV_MONITOR_CPU = 1, ORV_MONITOR_HEAP = 2, ORV_MONITOR_STACK = 4, ORV_MONITORS_ALL = 7 };

/* Starts one monitor; `interval_ms`, 1 or more, is for ORV_MONITOR_CPU, the others have their own.
 * One that runs already keeps its interval. */
ORV_CLIENT_API orv_request orv_monitor_start_request(int32_t monitor, int32_t interval_ms);
ORV_CLIENT_API orv_request orv_monitor_stop_request(int32_t monitor);

/* Whether the camera application is well: result 0 or -1. Starts and stops nothing. */
ORV_CLIENT_API orv_request orv_health_request(void);

/* Sends the request; a camera's requests run in the order in which they were sent. `on_reply`,
 * which may be null, is called exactly once, at the latest at the deadline, `timeout_ms` (1 or
 * more) from now. The time to wait for a turn is part of it. It is not called from within this
 * function, but where another thread runs the loop, it may be called before this returns. */
ORV_CLIENT_API void orv_send(orv_camera* camera, const orv_request* request, uint32_t timeout_ms,
                             orv_reply_fn on_reply, void* user_data);

/* The same, and waits for the reply, to be freed. Null only when there is no memory for one. */
ORV_CLIENT_API orv_reply* orv_ask(orv_camera* camera, const orv_request* request,
                                  uint32_t timeout_ms);

/* ---- Watching the monitors ---- */

typedef struct orv_watch_options {
  uint32_t monitors;        /* a set of ORV_MONITOR_*, 0 for all */
  uint32_t cpu_interval_ms; /* 1 to 4000; 0 for 250 */
  uint32_t timeout_ms;      /* of each command that the watch sends; 0 for 5000, and for 30000 when
                               stacks are watched or threads named */
  int name_threads;         /* not 0: ask for the threads' names first and, when unknown threads are
                               seen, again; takes the target as long as a threads request, and is
                               given 30000 at least */
} orv_watch_options;

/* What a thread was doing; 0 is any other. */
enum {
  ORV_THREAD_SLEEPING = 2,
  ORV_THREAD_WAITING = 6, /* and not to be interrupted */
  ORV_THREAD_STOPPED = 8,
  ORV_THREAD_RUNNING = 9,
  ORV_THREAD_PAGING = 16,
  ORV_THREAD_ZOMBIE = 17
};

typedef struct orv_stack_sample {
  int32_t tid;
  const char* name; /* empty when it is not known */
  int32_t state;    /* ORV_THREAD_* */
  uint32_t pointer; /* low 32 bits, as start and end */
  uint32_t start;
  uint32_t end;
} orv_stack_sample;

/* What one monitor saw at one tick; the CPU monitor makes an item for each thread that was running.
 */
typedef struct orv_item {
  int32_t monitor;     /* ORV_MONITOR_* */
  uint32_t tick_ms;    /* since the agent's start, by the camera's clock, modulo 2^32 */
  int64_t wall_ms;     /* when this process read it, since 1970-01-01 UTC, by its own clock */
  int32_t tid;         /* CPU: the running thread; else 0 */
  const char* name;    /* CPU: its name, empty when it is not known; else empty */
  uint32_t free_bytes; /* heap, modulo 2^32; else 0 */
  uint32_t max_free_bytes;
  const orv_stack_sample* stacks; /* stack; else null */
  size_t stack_count;
} orv_item;

typedef enum orv_watch_event_kind {
  ORV_WATCH_STARTED, /* the monitors run */
  ORV_WATCH_ITEM,
  ORV_WATCH_TICKED,  /* the packet was looked at: after its items, and also when it had none */
  ORV_WATCH_GAP,     /* something else overwrote the packet: items may be missing */
  ORV_WATCH_GARBLED, /* the packet holds something that is no item; it is passed over */
  ORV_WATCH_ENDED    /* the last event */
} orv_watch_event_kind;

typedef struct orv_watch_event {
  orv_watch_event_kind kind;
  const orv_item* item;   /* ORV_WATCH_ITEM; else null */
  size_t packet_bytes;    /* how full the packet is; it is emptied in time */
  const char* message;    /* ORV_WATCH_GAP, ORV_WATCH_GARBLED: one line; else empty */
  const orv_reply* reply; /* ORV_WATCH_ENDED: of the last command, which is the stop of the monitors
                             when all went well, or of the one that failed; else null */
} orv_watch_event;

typedef void (*orv_watch_fn)(orv_watch* watch, const orv_watch_event* event, void* user_data);

/* Watches monitors without losing an item: stops those that run, starts the wanted ones, reports
 * each item once and in order, and keeps the packet from filling up. Meanwhile no other program can
 * start or stop a monitor, and a query waits for a tick of the slowest one. Ends with
 * ORV_WATCH_ENDED, exactly once, after orv_watch_stop or a failure; `watch` is then gone. Null only
 * when there is no memory. The first event comes as a reply to orv_send does. */
ORV_CLIENT_API orv_watch* orv_watch_start(orv_camera* camera, const orv_watch_options* options,
                                          orv_watch_fn on_event, void* user_data);

/* Begins the end of a watch: the monitors are stopped, the items that they wrote last are reported,
 * then comes ORV_WATCH_ENDED. Any number of times before that, also within its callback. Of a watch
 * that had sent no command yet the reply is ORV_NOT_RUN with ORV_WHY_NONE. */
ORV_CLIENT_API void orv_watch_stop(orv_watch* watch);

/* Watches for so long from ORV_WATCH_STARTED on (0: until orv_watch_stop, from the callback) and
 * waits for the end. The reply of ORV_WATCH_ENDED, to be freed. */
ORV_CLIENT_API orv_reply* orv_watch_for(orv_camera* camera, const orv_watch_options* options,
                                        uint64_t duration_ms, orv_watch_fn on_event,
                                        void* user_data);

/* ---- The log ---- */

/* A line of the agent's log without its newline; `message` is then empty. At the end, once, `line`
 * is null, and `message` says in one line what failed, or is empty; `log` is then gone. */
typedef void (*orv_log_fn)(orv_log* log, const char* line, const char* message, void* user_data);

/* Reads what the log holds (records under the agent's tag) and, with `follow` not 0, what comes
 * until orv_log_stop. Runs the platform's reader, dlogutil, from PATH. Null only when there is no
 * memory. */
ORV_CLIENT_API orv_log* orv_log_start(orv_camera* camera, int follow, orv_log_fn on_line,
                                      void* user_data);

/* Ends it; the end is reported right after. Any number of times before that, also within the
 * callback. */
ORV_CLIENT_API void orv_log_stop(orv_log* log);

/* The same, and waits for the end. The reply, to be freed: ORV_RAN, or ORV_NOT_RUN when the reader
 * could not be run. */
ORV_CLIENT_API orv_reply* orv_log_read(orv_camera* camera, int follow, orv_log_fn on_line,
                                       void* user_data);

/* ---- Names; these touch no camera and allocate nothing ---- */

typedef struct orv_key {
  const char* name; /* "KEY_MENU" */
  int32_t keycode;  /* as the camera's X server knows it, 8 to 255 */
} orv_key;

/* All keys, in the agent's order. */
ORV_CLIENT_API const orv_key* orv_keys(size_t* count);

/* The keys that a text may mean: the one that it names, or else all that begin with it. Case does
 * not matter, nor whether KEY_ or VK_ is there. Stores the first `room` of them to `found` and
 * returns how many there are. */
ORV_CLIENT_API size_t orv_keys_like(const char* text, const orv_key** found, size_t room);

/* The key whose name is nearest to the text; null when every second letter or more would be wrong.
 */
ORV_CLIENT_API const orv_key* orv_nearest_key(const char* text);

typedef struct orv_command_name {
  const char* name; /* "target_info" */
  int32_t code;
  int answers; /* 0: the agent accepts the command and does not answer it */
} orv_command_name;

/* All commands of the agent, by code. */
ORV_CLIENT_API const orv_command_name* orv_commands(size_t* count);

/* The library's version, "0.1.0"; the library's text. */
ORV_CLIENT_API const char* orv_client_version(void);

#ifdef __cplusplus
}
#endif

#endif
