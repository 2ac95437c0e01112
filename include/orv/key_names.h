/* The camera's keys: the names that a test tool sends, and the X keycodes behind them. */
#ifndef ORV_KEY_NAMES_H
#define ORV_KEY_NAMES_H

/* Expands KEY(name, keycode) for every key, in the key map's order. VK_ keys are virtual: no button
 * of the camera sends them. */
#define ORV_FOR_EACH_KEY(KEY) \
  KEY("KEY_MODE_LENS", 67)    \
  KEY("KEY_MODE_COLLAGE", 68) \
  KEY("KEY_MODE_WIFI", 69)    \
  KEY("KEY_MODE_SCENE", 70)   \
  KEY("KEY_MODE_MOVIE", 71)   \
  KEY("KEY_MODE_SMART", 72)   \
  KEY("KEY_MODE_P", 73)       \
  KEY("KEY_MODE_A", 74)       \
  KEY("KEY_MODE_S", 75)       \
  KEY("KEY_MODE_M", 76)       \
  KEY("KEY_UP", 80)           \
  KEY("KEY_LEFT", 83)         \
  KEY("KEY_RIGHT", 85)        \
  KEY("KEY_DOWN", 88)         \
  KEY("KEY_DELETE", 91)       \
  KEY("KEY_OK", 104)          \
  KEY("KEY_POWEROFF", 124)    \
  KEY("KEY_POWERON", 125)     \
  KEY("KEY_SW1", 133)         \
  KEY("KEY_SW2", 134)         \
  KEY("KEY_MENU", 135)        \
  KEY("KEY_PB", 179)          \
  KEY("KEY_FUNC", 180)        \
  KEY("KEY_EVC", 181)         \
  KEY("KEY_WHEELCW", 185)     \
  KEY("KEY_WHEELCCW", 186)    \
  KEY("KEY_RECORD", 220)      \
  KEY("KEY_WIFI", 223)        \
  KEY("VK_RESET", 190)        \
  KEY("VK_REPOSITION", 208)   \
  KEY("VK_INFO", 209)         \
  KEY("VK_DELALLIMAGE", 210)  \
  KEY("VK_CAPTURE_END", 211)

#endif
