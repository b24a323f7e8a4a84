// Where what is written doesn't fit.

#include "write/byte_sink.h"
#include "write/whole_output.h"
#include "write/zip_writer.h"

#include <sys/resource.h>

#include <csignal>

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

TEST_F(WholeOutputTest, AnArchiveOnADeviceThatTakesNothingIsToldSo) {
    if (!std::filesystem::exists("/dev/full")) { GTEST_SKIP(); }
    ZipWriter zip("/dev/full");
    zip.Add("a", true, [](ByteSink* sink) { sink->Write("text"); });
    EXPECT_FALSE(zip.Close());
    EXPECT_EQ(zip.Error(), "No space left on device");
}

} // namespace
} // namespace tarnwick::test
