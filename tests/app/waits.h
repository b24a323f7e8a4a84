// Waits for what the display does, which comes when it comes: a busy machine or a sanitizer may make seconds
// of it.
#pragma once

#include <gtest/gtest.h>

#include <QTest>

namespace tarnwick::test {

inline constexpr int kPatience = 60000; // milliseconds

// Handles events until `get` gives what is expected, and fails with what it gives in the end.
template <class Get, class Value>
void ExpectSoon(Get get, const Value& expected) {
    if (!QTest::qWaitFor([&] { return get() == expected; }, kPatience)) { EXPECT_EQ(get(), expected); }
}

} // namespace tarnwick::test
