// Files that are written whole or not at all.

#include "platform/whole_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

namespace tarnwick::test {
namespace {

class WholeFileTest : public testing::Test {
protected:
    std::size_t FilesThere() const {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_.Path(""))) {
            ++count;
        }
        return count;
    }

    TempFolder folder_;
    std::string path_ = folder_.Path("report.json");
};

TEST_F(WholeFileTest, HasAllBytesUnderItsNameAndLeavesNothingElse) {
    WholeFile file(path_.c_str());
    ASSERT_TRUE(file.IsOpen());
    file.Write("one ", 4);
    file.Write("two", 3);
    EXPECT_FALSE(std::filesystem::exists(path_)) << "before it is closed";
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(ReadWholeFile(path_), "one two");
    EXPECT_EQ(FilesThere(), 1u);
}

TEST_F(WholeFileTest, IsWrittenAtAnyPlace) {
    WholeFile file(path_.c_str());
    file.Write("....two", 7);
    file.GoTo(0);
    file.Write("one ", 4);
    file.GoTo(7);
    file.Write("!", 1);
    EXPECT_EQ(file.Error(), 0);
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(ReadWholeFile(path_), "one two!");
}

TEST_F(WholeFileTest, SaysThatAPipeHasNoPlaces) {
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    const int reader = open(path_.c_str(), O_RDONLY | O_NONBLOCK);
    WholeFile file(path_.c_str());
    file.GoTo(4);
    EXPECT_EQ(file.Error(), ESPIPE);
    EXPECT_EQ(file.Close(), ESPIPE);
    close(reader);
}

TEST_F(WholeFileTest, IsntThereWhenItWasntClosed) {
    {
        WholeFile file(path_.c_str());
        file.Write("half", 4);
    }
    EXPECT_EQ(FilesThere(), 0u);
}

TEST_F(WholeFileTest, LeavesTheFormerFileWhenItWasntClosed) {
    folder_.Write("report.json", "former");
    {
        WholeFile file(path_.c_str());
        file.Write("half", 4);
    }
    EXPECT_EQ(ReadWholeFile(path_), "former");
    EXPECT_EQ(FilesThere(), 1u);
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

TEST_F(WholeFileTest, SaysWhyItCantBeMade) {
    WholeFile inNoFolder(folder_.Path("none/report.json").c_str());
    EXPECT_FALSE(inNoFolder.IsOpen());
    inNoFolder.Write("lost", 4);
    EXPECT_EQ(inNoFolder.Close(), ENOENT);
    WholeFile folder(folder_.Path("").c_str());
    EXPECT_EQ(folder.Close(), EISDIR);
    WholeFile tooLong(std::string(5000, 'a').c_str());
    EXPECT_EQ(tooLong.Close(), ENAMETOOLONG);
    WholeFile nameless("");
    EXPECT_NE(nameless.Close(), 0);
}

TEST_F(WholeFileTest, MayHaveANameOfAnyLength) {
    const std::string path = folder_.Path(std::string(255, 'a'));
    WholeFile file(path.c_str());
    file.Write("x", 1);
    EXPECT_EQ(file.Close(), 0);
    EXPECT_EQ(ReadWholeFile(path), "x");
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
