/* Drives a camera step by step: each call waits for its answer.
 *
 *   cc drive.c $(pkg-config --cflags --libs orv-client) -o drive
 */
#include <orv/client.h>
#include <stdio.h>

static void show(orv_watch* watch, const orv_watch_event* event, void* user_data) {
  (void)watch, (void)user_data;
  if (event->kind == ORV_WATCH_ITEM) printf("%u bytes free\n", event->item->free_bytes);
}

static int conclude(const char* what, orv_reply* reply) {
  int done = reply->outcome == ORV_RAN && reply->result == 0;
  printf("%s: %s\n", what, done ? "done" : reply->message);
  for (size_t i = 0; reply->threads != NULL && i < reply->threads->listed; ++i)
    printf("%d %s\n", reply->threads->list[i].tid, reply->threads->list[i].name);
  orv_reply_free(reply);
  return done;
}

int main(void) {
  orv_reply* failure = NULL;
  orv_camera* camera = orv_camera_open(NULL, &failure); /* the one that ORV_CAMERA names */
  if (camera == NULL) return conclude("open", failure);
  orv_request tap = orv_key_request(ORV_KEY_TAP, "KEY_MENU"), threads = orv_threads_request();
  orv_watch_options heap = {.monitors = ORV_MONITOR_HEAP};
  int done = conclude("tap", orv_ask(camera, &tap, 5000)) &&
             conclude("threads", orv_ask(camera, &threads, 30000)) &&
             conclude("watch", orv_watch_for(camera, &heap, 3500, show, NULL));
  orv_camera_close(camera);
  return done ? 0 : 1;
}
