#include "p21/model_file.h"
#include "support/capture.h"
#include "support/p21_text.h"
#include "support/packed.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace tarnwick::test {
namespace {

int CompressionOf(const std::string& name) {
    ReaderWorkspace workspace;
    return StepModel(workspace, name).compression;
}

std::string InflateLine(std::size_t size, int steps) {
    return "total uncompress size = " + std::to_string(size) + ", in " + std::to_string(steps) + " step\n";
}

TEST(Compression, FollowsFromTheName) {
    EXPECT_EQ(CompressionOf("part.stp"), 0);
    EXPECT_EQ(CompressionOf("part.stp.Z"), 1);
    EXPECT_EQ(CompressionOf("part.stp.z"), 1);
    EXPECT_EQ(CompressionOf("part.stpz"), 2);
    EXPECT_EQ(CompressionOf("part.stpZ"), 2);
    EXPECT_EQ(CompressionOf("part.step"), 0);
    EXPECT_EQ(CompressionOf("part.stpx"), 2) << "a p in the next-to-last place is enough";
    EXPECT_EQ(CompressionOf("part.sp1"), 2);
    EXPECT_EQ(CompressionOf("part.sP1"), 0);
    EXPECT_EQ(CompressionOf("part.p21"), 0);
    EXPECT_EQ(CompressionOf("z"), 1);
    EXPECT_EQ(CompressionOf("p"), 0);
    EXPECT_EQ(CompressionOf(""), 0);
}

// A file that is asked for under one name and stands in the folder under another.
struct Twin {
    std::string asked;
    std::string there; // empty for none
    bool packed;
    int result;
    std::string fileName;
    int compression;
};

void Check(const Twin& twin) {
    const TempFolder folder;
    const std::string text = P21Text({"#1=X();"});
    if (!twin.there.empty()) { folder.Write(twin.there, twin.packed ? ZlibPacked(text) : text); }
    const ModelFile file(folder, twin.asked);
    EXPECT_EQ(file.result, twin.result) << twin.asked << " of " << twin.there;
    EXPECT_EQ(file.model->fileName, folder.Path(twin.fileName)) << twin.asked << " of " << twin.there;
    EXPECT_EQ(file.model->compression, twin.compression) << twin.asked << " of " << twin.there;
    EXPECT_EQ(file.model->entityCount, twin.result == 0 ? 1 : 0);
    EXPECT_EQ(file.console, "");
}

TEST(ReadFile, TakesTheNameThatIsThere) {
    Check({"x.stp", "x.stp", false, 0, "x.stp", 0});
    Check({"x.stp.Z", "x.stp.Z", true, 0, "x.stp.Z", 1});
    Check({"x.stp.z", "x.stp.z", true, 0, "x.stp.z", 1});
    Check({"x.stpz", "x.stpz", true, 0, "x.stpz", 2});
    Check({"x.sp1", "x.sp1", true, 0, "x.sp1", 2});
}

TEST(ReadFile, FallsBackFromAPlainNameToItsCompressedTwin) {
    Check({"x.stp", "x.stpz", true, 0, "x.stpz", 2});
    Check({"x.dat", "x.datz", true, 0, "x.datz", 2});
}

TEST(ReadFile, FallsBackFromACompressedNameToItsPlainTwin) {
    Check({"x.stp.Z", "x.stp", false, 0, "x.stp", 0});
    Check({"x.stp.z", "x.stp", false, 0, "x.stp", 0});
    Check({"x.stpz", "x.stp", false, 0, "x.stp", 0});
    Check({"x.sp1", "x.sp", false, 0, "x.sp", 0});
}

TEST(ReadFile, FallsBackOnceOnly) {
    Check({"x.stp", "x.stp.Z", true, 1, "x.stpz", 0});
    Check({"x.stp.Z", "x.stpz", true, 1, "x.stp", 1});
    Check({"x.stpz", "x.stp.Z", true, 1, "x.stp", 2});
}

TEST(ReadFile, LeavesTheRewrittenNameAndTheFormerKindOfAMissingFile) {
    Check({"x.stp", "", false, 1, "x.stpz", 0});
    Check({"x.stp.Z", "", false, 1, "x.stp", 1});
    Check({"x.stpz", "", false, 1, "x.stp", 2});
}

TEST(ReadFile, PrefersTheNameAsked) {
    const TempFolder folder;
    folder.Write("x.stp", P21Text({"#1=X();"}));
    folder.Write("x.stpz", ZlibPacked(P21Text({"#1=X();", "#2=X();"})));
    EXPECT_EQ(ModelFile(folder, "x.stp").model->entityCount, 1);
    EXPECT_EQ(ModelFile(folder, "x.stpz").model->entityCount, 2);
}

TEST(ReadFile, CannotOpenAFolder) {
    const TempFolder folder;
    mkdir(folder.Path("x.stp").c_str(), 0700);
    EXPECT_EQ(ModelFile(folder, "x.stp").result, StepModel::kNotOpened);
}

TEST(ReadFile, CannotOpenAnEmptyPath) {
    ReaderWorkspace workspace;
    StepModel model(workspace, "");
    LogCapture log;
    const int result = model.Read();
    const std::string console = log.TakeConsole();
    EXPECT_EQ(result, StepModel::kNotOpened);
    EXPECT_EQ(console, "");
}

TEST(ReadFile, LeavesNoTableOfAMissingFile) {
    const TempFolder folder;
    const ModelFile file(folder, "x.stp");
    EXPECT_EQ(file.model->text, nullptr);
    EXPECT_EQ(file.model->entityMap, nullptr);
    EXPECT_EQ(file.model->structureList, nullptr);
    EXPECT_EQ(file.output, "");
    EXPECT_EQ(file.console, "") << "no message here";
}

TEST(ReadFile, SaysThatAFileOfTwoGibibytesCannotBeRead) {
    const TempFolder folder;
    const std::string path = folder.Write("large.stp", "ISO-10303-21;\n");
    for (const off_t size : {off_t{1} << 31, (off_t{1} << 32) + 5}) {
        ASSERT_EQ(truncate(path.c_str(), size), 0); // a hole: it takes no room
        const ModelFile file(folder, "large.stp");
        EXPECT_NE(file.result, StepModel::kRead);
        EXPECT_EQ(file.console.substr(0, 4), "<E> ");
        EXPECT_NE(file.console.find("large.stp"), std::string::npos);
        EXPECT_NE(file.console.find("2 GiB"), std::string::npos);
        EXPECT_EQ(file.model->entityMap, nullptr);
    }
}

TEST(Inflate, TakesZlibAndGzipStreams) {
    const std::string text = P21Text({"#1=X();", "#2=X();"});
    for (const std::string& packed : {ZlibPacked(text), GzipPacked(text)}) {
        for (const char* const name : {"x.stpz", "x.stp.Z"}) {
            const ModelFile file(packed, name);
            EXPECT_EQ(file.result, StepModel::kRead);
            EXPECT_EQ(file.model->entityCount, 2);
            EXPECT_EQ(file.output, InflateLine(text.size(), 1) + CountLine(2));
            EXPECT_EQ(file.console, "");
            EXPECT_EQ(std::string(file.model->text, file.model->textEnd), text);
        }
    }
}

TEST(Inflate, CountsAStepForEveryQuarterMebibyte) {
    Lines lines;
    for (int i = 1; i <= 40000; ++i) {
        lines.push_back("#" + std::to_string(i) + "=X('" + std::to_string(i * 7919 % 100003) + "');");
    }
    const std::string text = P21Text(lines);
    const ModelFile file(ZlibPacked(text), "x.stpz");
    EXPECT_EQ(file.model->entityCount, 40000);
    const int steps = static_cast<int>((text.size() + 0x3FFFF) / 0x40000);
    EXPECT_EQ(file.output, InflateLine(text.size(), steps) + CountLine(40000));
}

TEST(Inflate, IsNotAskedForAPlainName) {
    const ModelFile file(ZlibPacked(P21Text({})), "x.stp");
    EXPECT_EQ(file.result, StepModel::kNotP21);
    EXPECT_EQ(file.output, "");
    EXPECT_EQ(file.console, "<E> Invalid P21 file\n");
}

TEST(Inflate, EndsQuietlyAtDamage) {
    const std::string text = P21Text({"#1=X();"});
    const ModelFile notPacked(text, "x.stpz");
    EXPECT_EQ(notPacked.result, StepModel::kNotP21);
    EXPECT_EQ(notPacked.output, InflateLine(0, 1));
    EXPECT_EQ(notPacked.console, "<E> Invalid P21 file\n");
    const ModelFile empty("", "x.stpz");
    EXPECT_EQ(empty.result, StepModel::kNotP21);
    EXPECT_EQ(empty.output, InflateLine(0, 2)) << "the NUL after the bytes is a step of its own";
}

TEST(Inflate, UsesWhatCameOutOfACutStream) {
    Lines lines;
    for (int i = 1; i <= 20000; ++i) {
        lines.push_back("#" + std::to_string(i) + "=X('" + std::to_string(i * 7919 % 100003) + "');");
    }
    const std::string packed = ZlibPacked(P21Text(lines));
    const ModelFile file(packed.substr(0, packed.size() / 2), "x.stpz");
    EXPECT_EQ(file.result, StepModel::kRead);
    EXPECT_GT(file.model->entityCount, 1000);
    EXPECT_LT(file.model->entityCount, 20000);
}

TEST(Inflate, StopsAtTheEndOfItsBlock) {
    // A megabyte of the same byte packs a thousand to one; the block has room for 272384 and 21.25 times the
    // input with its NUL.
    std::string text = P21Text({"#1=X();"});
    text += std::string(20 << 20, ' ');
    const std::string packed = ZlibPacked(text);
    const ModelFile file(packed, "x.stpz");
    const std::size_t n = packed.size() + 1;
    const std::size_t room = (n + n / 16) * 20 + 272384;
    ASSERT_LT(room, text.size());
    EXPECT_EQ(file.result, StepModel::kRead);
    EXPECT_EQ(file.model->entityCount, 1);
    EXPECT_EQ(static_cast<std::size_t>(file.model->textEnd - file.model->text), room);
}

// Of as many packed bytes more may come out than a text may have.
constexpr std::size_t kTooManyPacked = std::size_t{103} << 20;

TEST(Inflate, RefusesAFileForWhichNoTextHasRoom) {
    const TempFolder folder;
    ASSERT_EQ(truncate(folder.Write("x.stpz", "").c_str(), kTooManyPacked), 0); // a hole: it takes no room
    const ModelFile file(folder, "x.stpz");
    EXPECT_EQ(file.result, StepModel::kNotP21);
    const std::string bytes = std::to_string(kTooManyPacked + 1);
    EXPECT_EQ(file.console,
              "<E> " + folder.Path("x.stpz") + ": no room to inflate its " + bytes + " bytes\n");
}

TEST(Inflate, RefusesABlockForWhichNoTextHasRoom) {
    ReaderWorkspace workspace;
    StepModel model(workspace, std::make_unique<unsigned char[]>(kTooManyPacked), kTooManyPacked);
    LogCapture log;
    const int result = model.Read();
    const std::string console = log.TakeConsole();
    EXPECT_EQ(result, StepModel::kNotP21);
    EXPECT_NE(console.find("no room to inflate its"), std::string::npos) << console;
    EXPECT_EQ(model.text, nullptr);
}

TEST(Read, RefusesATextWithAnotherStart) {
    const std::string text = P21Text({});
    for (const std::string& bytes :
         {std::string(), std::string("ISO-10303-2"), "\xEF\xBB\xBF" + text, "\n" + text, " " + text,
          "iso" + text.substr(3), "ISO-10303-28" + text.substr(12)}) {
        const ModelFile file(bytes);
        EXPECT_EQ(file.result, StepModel::kNotP21);
        EXPECT_EQ(file.console, "<E> Invalid P21 file\n");
        EXPECT_EQ(file.output, "");
        EXPECT_EQ(file.model->entityMap, nullptr);
        EXPECT_EQ(file.model->structureList, nullptr);
        EXPECT_EQ(file.model->entityCount, 0);
    }
}

TEST(Read, LooksAtTwelveCharactersOfTheStart) {
    EXPECT_EQ(ModelFile("ISO-10303-21 and so on\nFILE_SCHEMA(('AP242'));\nDATA;\nENDSEC;\n").result,
              StepModel::kRead);
}

TEST(Read, InflatesABlockInMemory) {
    const std::string text = P21Text({"#1=X();"});
    const std::string packed = GzipPacked(text);
    std::unique_ptr<unsigned char[]> block(new unsigned char[packed.size()]);
    std::memcpy(block.get(), packed.data(), packed.size());
    ReaderWorkspace workspace;
    StepModel model(workspace, std::move(block), static_cast<std::uint32_t>(packed.size()));
    EXPECT_EQ(model.compression, 1);
    EXPECT_EQ(model.compressedSize, packed.size());
    EXPECT_NE(model.compressedData, nullptr);
    LogCapture log;
    const int result = model.Read();
    const std::string output = log.TakeOutput();
    EXPECT_EQ(result, StepModel::kRead);
    EXPECT_EQ(output, InflateLine(text.size(), 1) + CountLine(1));
    EXPECT_EQ(model.compressedData, nullptr) << "freed as soon as it has been inflated";
    EXPECT_EQ(model.Find(1)->id, 1);
    EXPECT_EQ(model.readSeconds, 0);
}

TEST(Read, TakesTheTimes) {
    const ModelFile plain(P21Text({}));
    EXPECT_GT(plain.model->readSeconds, 0);
    EXPECT_EQ(plain.model->inflateSeconds, 0);
    const ModelFile packed(ZlibPacked(P21Text({})), "x.stpz");
    EXPECT_GT(packed.model->readSeconds, 0);
    EXPECT_GT(packed.model->inflateSeconds, 0);
}

TEST(Read, UsesAWorkspaceForOneFileAfterTheOther) {
    const TempFolder folder;
    ReaderWorkspace workspace;
    for (int count = 5; count > 0; --count) {
        Lines lines;
        for (int i = 1; i <= count * 1000; ++i) { lines.push_back("#" + std::to_string(i) + "=X();"); }
        const std::string text = P21Text(lines);
        const std::string path =
            count % 2 == 0 ? folder.Write("x.stpz", ZlibPacked(text)) : folder.Write("y.stp", text);
        StepModel model(workspace, path);
        LogCapture log;
        const int result = model.Read();
        log.TakeOutput();
        ASSERT_EQ(result, StepModel::kRead);
        EXPECT_EQ(model.entityCount, count * 1000);
        EXPECT_EQ(model.Find(count * 1000 + 1), nullptr) << "nothing is left of the file before";
        EXPECT_EQ(model.textEnd - model.text, static_cast<std::ptrdiff_t>(text.size()));
    }
}

} // namespace
} // namespace tarnwick::test
