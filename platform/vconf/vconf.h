/* vconf: the platform's key-value store.
 *
 * Stand-in: one file a key under one root directory, values replaced whole by renaming, changes
 * seen through inotify. The root is the directory that ORV_PLATFORM_ROOT names, or else
 * "orv-platform" in XDG_RUNTIME_DIR, or else /dev/shm/orv-platform-UID. Left out: key removal,
 * other value types, access rights of single keys, persistence.
 *
 * A key is a path like "memory/orv/cmd": parts of 1 to 255 bytes joined by single slashes, none
 * of them beginning with a dot, 1,023 bytes at most. An integer is 32 bits wide; a text holds any
 * bytes but NUL, 1 MiB at most.
 *
 * A root that is not a directory, belongs to someone else or is open to others is refused: calls
 * fail with VCONF_ERROR_STORE, and one line on standard error says why, once a process. Writing
 * and watching make the root when it is missing; reading never does.
 *
 * Reads and writes may come from any thread and any process. Notifications are registered, removed
 * and delivered on the thread that runs the default GLib main context.
 */
#ifndef VCONF_H
#define VCONF_H

#ifdef __cplusplus
extern "C" {
#endif

#define VCONF_API __attribute__((visibility("default")))

enum {
  VCONF_ERROR_NO_KEY = -1, /* no such key, or a name that no key can have */
  VCONF_ERROR_TYPE = -2,   /* the key holds another type */
  VCONF_ERROR_STORE = -3   /* the store cannot be reached, or memory was refused */
};

enum { VCONF_TYPE_STRING = 40, VCONF_TYPE_INT = 41 };

typedef struct vconf_keynode keynode_t;
typedef void (*vconf_callback_fn)(keynode_t* node, void* user_data);

/* 0, or a negative error; *value is then untouched. */
VCONF_API int vconf_get_int(const char* key, int* value);

/* The text, to be freed with free(), or null. */
VCONF_API char* vconf_get_str(const char* key);

/* 0, or a negative error; the old value then stays. */
VCONF_API int vconf_set_int(const char* key, int value);
VCONF_API int vconf_set_str(const char* key, const char* value);

/* From now on, callback(node, user_data) runs once for every write of the key by any process, this
 * one included, also when the value stays the same. When the kernel's event queue overflows, each
 * watched key is reported once instead. Registering a pair again only changes its user_data. 0, or
 * a negative error. */
VCONF_API int vconf_notify_key_changed(const char* key, vconf_callback_fn callback,
                                       void* user_data);

/* Ends the pair's registration. 0, or VCONF_ERROR_NO_KEY when there is none. */
VCONF_API int vconf_ignore_key_changed(const char* key, vconf_callback_fn callback);

/* The key's name; the node owns it and lives for the callback. */
VCONF_API char* vconf_keynode_get_name(keynode_t* node);

/* VCONF_TYPE_INT or VCONF_TYPE_STRING, or a negative error when the key cannot be read. */
VCONF_API int vconf_keynode_get_type(keynode_t* node);

#ifdef __cplusplus
}
#endif

#endif
