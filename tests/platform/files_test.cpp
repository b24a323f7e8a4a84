// Files by names in any script, and of any length.

#include "platform/files.h"
#include "platform/opened_file.h"
#include "platform/paths.h"
#include "platform/whole_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

bool WriteAll(const std::string& path, std::string_view bytes) {
    WholeFile file(path.c_str());
    file.Write(bytes.data(), bytes.size());
    return file.Close() == 0;
}

std::string ReadAll(const std::string& path) {
    const OpenedFile file(path.c_str());
    std::string bytes(static_cast<std::size_t>(file.Size()), '\0');
    int error = 0;
    bytes.resize(file.IsOpen() ? file.ReadAt(0, bytes.data(), bytes.size(), &error) : 0);
    return bytes;
}

TEST(FilesTest, AreWrittenAndReadByNamesInAnyScript) {
    const TempFolder folder;
    for (const char* const name : {"part", "Prüfstück", "Εξάρτημα", "деталь", "部品", "🔩 bolt"}) {
        const std::string above = folder.Path(name);
        std::string why;
        ASSERT_TRUE(MakeFolders(above, &why)) << name << ": " << why;
        const std::string path = above + "/" + name + ".stp";
        EXPECT_TRUE(WriteAll(path, name)) << name;
        EXPECT_EQ(ReadAll(path), name);
        EXPECT_TRUE(IsRegularFile(path)) << name;
        EXPECT_EQ(RemoveFile(path), 0) << name;
        EXPECT_FALSE(IsRegularFile(path)) << name;
    }
}

TEST(FilesTest, MayHavePathsBeyond260Characters) {
    const TempFolder folder;
    std::string path = folder.Path("deep");
    for (int i = 0; i < 8; ++i) { path += "/" + std::string(60, 'a'); }
    std::string why;
    ASSERT_TRUE(MakeFolders(path, &why)) << why;
    path += "/part.stp";
    EXPECT_TRUE(WriteAll(path, "first"));
    EXPECT_TRUE(WriteAll(path, "second"));
    EXPECT_EQ(ReadAll(path), "second");
}

TEST(FilesTest, AreTheSameByWhateverPath) {
    const TempFolder folder;
    const std::string path = folder.Write("a.stp", "x");
    const std::string other = folder.Write("b.stp", "x");
    const std::string around = folder.Path("../") + path.substr(path.rfind('/', path.rfind('/') - 1) + 1);
    EXPECT_TRUE(AreSameFile(path, around));
    EXPECT_EQ(RealPath(path), RealPath(around));
    EXPECT_FALSE(AreSameFile(path, other));
    EXPECT_FALSE(AreSameFile(folder.Path("c.stp"), folder.Path("c.stp")));
}

TEST(FilesTest, HaveTheNameAfterTheLastSeparator) {
    EXPECT_EQ(NameOf("/m/part.stp"), "part.stp");
    EXPECT_EQ(NameOf("/part.stp"), "part.stp");
    EXPECT_EQ(NameOf("part.stp"), "part.stp");
    EXPECT_EQ(NameOf("m/"), "");
}

TEST(FilesTest, ThatAreNotThereNeedNoRemoving) {
    const TempFolder folder;
    EXPECT_EQ(RemoveFile(folder.Path("missing.stp")), 0);
}

TEST(FilesTest, HaveNoFolderWhereAFileStands) {
    const TempFolder folder;
    std::string why;
    EXPECT_FALSE(MakeFolders(folder.Write("a.stp", "x") + "/below", &why));
    EXPECT_NE(why, "");
    EXPECT_FALSE(IsRegularFile(folder.Path("")));
}

} // namespace
} // namespace tarnwick::test
