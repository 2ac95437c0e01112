// How a host names itself to the programs that it starts: in ORV_HOST_PID, by its process id and
// its start time, since an id alone may be another process's by the time that it is looked at.
#ifndef ORV_PLATFORM_HOST_PROCESS_H
#define ORV_PLATFORM_HOST_PROCESS_H

#include <sys/types.h>

#include <optional>

namespace platform {

struct process_identity {
  pid_t pid;
  unsigned long long start_ticks;  // since boot
};

// Of the process with this id now; none when it is gone or dead, reaped or not.
std::optional<process_identity> running_process(pid_t pid);

// Has every program that this process starts from now on know it as its host.
void name_this_process_host();

// The process that ORV_HOST_PID names; none without that variable.
std::optional<process_identity> named_host();

bool still_runs(const process_identity& process);

}  // namespace platform

#endif
