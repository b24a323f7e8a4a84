#include "platform/helpers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace tarnwick::test {
namespace {

// Work in so many pieces that each thread is at one before the first ends.
class Meeting {
public:
    explicit Meeting(int guests) : guests_(guests) {}

    void Come(bool isOwn) {
        {
            const std::lock_guard guard(lock_);
            own_ += isOwn ? 1 : 0;
            threads_.insert(std::this_thread::get_id());
        }
        ++here_;
        while (here_ < guests_) { std::this_thread::yield(); }
    }
    int Own() const { return own_; }
    std::size_t Threads() const { return threads_.size(); }

private:
    const int guests_;
    std::atomic<int> here_ = 0;
    std::mutex lock_;
    int own_ = 0;
    std::set<std::thread::id> threads_;
};

TEST(StartedHelpers, AllTakePartBesideTheCaller) {
    StartedHelpers helpers(3, 0);
    for (int round = 0; round < 20; ++round) {
        Meeting meeting(4);
        helpers.Run([&](bool isOwn) { meeting.Come(isOwn); });
        EXPECT_EQ(meeting.Own(), 1);
        EXPECT_EQ(meeting.Threads(), 4u);
    }
}

TEST(Helpers, AreForLargeFilesWhereThereAreSome) {
    EXPECT_TRUE(StartedHelpers(1, 100).AreFor(100));
    EXPECT_FALSE(StartedHelpers(1, 100).AreFor(99));
    EXPECT_FALSE(StartedHelpers(0, 100).AreFor(100));
}

TEST(IdleHelpers, JoinWhoeverHasWorkAndEndWhenNobodyIsBusy) {
    IdleHelpers helpers(2, 0);
    std::vector<std::thread> threads;
    std::atomic<int> helped = 0;
    for (int i = 0; i < 3; ++i) { helpers.Begin(); }
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            helpers.End();
            while (helpers.Help(0) == IdleHelpers::Outcome::kHelped) {
                ++helped;
                helpers.Begin();
                helpers.End();
            }
        });
    }
    for (int round = 0; round < 20; ++round) {
        Meeting meeting(3);
        helpers.Run([&](bool isOwn) { meeting.Come(isOwn); });
        EXPECT_EQ(meeting.Own(), 1);
        EXPECT_EQ(meeting.Threads(), 3u);
    }
    helpers.End();
    for (std::thread& thread : threads) { thread.join(); }
    EXPECT_EQ(helped, 40);
}

TEST(IdleHelpers, AreDoneWithoutWhereNobodyIsIdle) {
    IdleHelpers helpers(2, 0);
    helpers.Begin();
    int calls = 0;
    helpers.Run([&](bool isOwn) { calls += isOwn ? 1 : 100; });
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(helpers.Help(1), IdleHelpers::Outcome::kTimeOver) << "the work is done, its thread still busy";
    helpers.End();
    EXPECT_EQ(helpers.Help(0), IdleHelpers::Outcome::kNobodyBusy);
}

TEST(IdleHelpers, ComeNoMoreThanThereAreCoresFor) {
    IdleHelpers helpers(1, 0);
    std::vector<std::thread> threads;
    helpers.Begin();
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            while (helpers.Help(0) == IdleHelpers::Outcome::kHelped) {}
        });
    }
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> most = 0;
        helpers.Run([&](bool) { ++most; });
        EXPECT_LE(most, 2);
    }
    helpers.End();
    for (std::thread& thread : threads) { thread.join(); }
}

} // namespace
} // namespace tarnwick::test
