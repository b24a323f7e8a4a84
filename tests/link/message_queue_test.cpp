#include "link/message_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <vector>

namespace tarnwick::test {
namespace {

TEST(MessageQueue, HandlesEveryTextInTurnOnOneOtherThread) {
    std::vector<std::string> handled;
    std::thread::id handler;
    std::atomic<int> count = 0;
    MessageQueue queue([&](const std::string& text) {
        handler = std::this_thread::get_id();
        handled.push_back(text);
        ++count;
    });
    for (int i = 0; i < 10000; ++i) { ASSERT_TRUE(queue.Push(std::to_string(i))); }
    while (count < 10000) { std::this_thread::yield(); }
    queue.Stop();
    for (int i = 0; i < 10000; ++i) { ASSERT_EQ(handled[static_cast<std::size_t>(i)], std::to_string(i)); }
    EXPECT_NE(handler, std::this_thread::get_id());
}

TEST(MessageQueue, StopDropsWhatWaitsAndTakesNoMore) {
    std::atomic<int> begun = 0;
    std::atomic<bool> mayEnd = false;
    MessageQueue queue([&](const std::string&) {
        ++begun;
        while (!mayEnd) { std::this_thread::yield(); }
    });
    ASSERT_TRUE(queue.Push("at work"));
    ASSERT_TRUE(queue.Push("waits"));
    while (begun == 0) { std::this_thread::yield(); }
    std::thread stopper([&] { queue.Stop(); });
    while (queue.Push("")) { std::this_thread::yield(); } // until it has been told
    mayEnd = true;
    stopper.join();
    EXPECT_EQ(begun, 1);
    EXPECT_FALSE(queue.Push("too late"));
}

TEST(MessageQueue, RefusesWhatWouldFillTheMemory) {
    std::atomic<bool> begun = false;
    std::atomic<bool> mayEnd = false;
    std::atomic<int> count = 0;
    MessageQueue queue([&](const std::string&) {
        begun = true;
        while (!mayEnd) { std::this_thread::yield(); }
        ++count;
    });
    ASSERT_TRUE(queue.Push(""));
    while (!begun) { std::this_thread::yield(); }
    const std::string large(MessageQueue::kMostBytes / 4, 'x'); // with the string itself not quite a quarter
    for (int i = 0; i < 3; ++i) { EXPECT_TRUE(queue.Push(large)) << i; }
    EXPECT_FALSE(queue.Push(large));
    EXPECT_TRUE(queue.Push("a small one"));
    mayEnd = true;
    while (count < 5) { std::this_thread::yield(); }
    EXPECT_TRUE(queue.Push(large));
}

TEST(MessageQueue, CanBeStoppedBeforeItsFirstText) {
    MessageQueue queue([](const std::string&) { FAIL(); });
    queue.Stop();
    queue.Stop();
    EXPECT_FALSE(queue.Push("x"));
}

TEST(MessageQueue, GoesOnAfterATextThatTookTooMuchMemory) {
    std::atomic<int> count = 0;
    ::testing::internal::CaptureStderr();
    MessageQueue queue([&](const std::string& text) {
        ++count;
        if (text == "large") { throw std::bad_alloc(); }
    });
    ASSERT_TRUE(queue.Push("large"));
    ASSERT_TRUE(queue.Push("small"));
    while (count < 2) { std::this_thread::yield(); }
    queue.Stop();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "<E> Message of the server: it needs more memory than there is\n");
}

} // namespace
} // namespace tarnwick::test
