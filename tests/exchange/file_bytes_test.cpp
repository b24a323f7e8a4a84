#include "exchange/file_bytes.h"

#include "support/temp_folder.h"
#include "write/byte_sink.h"
#include "write/zip_writer.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

namespace tarnwick::test {
namespace {

constexpr std::size_t kMost = std::size_t{1} << 30;

std::string Zlib(const std::string& text) {
    const auto length = static_cast<uLong>(text.size());
    uLongf size = compressBound(length);
    std::string packed(size, '\0');
    compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
             length);
    packed.resize(size);
    return packed;
}

std::string LongText() {
    std::string text;
    for (int i = 0; i < 100000; ++i) { text += std::to_string(i * 7919) + ","; }
    return text;
}

TEST(FileBytes, ReadsPlainAndPackedFilesByTheirContentAlone) {
    const TempFolder folder;
    const std::string text = LongText();
    EXPECT_EQ(ReadFileBytes(folder.Write("plain.stpz", text), kMost).Text(), text);
    EXPECT_EQ(ReadFileBytes(folder.Write("zlib.stp", Zlib(text)), kMost).Text(), text);
    const std::string gzip = folder.Path("gzip.stp.gz");
    const auto sink = OpenFile(gzip, true);
    sink->Write(text);
    ASSERT_TRUE(sink->Close());
    EXPECT_EQ(ReadFileBytes(gzip, kMost).Text(), text);
}

TEST(FileBytes, TakesTheStepFileOfAZipArchive) {
    const TempFolder folder;
    const std::string path = folder.Path("packed.stpz");
    ZipWriter zip(path);
    ASSERT_TRUE(zip.Add("readme.txt", false, [](ByteSink* sink) { sink->Write("nothing"); }));
    ASSERT_TRUE(zip.Add("sub/part.STEP", false, [](ByteSink* sink) { sink->Write(LongText()); }));
    ASSERT_TRUE(zip.Close());
    const FileBytes bytes = ReadFileBytes(path, kMost);
    EXPECT_EQ(bytes.Text(), LongText());
}

TEST(FileBytes, OfEachMemberOfAZipArchiveAreToBeHad) {
    const TempFolder folder;
    const std::string path = folder.Path("packed.zip");
    ZipWriter zip(path);
    ASSERT_TRUE(zip.Add("a.stp", false, [](ByteSink* sink) { sink->Write(LongText()); }));
    ASSERT_TRUE(zip.Add("sub/", true, [](ByteSink*) {}));
    ASSERT_TRUE(zip.Add("sub/b.stpz", true, [](ByteSink* sink) { sink->Write(Zlib(LongText())); }));
    ASSERT_TRUE(zip.Add("c.txt", false, [](ByteSink* sink) { sink->Write("c"); }));
    ASSERT_TRUE(zip.Close());
    EXPECT_EQ(StepMembersOf(path).names, (std::vector<std::string>{"a.stp", "sub/b.stpz"}));
    EXPECT_EQ(ReadMemberBytes(path, "a.stp", kMost).Text(), LongText());
    EXPECT_EQ(ReadMemberBytes(path, "sub/b.stpz", kMost).Text(), LongText());
    EXPECT_EQ(ReadMemberBytes(path, "absent.stp", kMost).error, "the archive can't be read");
    EXPECT_EQ(ReadMemberBytes(path, "a.stp", 100).error, "there is not enough memory for it");
    EXPECT_TRUE(StepMembersOf(folder.Write("plain.stp", LongText())).names.empty());
    EXPECT_TRUE(StepMembersOf(folder.Path("absent")).names.empty());
}

TEST(FileBytes, ACutStreamGivesWhatCameBeforeAndAnError) {
    const TempFolder folder;
    const std::string text = LongText();
    const std::string packed = Zlib(text);
    const FileBytes bytes =
        ReadFileBytes(folder.Write("cut.stpz", packed.substr(0, packed.size() / 2)), kMost);
    EXPECT_EQ(bytes.error, "its compressed stream is damaged or cut");
    EXPECT_GT(bytes.size, text.size() / 4);
    EXPECT_TRUE(text.starts_with(bytes.Text()));
}

TEST(FileBytes, MoreThanIsAllowedIsAnError) {
    const TempFolder folder;
    const FileBytes bytes =
        ReadFileBytes(folder.Write("bomb.stpz", Zlib(std::string(10'000'000, ' '))), 1'000'000);
    EXPECT_FALSE(bytes.IsRead());
    EXPECT_EQ(bytes.error, "there is not enough memory for it");
}

TEST(FileBytes, WhatCantBeOpenedIsToldInTheWordsOfTheSystem) {
    const TempFolder folder;
    EXPECT_EQ(ReadFileBytes(folder.Path("absent"), kMost).error, "No such file or directory");
    EXPECT_EQ(ReadFileBytes(folder.Path(""), kMost).error, "it is no regular file");
}

} // namespace
} // namespace tarnwick::test
