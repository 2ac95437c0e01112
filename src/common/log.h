// The agent's diagnostics: one coloured line a record in the system log, errors on standard error
// as well. No allocation, no state; any thread.
#ifndef ORV_COMMON_LOG_H
#define ORV_COMMON_LOG_H

namespace orv {

enum class log_level { info, error };

// Called through the macros, which capture the call site. One newline at the message's end is
// dropped; a message over 246 characters is cut there.
void log_line(log_level level, const char* file, const char* function, int line, const char* format,
              ...) noexcept __attribute__((format(printf, 5, 6)));

// For %s, which not every C library takes null for.
constexpr const char* printable(const char* text) {
  return text != nullptr ? text : "(null)";
}

}  // namespace orv

#define orv_log_info(...) \
  ::orv::log_line(::orv::log_level::info, __FILE_NAME__, __func__, __LINE__, __VA_ARGS__)
#define orv_log_error(...) \
  ::orv::log_line(::orv::log_level::error, __FILE_NAME__, __func__, __LINE__, __VA_ARGS__)

#endif
