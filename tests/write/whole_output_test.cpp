// What is written is there whole or not at all.

#include "support/archive.h"
#include "write/byte_sink.h"
#include "write/whole_output.h"
#include "write/zip_writer.h"

#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

TEST_F(WholeOutputTest, AFileThatIsNotClosedIsDropped) {
    for (const bool compress : {false, true}) {
        OpenFile(path_, compress)->Write(LongText());
        EXPECT_EQ(FilesThere(), 0u) << compress;
    }
}

TEST_F(WholeOutputTest, AnArchiveThatIsNotClosedLeavesTheFormerOne) {
    folder_.Write("model", "former");
    {
        ZipWriter zip(path_);
        EXPECT_TRUE(zip.Add("a", true, [](ByteSink* sink) { sink->Write(LongText()); }));
    }
    EXPECT_EQ(ReadWholeFile(path_), "former");
    EXPECT_EQ(FilesThere(), 1u);
}

TEST_F(WholeOutputTest, AnArchiveOfMoreMembersThan16BitsCountHasThemAll) {
    constexpr int kMembers = 65537;
    ZipWriter zip(path_);
    for (int i = 0; i < kMembers; ++i) {
        ASSERT_TRUE(zip.Add(std::to_string(i), true, [](ByteSink*) {}));
    }
    EXPECT_TRUE(zip.Close());
    const std::vector<std::string> names = MemberNames(path_);
    ASSERT_EQ(names.size(), static_cast<std::size_t>(kMembers));
    EXPECT_EQ(names.front(), "0");
    EXPECT_EQ(names.back(), "65536");
}

TEST_F(WholeOutputTest, AMemberWhoseNameIsTooLongSpoilsItsArchive) {
    ZipWriter zip(path_);
    EXPECT_FALSE(zip.Add(std::string(65536, 'a'), true, [](ByteSink*) {}));
    EXPECT_FALSE(zip.Close());
    EXPECT_EQ(zip.Error(), "the name of a member is too long");
    EXPECT_EQ(FilesThere(), 0u);
}

} // namespace
} // namespace tarnwick::test
