/* The run mode that a file on the memory card asks for. */
#ifndef ORV_CONFIG_MODE_H
#define ORV_CONFIG_MODE_H

#include <orv/export.h>

ORV_BEGIN_DECLS

enum {
  ORV_CONFIG_MODE_NORMAL = 0,
  ORV_CONFIG_MODE_MULTI_LANG_POPUP = 1, /* multi-language, with pop-ups */
  ORV_CONFIG_MODE_MULTI_LANG = 2
};

/* Reads /sdcard/orv.conf, of which the first 79 characters of the first line count, for the first
 * of "normal", "multi-lang-popup" and "multi-lang" that stands anywhere in them. 1 when one does,
 * and `*mode` is its mode; otherwise, without a file too, 0 and `*mode` is normal. `mode` may be
 * null. Any thread. */
ORV_API int orv_check_config_mode(int* mode);

ORV_END_DECLS

#endif
