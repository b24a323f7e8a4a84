// Programs that run beside the viewer.

#include "platform/child_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

namespace tarnwick::test {
namespace {

using ::testing::HasSubstr;

constexpr const char* kOddBytes = "a\xFF\xC3(\"$x' b";

void WaitFor(ChildProgram* program) {
    while (program->IsRunning()) { std::this_thread::sleep_for(std::chrono::milliseconds(1)); }
}

std::string WaitForText(const std::string& path) {
    std::string text;
    for (int i = 0; i < 5000 && text.empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (access(path.c_str(), R_OK) == 0) { text = ReadWholeFile(path); }
    }
    return text;
}

TEST(ChildProgram, HasItsArgumentsAsTheBytesThatTheyAre) {
    const TempFolder folder;
    ChildProgram program({"sh", "-c", "printf %s \"$1\" > \"$2\"", "sh", kOddBytes, folder.Path("seen")});
    WaitFor(&program);
    EXPECT_EQ(ReadWholeFile(folder.Path("seen")), kOddBytes);
}

TEST(ChildProgram, FindsNothingOnItsStandardInput) {
    const TempFolder folder;
    ChildProgram program({"sh", "-c", "cat > \"$1\"; echo end >> \"$1\"", "sh", folder.Path("seen")});
    WaitFor(&program);
    EXPECT_EQ(ReadWholeFile(folder.Path("seen")), "end\n");
}

TEST(ChildProgram, EndsWhenItIsKilled) {
    ChildProgram program({"sleep", "1000"});
    EXPECT_TRUE(program.IsRunning());
    program.Kill();
    EXPECT_FALSE(program.IsRunning());
}

TEST(ChildProgram, IsToldWhenItCannotBeStarted) {
    ::testing::internal::CaptureStderr();
    ChildProgram program({"no-such-program"});
    EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                HasSubstr("<E> no-such-program can't be started: No such file or directory\n"));
    EXPECT_FALSE(program.IsRunning());
}

TEST(ChildProgram, TellsWhetherItEndedWithStatus0) {
    const auto succeeds = [](const std::string& script) {
        ChildProgram program({"sh", "-c", script});
        WaitFor(&program);
        return program.HasSucceeded();
    };
    EXPECT_TRUE(succeeds("exit 0"));
    EXPECT_FALSE(succeeds("exit 1"));
    EXPECT_FALSE(succeeds("kill -9 $$"));
    ChildProgram killed({"sleep", "1000"});
    killed.Kill();
    EXPECT_FALSE(killed.HasSucceeded());
}

TEST(StartDetached, PassesBytesAndWaitsForNothing) {
    const TempFolder folder;
    const std::string script =
        "printf '%s' \"$1\" > \"$2\".part; mv \"$2\".part \"$2\"; sleep 1000 & echo $! > \"$3\"";
    StartDetached({"/bin/sh", "-c", script, "sh", kOddBytes, folder.Path("seen"), folder.Path("number")});
    EXPECT_EQ(WaitForText(folder.Path("seen")), kOddBytes);
    const std::string number = WaitForText(folder.Path("number"));
    ASSERT_FALSE(number.empty());
    kill(std::stoi(number), SIGKILL);
}

} // namespace
} // namespace tarnwick::test
