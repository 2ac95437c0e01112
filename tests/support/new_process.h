// For what the agent remembers as long as its process lives. The test program itself must not have
// given it anything to remember.
#ifndef ORV_TESTS_SUPPORT_NEW_PROCESS_H
#define ORV_TESTS_SUPPORT_NEW_PROCESS_H

#include <functional>

namespace orv_test {

// Runs the scenario in a child of this process; its failures fail the test here as well.
void in_a_new_process(const std::function<void()>& scenario);

}  // namespace orv_test

#endif
