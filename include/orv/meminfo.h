/* The reader of the kernel's memory summary. Main loop's thread only. */
#ifndef ORV_MEMINFO_H
#define ORV_MEMINFO_H

#include <stdint.h>

#include <orv/export.h>

ORV_BEGIN_DECLS

/* One wanted field. */
struct meminfo_row {
  const char* name; /* as the kernel writes it before the colon, under 16 characters */
  uint32_t* slot;   /* receives the value in kB */
};

/* Reads the first 2047 bytes of /proc/meminfo, once, and stores what they hold of the `count`
 * fields in `table`, which is sorted by name in the order of strcmp. The table stays the caller's;
 * neither it nor a pointer in it may be null. A field that is not found keeps its value, and so do
 * all of them when the file cannot be read, which is told on standard error. */
ORV_API void orv_meminfo(const struct meminfo_row* table, int count);

ORV_END_DECLS

#endif
