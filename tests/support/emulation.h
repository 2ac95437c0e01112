// Tests of another architecture's build run under an emulator, which cannot do everything.
#ifndef ORV_TESTS_SUPPORT_EMULATION_H
#define ORV_TESTS_SUPPORT_EMULATION_H

#include <gtest/gtest.h>

#ifdef ORV_EMULATED
#define ORV_SKIP_WHEN_EMULATED(why) GTEST_SKIP() << "under emulation: " << (why)
#else
#define ORV_SKIP_WHEN_EMULATED(why) static_cast<void>(0)
#endif

#endif
