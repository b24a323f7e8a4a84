// Files that are written whole or not at all.

#include "platform/whole_file_fixture.h"

#include <cerrno>

namespace tarnwick::test {
namespace {

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

} // namespace
} // namespace tarnwick::test
