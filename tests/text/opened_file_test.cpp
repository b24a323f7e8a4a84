// What the system denies a file.

#include "platform/opened_file.h"

#include "support/capture.h"
#include "support/temp_folder.h"
#include "text/text_file.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>

namespace tarnwick::test {
namespace {

// No file more can be opened while this object lives.
class NoMoreFiles {
public:
    NoMoreFiles() {
        getrlimit(RLIMIT_NOFILE, &former_);
        rlimit none = former_;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    NoMoreFiles(const NoMoreFiles&) = delete;
    NoMoreFiles& operator=(const NoMoreFiles&) = delete;
    ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &former_); }

private:
    rlimit former_{};
};

// A regular file that can be opened, and not be read from its start.
constexpr const char* kUnreadable = "/proc/self/mem";

struct TextRead {
    explicit TextRead(const std::string& path, bool canOpen = true) {
        TextMemory memory;
        TextFile file{.path = path};
        LogCapture log;
        std::optional<NoMoreFiles> limit;
        if (!canOpen) { limit.emplace(); }
        result = ReadTextFile(&file, &memory);
        limit.reset();
        console = log.TakeConsole();
        problem = file.problem != nullptr ? file.problem : "";
    }

    TextFileResult result;
    std::string console;
    std::string problem;
};

TEST(ReadTextFile, GivesTheSameBytesToSeveralThreads) {
    std::string text;
    for (int i = 0; text.size() < (std::size_t{9} << 20) + 77; ++i) { text += std::to_string(i) + '\n'; }
    const TempFolder folder;
    const std::string path = folder.Write("large.stp", text);
    for (const int count : {1, 3}) {
        StartedHelpers helpers(count);
        TextMemory memory;
        LineMarks lines;
        TextFile file{.path = path, .lines = &lines};
        ASSERT_EQ(ReadTextFile(&file, &memory, &helpers), TextFileResult::kRead);
        EXPECT_TRUE(std::string(file.text, file.size) == text);
        EXPECT_EQ(std::string(file.text + file.size, TextBlock::kPadding),
                  std::string(TextBlock::kPadding, '\0'));
        ASSERT_FALSE(lines.IsEmpty());
        for (std::size_t at = 0; at != std::string::npos; at = text.find('\n', at + 1)) {
            const std::size_t block = at / LineMarks::kBlock;
            ASSERT_EQ(lines.Next(block), block) << at;
        }
    }
}

TEST(OpenedFileTest, ToldWhyTheSystemDoesNotOpenIt) {
    const TempFolder folder;
    const std::string path = folder.Write("a.stp", "x");
    const NoMoreFiles limit;
    EXPECT_EQ(OpenedFile(path.c_str()).Failure(), EMFILE);
}

TEST(OpenedFileTest, IsNotTheSystemsFaultWhereThereIsNoSuchFile) {
    const TempFolder folder;
    folder.Write("a.stp", "x");
    for (const char* const name : {"missing.stp", "a.stp/b.stp", ""}) {
        const OpenedFile file(folder.Path(name).c_str());
        EXPECT_FALSE(file.IsOpen()) << name;
        EXPECT_EQ(file.Failure(), 0) << name;
    }
}

TEST(OpenedFileTest, TellsWhyItCannotBeReadOn) {
    const OpenedFile file(kUnreadable);
    ASSERT_TRUE(file.IsOpen());
    char byte = 0;
    int error = 0;
    EXPECT_EQ(file.ReadAt(0, &byte, 1, &error), 0u);
    EXPECT_EQ(error, EIO);
}

TEST(OpenedFileTest, ItsEndIsNoError) {
    const TempFolder folder;
    const OpenedFile file(folder.Write("a.stp", "abc").c_str());
    char bytes[8];
    int error = 1;
    EXPECT_EQ(file.ReadAt(1, bytes, sizeof bytes, &error), 2u);
    EXPECT_EQ(error, 0);
}

TEST(TextFileTest, SaysThatTooManyFilesAreOpen) {
    const TempFolder folder;
    const std::string path = folder.Write("a\nb.stp", "x");
    const TextRead read(path, false);
    EXPECT_EQ(read.result, TextFileResult::kNotOpened);
    EXPECT_EQ(read.console, "<E> " + folder.Path("a?b.stp") + ": it can't be opened: Too many open files\n");
    EXPECT_EQ(read.problem, "can't be opened");
}

TEST(TextFileTest, SaysNothingOfAFileThatIsNotThere) {
    const TempFolder folder;
    const TextRead read(folder.Path("a.stp"));
    EXPECT_EQ(read.result, TextFileResult::kNotOpened);
    EXPECT_EQ(read.console, "");
}

} // namespace
} // namespace tarnwick::test
