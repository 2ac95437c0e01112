// Options that the monitor's subcommands share.
#ifndef ORV_TOOL_MONITOR_OPTIONS_H
#define ORV_TOOL_MONITOR_OPTIONS_H

#include <CLI/CLI.hpp>

namespace orvctl {

constexpr int default_cpu_interval_ms = 250;

// The names that may stand for a monitor.
CLI::Validator is_monitor();

// --interval, in milliseconds, `longest_ms` at most.
CLI::Option* add_interval(CLI::App& command, int& interval_ms, int longest_ms);

// Usage error when it was given though no monitor takes it.
void refuse_interval_without_cpu(const CLI::Option& interval, bool has_cpu);

}  // namespace orvctl

#endif
