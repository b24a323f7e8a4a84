#include "platform/console.h"

#include "support/capture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

namespace tarnwick::test {
namespace {

TEST(Console, IsStandardError) {
    std::string output;
    std::string console;
    {
        LogCapture log;
        ConsolePrint("End thread %d\n", 3);
        output = log.TakeOutput();
        console = log.TakeConsole();
    }
    EXPECT_EQ(console, "End thread 3\n");
    EXPECT_EQ(output, "");
}

TEST(Output, IsStandardOutput) {
    std::string output;
    std::string console;
    {
        LogCapture log;
        OutputPrint("total uncompress size = %u, in %u step\n", 7u, 1u);
        output = log.TakeOutput();
        console = log.TakeConsole();
    }
    EXPECT_EQ(output, "total uncompress size = 7, in 1 step\n");
    EXPECT_EQ(console, "");
}

TEST(Output, IsSilentWhenItBelongsToSomebodyElse) {
    std::string output;
    {
        LogCapture log;
        EnableOutput(false);
        OutputPrint("not this\n");
        EnableOutput(true);
        OutputPrint("this\n");
        output = log.TakeOutput();
    }
    EXPECT_EQ(output, "this\n");
}

TEST(Console, WritesTextsAsTheyStand) {
    const std::string text = "%d 100% \xE9\xFF " + std::string(2000, 'x') + "\n";
    std::string console;
    {
        LogCapture log;
        ConsolePrint("%s", text.c_str());
        console = log.TakeConsole();
    }
    EXPECT_EQ(console, text);
}

TEST(Console, WritesTextsOfEveryLength) {
    for (std::size_t length : {0u, 1u, 510u, 511u, 512u, 513u, 100000u}) {
        const std::string text(length, 'x');
        std::string console;
        {
            LogCapture log;
            ConsolePrint("%s", text.c_str());
            console = log.TakeConsole();
        }
        EXPECT_EQ(console, text);
    }
}

TEST(Console, GivesASinkACopy) {
    std::string copied;
    const ConsoleSink sink = [](void* context, const char* text, std::size_t length) {
        static_cast<std::string*>(context)->append(text, length);
    };
    {
        LogCapture log;
        SetConsoleSink(sink, &copied);
        ConsolePrint("one\n");
        OutputPrint("the other channel\n");
        ConsolePrint("two\n");
        SetConsoleSink(nullptr, nullptr);
        ConsolePrint("three\n");
    }
    EXPECT_EQ(copied, "one\ntwo\n");
}

TEST(Console, NeverInterleavesTwoCalls) {
    std::string console;
    {
        LogCapture log;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([i] {
                for (int n = 0; n < 500; ++n) { ConsolePrint("thread %d says a line of some length\n", i); }
            });
        }
        for (std::thread& thread : threads) { thread.join(); }
        console = log.TakeConsole();
    }
    EXPECT_EQ(std::count(console.begin(), console.end(), '\n'), 2000);
    for (std::size_t at = 0; at < console.size(); at = console.find('\n', at) + 1) {
        ASSERT_EQ(console.compare(at, 7, "thread "), 0);
        ASSERT_EQ(console.substr(at + 8, 28), " says a line of some length\n");
    }
}

} // namespace
} // namespace tarnwick::test
