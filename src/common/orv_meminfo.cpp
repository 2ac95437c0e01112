// The reader of the kernel's memory summary.

#include <fcntl.h>
#include <orv/meminfo.h>
#include <stdio.h>
#include <unistd.h>

#include "common/meminfo_text.h"

namespace orv {
namespace {

constexpr char meminfo_file[] = "/proc/meminfo";

constexpr char no_proc[] =
    "Error: /proc must be mounted\n"
    "  To mount /proc at boot you need an /etc/fstab line like:\n"
    "      /proc   /proc   proc    defaults\n"
    "  In the meantime, run \"mount /proc /proc -t proc\"\n";
static_assert(sizeof no_proc - 1 == 178);

// Empty at load, and once it was taken: what is not refilled yields nothing.
char summary[2048];

void refill() {
  const int fd = open(meminfo_file, O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    fputs(no_proc, stderr);
    fflush(nullptr);
    return;
  }
  const ssize_t length = read(fd, summary, sizeof summary - 1);
  if (length < 0) {
    perror(meminfo_file);
    fflush(nullptr);
  } else {
    summary[length] = '\0';
  }
  close(fd);
}

}  // namespace
}  // namespace orv

void orv_meminfo(const meminfo_row* table, int count) {
  orv::refill();
  orv::take_meminfo(orv::summary, table, count);
}
