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
    EXPECT_EXIT(fail(), testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(FailFast, DoesNotLookLikeSuccess) {
    EXPECT_NE(kFailFastStatus, 0);
    EXPECT_NE(kFailFastStatus, 1);
    EXPECT_NE(kFailFastStatus, 2);
}

} // namespace
} // namespace tarnwick::test
