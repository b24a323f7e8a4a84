// What is written is there whole or not at all.

#include "support/archive.h"
#include "support/temp_folder.h"
#include "write/byte_sink.h"
#include "write/zip_writer.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

// Files can't grow beyond `bytes` while this object lives.
class SmallFiles {
public:
    explicit SmallFiles(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &former_);
        rlimit limit = former_;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;
    ~SmallFiles() {
        setrlimit(RLIMIT_FSIZE, &former_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    void (*handler_)(int);
    rlimit former_{};
};

// Text that doesn't pack well.
std::string LongText() {
    std::string text;
    unsigned number = 1;
    for (int i = 0; i < 300000; ++i) {
        number = number * 1664525u + 1013904223u;
        text += static_cast<char>(' ' + (number >> 24) % 90);
    }
    return text;
}

class WholeOutputTest : public testing::Test {
protected:
    std::size_t FilesThere() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_.Path("")),
                                                      std::filesystem::directory_iterator()));
    }

    const TempFolder folder_;
    const std::string path_ = folder_.Path("model");
};

TEST_F(WholeOutputTest, AFileThatIsNotClosedIsDropped) {
    for (const bool compress : {false, true}) {
        OpenFile(path_, compress)->Write(LongText());
        EXPECT_EQ(FilesThere(), 0u) << compress;
    }
}

TEST_F(WholeOutputTest, AFileThatDoesNotFitIsNotThere) {
    const SmallFiles limit(100000);
    for (const bool compress : {false, true}) {
        const auto sink = OpenFile(path_, compress);
        sink->Write(LongText());
        EXPECT_FALSE(sink->Close()) << compress;
        EXPECT_EQ(sink->Error(), "File too large") << compress;
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

TEST_F(WholeOutputTest, AnArchiveThatDoesNotFitIsNotThere) {
    const SmallFiles limit(100000);
    for (const std::size_t length : {std::size_t{99950}, std::size_t{300000}}) {
        ZipWriter zip(path_);
        zip.Add("a", true, [&](ByteSink* sink) { sink->Write(LongText().substr(0, length)); });
        EXPECT_FALSE(zip.Close()) << length;
        EXPECT_EQ(zip.Error(), "File too large") << length;
        EXPECT_EQ(FilesThere(), 0u) << length;
    }
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

TEST_F(WholeOutputTest, AnArchiveOnADeviceThatTakesNothingIsToldSo) {
    if (!std::filesystem::exists("/dev/full")) { GTEST_SKIP(); }
    ZipWriter zip("/dev/full");
    zip.Add("a", true, [](ByteSink* sink) { sink->Write("text"); });
    EXPECT_FALSE(zip.Close());
    EXPECT_EQ(zip.Error(), "No space left on device");
}

} // namespace
} // namespace tarnwick::test
