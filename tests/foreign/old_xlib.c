/* Xlib and XTest as far as the agent needs them at load time, with nothing that came after 2005.
 * The display is one that nobody can look into. */
#include <stdio.h>

typedef int (*handler)(void);

static void* const display = (void*)0x1234;

void* XOpenDisplay(const char* name) {
  (void)name;
  puts("X open");
  return display;
}
int XCloseDisplay(void* closed) {
  return printf("X close %d\n", closed == display);
}
handler XSetErrorHandler(handler set) {
  (void)set;
  return NULL;
}
handler XSetIOErrorHandler(handler set) {
  (void)set;
  return NULL;
}
int XTestFakeKeyEvent(void* to, unsigned keycode, int press, unsigned long delay) {
  return printf("X key %d %u %d %lu\n", to == display, keycode, press, delay);
}
int XTestFakeMotionEvent(void* to, int screen, int x, int y, unsigned long delay) {
  return printf("X motion %d %d %d %d %lu\n", to == display, screen, x, y, delay);
}
int XTestFakeButtonEvent(void* to, unsigned button, int press, unsigned long delay) {
  return printf("X button %d %u %d %lu\n", to == display, button, press, delay);
}
