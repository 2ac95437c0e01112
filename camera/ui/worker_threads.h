// The threads of a camera application: dozens that wait, a few that work in short bursts.
#pragma once

#include <string_view>

bool is_worker_thread(std::string_view name);

// Starts them all, and lets the one called `hang` (empty: none) end up in an
// uninterruptible wait. Ends the process with status 1 when a thread cannot be started.
void start_worker_threads(std::string_view hang);
