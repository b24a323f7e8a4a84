#include "platform/fail_fast.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace tarnwick::test {
namespace {

TEST(FailFastDeathTest, EndsTheProcessWithNoMessageAndNoHandlers) {
    const auto fail = [] {
        std::atexit([] { std::cerr << "a handler ran"; });
        FailFast();
    };
    EXPECT_EXIT(fail(), testing::ExitedWithCode(134), "^$");
}

} // namespace
} // namespace tarnwick::test
