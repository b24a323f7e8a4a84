// What the program answers before it opens a window, and where snapshots go.

#include "app/command_line.h"
#include "app/snapshot_folder.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <sys/stat.h>

namespace tarnwick::test {
namespace {

std::optional<int> Answer(std::vector<const char*> arguments, std::string* output) {
    arguments.insert(arguments.begin(), "tarnwick");
    ::testing::internal::CaptureStdout();
    const auto status = AnswerAtOnce(static_cast<int>(arguments.size()), arguments.data());
    std::fflush(stdout);
    *output = ::testing::internal::GetCapturedStdout();
    return status;
}

TEST(CommandLine, HelpAndVersionAreAnsweredWhereverTheyStand) {
    std::string output;
    EXPECT_EQ(Answer({"--version"}, &output), 0);
    EXPECT_EQ(output, "tarnwick " TARNWICK_VERSION "\n");
    EXPECT_EQ(Answer({"part.stp", "--help"}, &output), 0);
    EXPECT_NE(output.find("Usage: tarnwick"), std::string::npos);
}

TEST(CommandLine, AFileIsNotAnsweredAtOnce) {
    std::string output;
    EXPECT_EQ(Answer({"part.stp", "PRODUCT"}, &output), std::nullopt);
    EXPECT_EQ(Answer({}, &output), std::nullopt);
    EXPECT_EQ(output, "");
}

TEST(CommandLine, ItsArgumentsAreWhatStandsBehindTheName) {
    const char* const line[] = {"tarnwick", "a b.stp", "P 1"};
    EXPECT_EQ(ArgumentsOf(3, line), (std::vector<std::string>{"a b.stp", "P 1"}));
    EXPECT_TRUE(ArgumentsOf(0, nullptr).empty());
}

TEST(CommandLine, ResidentIsTakenOutOfTheArgumentsWhereverItStands) {
    qunsetenv("TARNWICK_RESIDENT");
    std::vector<std::string> arguments{"a.stp", "--resident", "P"};
    EXPECT_TRUE(TakeResident(&arguments));
    EXPECT_EQ(arguments, (std::vector<std::string>{"a.stp", "P"}));
    EXPECT_FALSE(TakeResident(&arguments));
}

TEST(CommandLine, ResidentIsAlsoAskedForByTheEnvironment) {
    std::vector<std::string> arguments{"a.stp"};
    for (const char* const value : {"", "0", "1"}) {
        qputenv("TARNWICK_RESIDENT", value);
        EXPECT_EQ(TakeResident(&arguments), std::string(value) == "1") << value;
    }
    qunsetenv("TARNWICK_RESIDENT");
    EXPECT_EQ(arguments.size(), 1u);
}

TEST(SnapshotFolder, IsMadeForTheUserAloneWhereItIsMissing) {
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    const std::string folder = SnapshotFolder();
    EXPECT_EQ(folder, home.path().toStdString() + "/Pictures/Tarnwick");
    struct stat status {};
    ASSERT_EQ(stat(folder.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    EXPECT_EQ(SnapshotFolder(), folder);
}

} // namespace
} // namespace tarnwick::test
