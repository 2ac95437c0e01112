// Running the default main context until something holds.
#ifndef ORV_TESTS_SUPPORT_MAIN_LOOP_H
#define ORV_TESTS_SUPPORT_MAIN_LOOP_H

#include <functional>

namespace orv_test {

// Tells whether `done` came true before the deadline.
bool run_until(const std::function<bool()>& done, int deadline_ms = 5000);

}  // namespace orv_test

#endif
