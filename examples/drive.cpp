// Watches the heap, and meanwhile taps a key and asks for the threads, all on one GLib main loop.
//
//   c++ -std=c++17 drive.cpp $(pkg-config --cflags --libs orv-client glib-2.0) -o drive
#include <glib.h>

#include <iostream>
#include <orv/client.hpp>

int main() {
  using namespace std::chrono_literals;
  const orv::client::camera camera;  // the one that ORV_CAMERA names
  int items = 0;
  const orv::client::watch heap(camera, ORV_MONITOR_HEAP, [&](const orv_watch_event& event) {
    if (event.kind != ORV_WATCH_ITEM) return;
    std::cout << event.item->free_bytes << " bytes free\n";
    if (++items == 3) heap.stop();
  });
  camera.send(orv_key_request(ORV_KEY_TAP, "KEY_MENU"), 5s, [](const orv_reply& reply) {
    std::cout << "tap: " << (orv::client::succeeded(reply) ? "done" : reply.message) << "\n";
  });
  camera.send(orv_threads_request(), 30s, [](const orv_reply& reply) {
    for (const auto& one : orv::client::threads_of(reply)) std::cout << one.name << "\n";
  });
  while (heap.running()) g_main_context_iteration(nullptr, TRUE);
}
