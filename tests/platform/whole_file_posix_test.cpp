// Pipes, devices, links and modes, as Linux has them.

#include "platform/whole_file_fixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace tarnwick::test {
namespace {

TEST_F(WholeFileTest, SaysThatAPipeHasNoPlaces) {
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    const int reader = open(path_.c_str(), O_RDONLY | O_NONBLOCK);
    WholeFile file(path_.c_str());
    file.GoTo(4);
    EXPECT_EQ(file.Error(), ESPIPE);
    EXPECT_EQ(file.Close(), ESPIPE);
    close(reader);
}

TEST_F(WholeFileTest, KeepsTheModeOfTheFormerFile) {
    folder_.Write("report.json", "former");
    chmod(path_.c_str(), 0640);
    WholeFile file(path_.c_str());
    file.Write("new", 3);
    EXPECT_EQ(file.Close(), 0);
    struct stat status;
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_EQ(ReadWholeFile(path_), "new");
}

TEST_F(WholeFileTest, FillsAnEmptyFileInPlaceOnlyWhenToldTo) {
    folder_.Write("report.json", "");
    struct stat before;
    struct stat after;
    ASSERT_EQ(stat(path_.c_str(), &before), 0);
    for (const bool isFilled : {true, false}) {
        WholeFile file(path_.c_str(), isFilled ? WholeFile::Empty::kFilled : WholeFile::Empty::kReplaced);
        file.Write("new", isFilled ? 0 : 3);
        EXPECT_EQ(file.Close(), 0);
        ASSERT_EQ(stat(path_.c_str(), &after), 0);
        EXPECT_EQ(before.st_ino == after.st_ino, isFilled);
    }
    WholeFile full(path_.c_str(), WholeFile::Empty::kFilled);
    full.Write("newer", 5);
    EXPECT_EQ(ReadWholeFile(path_), "new") << "before it is closed";
    EXPECT_EQ(full.Close(), 0);
}

TEST_F(WholeFileTest, SaysThatADeviceIsFull) {
    WholeFile file("/dev/full");
    file.Write("lost", 4);
    EXPECT_EQ(file.Close(), ENOSPC);
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

TEST_F(WholeFileTest, IsWrittenThroughALink) {
    folder_.Write("far.json", "former");
    ASSERT_EQ(symlink("far.json", path_.c_str()), 0);
    WholeFile file(path_.c_str());
    file.Write("new", 3);
    EXPECT_EQ(file.Close(), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(path_));
    EXPECT_EQ(ReadWholeFile(folder_.Path("far.json")), "new");
}

TEST_F(WholeFileTest, LeavesALinkedFileEmptyWhenItWasntClosed) {
    folder_.Write("far.json", "former");
    ASSERT_EQ(symlink("far.json", path_.c_str()), 0);
    {
        WholeFile file(path_.c_str());
        file.Write("half", 4);
    }
    EXPECT_EQ(ReadWholeFile(folder_.Path("far.json")), "");
}

TEST_F(WholeFileTest, DoesntGetRoundAFileThatMayNotBeWritten) {
    if (geteuid() == 0) { GTEST_SKIP() << "root may write everything"; }
    folder_.Write("report.json", "former");
    chmod(path_.c_str(), 0400);
    WholeFile file(path_.c_str());
    EXPECT_EQ(file.Close(), EACCES);
    EXPECT_EQ(ReadWholeFile(path_), "former");
}

} // namespace
} // namespace tarnwick::test
