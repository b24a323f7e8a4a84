#include "archive/stpa_archive.h"

#include "archive/stpa_driver.h"
#include "formats/load_commands.h"
#include "support/capture.h"
#include "support/formats.h"
#include "support/sound_scene.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick {
namespace {

using namespace test;
using nlohmann::json;

std::string RootText(const std::string& partName = "parts/w.stp") {
    return Document(Part("w", UsedAs("o") + Assigned("f")) + File("f", partName) +
                    Part("top", Use("o", "1 0 0")));
}

const Member kIni{"stpa.ini", "root=\"main.stpx\"\n"};

std::vector<Member> Machine() {
    return {{"parts/w.stp", PartFile("w")}, kIni, {"main.stpx", RootText()}};
}

struct Loaded {
    Loaded(const TestFolder& folder, const std::vector<Member>& members, int threads = 1) {
        path = folder.Path("a.stpa");
        WriteArchive(path, members);
        Load(threads);
    }
    void Load(int threads) {
        ConsoleText text;
        testing::internal::CaptureStdout();
        LoadZIPFile(view, path.c_str(), nullptr, threads);
        output = testing::internal::GetCapturedStdout();
        console = text.Text();
    }
    bool Says(std::string_view part) const { return console.find(part) != std::string::npos; }
    std::string path;
    SceneView view;
    std::string console;
    std::string output;
};

TEST(Stpa, LoadsAnArchiveOfADocumentAndAPart) {
    const TestFolder folder;
    const Loaded loaded(folder, Machine());
    const json report = Report(loaded.view);
    EXPECT_EQ(report["triangles"], 2);
    EXPECT_EQ(report["pickMode"], 2);
    EXPECT_EQ(report["products"][1]["fileName"], "parts/w.stp");
    EXPECT_TRUE(loaded.console.starts_with("LoadZIPFile : ZIPReader::TraiteZIPFile " + loaded.path +
                                           "\nStart TraiteSTPA\n" + loaded.path +
                                           " opened\nStart TraiteSTEPXFileNewMT\n"));
    EXPECT_TRUE(loaded.view.loaded.unreadFiles.empty());
    const std::string size = std::to_string(RootText().size());
    EXPECT_NE(loaded.output.find("total uncompress size = " + size + ", in "), std::string::npos);
}

TEST(Stpa, TakesDocumentsThatAreStored) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    members[1].method = members[2].method = 0;
    EXPECT_EQ(Loaded(folder, members).view.loaded.drawnTriangles, 2);
}

TEST(Stpa, ReadsTheDocumentsThatItsRootLeadsTo) {
    const TestFolder folder;
    const std::string root =
        Document(Part("cart", UsedAs("o1") + Assigned("f1")) + File("f1", "sub\\cart.stpx") +
                 Part("gone", UsedAs("o2") + Assigned("f2")) + File("f2", "gone.stpx") +
                 Part("top", Use("o1", "5 0 0") + Use("o2")));
    const std::string cart = Document(Part("wheel", UsedAs("w") + Assigned("f")) + File("f", "parts/w.stp") +
                                      Part("cart", Use("w", "1 0 0")));
    const Loaded loaded(
        folder, {{"parts/w.stp", PartFile("wheel")}, kIni, {"main.stpx", root}, {"sub\\cart.stpx", cart}});
    const json report = Report(loaded.view);
    EXPECT_EQ(report["triangles"], 2);
    ASSERT_EQ(report["drawList"].size(), 1u);
    EXPECT_EQ(report["drawList"][0]["matrix"][12], 6);
    EXPECT_TRUE(loaded.Says("Number of external products : 2\nNumber of parts (P21) : 1\n"));
    ASSERT_EQ(loaded.view.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(loaded.view.loaded.unreadFiles[0].path, "gone.stpx");
    EXPECT_EQ(loaded.view.loaded.unreadFiles[0].productName, "gone");
    EXPECT_EQ(loaded.view.loaded.unreadFiles[0].place, 2);
}

TEST(Stpa, CannotTakeAPartThatIsStored) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    members[0].method = 0;
    const Loaded loaded(folder, members);
    EXPECT_EQ(loaded.view.loaded.drawnTriangles, 0);
    EXPECT_TRUE(loaded.Says("<E> Invalid P21 file\n"));
    ASSERT_EQ(loaded.view.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(loaded.view.loaded.unreadFiles[0].path, "parts/w.stp");
    EXPECT_TRUE(std::strstr(loaded.view.loaded.unreadFiles[0].reason, "stored") != nullptr);
}

TEST(Stpa, NamesTheMemberThatItGivesUp) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    const std::size_t schema = members[0].content.find("FILE_SCHEMA");
    ASSERT_NE(schema, std::string::npos);
    members[0].content.replace(schema, 11, "FILE_SCHEMX");
    const Loaded loaded(folder, members);
    EXPECT_EQ(loaded.view.loaded.drawnTriangles, 0);
    EXPECT_TRUE(loaded.Says("<E> parts/w.stp: its header has no FILE_SCHEMA(, without a blank in it\n"));
}

TEST(Stpa, NotesAPartThatIsGivenUpAmongTheUnreadFiles) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    std::string& part = members[0].content;
    const std::size_t points = part.find('#', part.find("TRIANGULATED_FACE("));
    ASSERT_NE(points, std::string::npos);
    part.insert(part.find(',', part.find(',', points) + 1) + 1, "\n"); // its face ends after pnmax
    const Loaded loaded(folder, members);
    EXPECT_EQ(loaded.view.loaded.drawnTriangles, 0);
    ASSERT_EQ(loaded.view.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(loaded.view.loaded.unreadFiles[0].path, "parts/w.stp");
    EXPECT_STREQ(loaded.view.loaded.unreadFiles[0].reason, kGivenUpReason);
}

TEST(Stpa, CannotTakeEncryptedMembers) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    members[0].password = "secret";
    const Loaded part(folder, members);
    EXPECT_EQ(part.view.loaded.drawnTriangles, 0);
    EXPECT_TRUE(part.Says("<E> Invalid P21 file\n"));
    ASSERT_EQ(part.view.loaded.unreadFiles.size(), 1u);
    EXPECT_STREQ(part.view.loaded.unreadFiles[0].reason, "is encrypted");
    members = Machine();
    members[2].password = "secret";
    const Loaded root(folder, members);
    EXPECT_EQ(root.view.loaded.drawnTriangles, 0);
    ASSERT_EQ(root.view.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(root.view.loaded.unreadFiles[0].path, "main.stpx");
}

// A field of a member's record in the directory, and of its local header: bytes in front of the name.
struct RecordField {
    std::size_t inDirectory;
    std::size_t inLocalHeader;
    std::size_t bytes;
};
constexpr RecordField kMethod{36, 22, 2};
constexpr RecordField kCompressedSize{26, 12, 4};
constexpr RecordField kUncompressedSize{22, 8, 4};

// Writes another value over a field of a member, in both places.
void SetField(const std::string& path, const std::string& name, const RecordField& field,
              std::uint32_t value) {
    std::string bytes = ReadWholeFile(path);
    const auto write = [&](std::size_t at) {
        for (std::size_t i = 0; i < field.bytes; ++i) { bytes[at + i] = static_cast<char>(value >> 8 * i); }
    };
    for (std::size_t at = bytes.find(name); at != std::string::npos; at = bytes.find(name, at + 1)) {
        if (at >= 30 && bytes.compare(at - 30, 4, "PK\3\4") == 0) { write(at - field.inLocalHeader); }
        if (at >= 46 && bytes.compare(at - 46, 4, "PK\1\2") == 0) { write(at - field.inDirectory); }
    }
    std::ofstream(path, std::ios::binary) << bytes;
}

TEST(Stpa, CannotTakeMembersOfForeignMethods) {
    for (const std::uint32_t method : {12u, 14u, 99u}) {
        const TestFolder folder;
        std::vector<Member> members = Machine();
        members[0].method = 0; // bytes that are no deflate stream
        Loaded part(folder, members);
        SetField(part.path, "parts/w.stp", kMethod, method);
        part.Load(1);
        EXPECT_EQ(part.view.loaded.drawnTriangles, 0);
        EXPECT_TRUE(part.Says("<E> Invalid P21 file\n"));
        ASSERT_EQ(part.view.loaded.unreadFiles.size(), 1u);
        Loaded root(folder, Machine());
        SetField(root.path, "main.stpx", kMethod, method);
        root.Load(1);
        EXPECT_EQ(root.view.loaded.drawList, nullptr);
        ASSERT_EQ(root.view.loaded.unreadFiles.size(), 1u);
        EXPECT_EQ(root.view.loaded.unreadFiles[0].path, "main.stpx");
        Loaded ini(folder, Machine());
        SetField(ini.path, "stpa.ini", kMethod, method);
        ini.Load(1);
        EXPECT_FALSE(ini.Says("<E>")) << "without its ini an archive is left in silence";
        EXPECT_EQ(ini.view.loaded.unreadFiles.size(), 1u);
    }
}

TEST(Stpa, SaysOnStandardOutputThatAMemberHasNoBytes) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    Loaded loaded(folder, members);
    SetField(loaded.path, "parts/w.stp", kMethod, 14);
    loaded.Load(1);
    EXPECT_NE(loaded.output.find("error -103 with zipfile in unzGetBufferCurrentFile\n"), std::string::npos);
}

TEST(Stpa, NeedsAPartUnderExactlyItsName) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    members[0].name = "Parts/w.stp";
    const Loaded loaded(folder, members);
    EXPECT_EQ(loaded.view.loaded.drawnTriangles, 0);
    ASSERT_EQ(loaded.view.loaded.unreadFiles.size(), 1u);
    EXPECT_STREQ(loaded.view.loaded.unreadFiles[0].reason, "isn't a member of the archive");
}

TEST(Stpa, ReadsNoPartFromTheFileSystem) {
    const TestFolder folder;
    const std::string outside = folder.WriteGzip("w.stpz", PartFile("w"));
    const Loaded loaded(folder, {kIni, {"main.stpx", RootText(outside)}});
    EXPECT_EQ(loaded.view.loaded.drawnTriangles, 0);
    ASSERT_EQ(loaded.view.loaded.unreadFiles.size(), 1u);
    EXPECT_STREQ(loaded.view.loaded.unreadFiles[0].reason, "isn't a member of the archive");
}

TEST(Stpa, TakesTheFirstOfTwoMembersWithTheSameName) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    members.push_back({"parts/w.stp", PartFile("w", 9)});
    EXPECT_EQ(Report(Loaded(folder, members).view)["meshes"][0]["box"][1], 1);
}

TEST(Stpa, OpensAnArchiveUnderItsNameWithZipBehindIt) {
    const TestFolder folder;
    WriteArchive(folder.Path("b.stpa.zip"), Machine());
    SceneView view;
    const ConsoleText console;
    LoadZIPFile(view, folder.Path("b.stpa").c_str(), nullptr, 1);
    EXPECT_TRUE(console.Has(folder.Path("b.stpa.zip") + " opened\n"));
    EXPECT_EQ(view.loaded.drawnTriangles, 2);
}

TEST(Stpa, GivesUpWhatIsNoArchive) {
    const TestFolder folder;
    folder.Write("text.stpa", "no archive at all");
    folder.Write("empty.stpa", std::string("PK\5\6") + std::string(18, '\0'));
    for (const std::string& path :
         {folder.Path("none.stpa"), folder.Path("text.stpa"), folder.Path("empty.stpa"), folder.Path("")}) {
        LoadedScene loaded = NewScene();
        ZIPReader reader(loaded);
        const ConsoleText console;
        testing::internal::CaptureStdout();
        EXPECT_EQ(TraiteSTPA(reader, path.c_str(), nullptr, 1), 1);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "Cannot open " + path + " or " + path + ".zip\n");
        EXPECT_EQ(console.Count("<E>"), 1);
        EXPECT_EQ(reader.loaded.unreadFiles.size(), 1u);
    }
}

int ResultOf(const TestFolder& folder, const std::vector<Member>& members, std::string* said) {
    WriteArchive(folder.Path("r.stpa"), members);
    LoadedScene loaded = NewScene();
    ZIPReader reader(loaded);
    const ConsoleText console;
    const int result = TraiteSTPA(reader, folder.Path("r.stpa").c_str(), nullptr, 1);
    *said = console.Text();
    return result;
}

TEST(Stpa, NeedsAnIniThatNamesAStpxRoot) {
    const TestFolder folder;
    std::string said;
    EXPECT_EQ(ResultOf(folder, {{"main.stpx", RootText()}}, &said), 1);
    EXPECT_EQ(said.find("<E>"), std::string::npos);
    EXPECT_EQ(ResultOf(folder, {{"stpa.ini", "root=main.stpx"}}, &said), 1);
    EXPECT_EQ(said.find("<E>"), std::string::npos);
    for (const char* const ini : {"\"main.stpx", "\"main.STPX\"", "\"main.stpxz\"", "\"\"", "\"x\"",
                                  "\"noextension\"", "\"a.stp\" \"main.stpx\""}) {
        EXPECT_EQ(ResultOf(folder, {{"stpa.ini", ini}, {"main.stpx", RootText()}}, &said), 100) << ini;
        EXPECT_NE(said.find("<E> Only stpx root files are supported in sptA archives.\n"), std::string::npos);
    }
    EXPECT_EQ(ResultOf(folder, {{"stpa.ini", "\"none.stpx\""}}, &said), ZIPReader::kRootUnread);
    EXPECT_NE(said.find("<E> none.stpx"), std::string::npos);
}

TEST(Stpa, ParsesTheFirstQuotedStringOfTheIni) {
    const auto parse = [](std::string_view text, std::string* name) {
        int isStpx = -1;
        const int result = ParseStpaIni(text, name, &isStpx);
        return result * 10 + isStpx;
    };
    std::string name;
    EXPECT_EQ(parse("x\n\"dir/a.b.stpx\"\"y\"", &name), 1);
    EXPECT_EQ(name, "dir/a.b.stpx");
    EXPECT_EQ(parse("\".stpx\"", &name), 1);
    EXPECT_EQ(parse("\"a.stpx.x\"", &name), 0);
    EXPECT_EQ(parse("\"open", &name), 0);
    EXPECT_EQ(parse("", &name), 10);
}

TEST(Stpa, ReadsNothingWithoutThreads) {
    const TestFolder folder;
    const Loaded loaded(folder, Machine(), 0);
    EXPECT_FALSE(loaded.Says("TraiteSTEPXFileNewMT"));
    EXPECT_EQ(loaded.view.loaded.drawList, nullptr);
    EXPECT_EQ(loaded.view.loaded.drawnTriangles, 0);
    EXPECT_EQ(loaded.view.loaded.pickMode, 2);
    EXPECT_EQ(loaded.view.modelSize, 10);
    ASSERT_EQ(loaded.view.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(loaded.view.loaded.unreadFiles[0].path, loaded.path);
    EXPECT_EQ(loaded.view.loaded.unreadFiles[0].productName, "") << "so that the title says it";
}

TEST(Stpa, KeepsWhatTheViewHadWhenItFails) {
    const TestFolder folder;
    SceneView view;
    view.loaded.pickMode = 2;
    view.loaded.drawnTriangles = 5;
    LoadZIPFile(view, folder.Path("none.stpa").c_str(), nullptr, 1);
    EXPECT_EQ(view.loaded.pickMode, 0);
    EXPECT_EQ(view.loaded.drawnTriangles, 5);
    EXPECT_EQ(view.loaded.drawList, nullptr);
}

TEST(Stpa, LeavesOutMembersWithNamesOf256Characters) {
    const TestFolder folder;
    std::vector<Member> members = Machine();
    members.push_back({std::string(255, 'n'), "x"});
    WriteArchive(folder.Path("fits.stpa"), members);
    const ZipArchive fits(folder.Path("fits.stpa").c_str());
    EXPECT_EQ(fits.MemberCount(), 4u);
    members.push_back({std::string(256, 'n'), "x"});
    WriteArchive(folder.Path("long.stpa"), members);
    const ConsoleText console;
    const ZipArchive tooLong(folder.Path("long.stpa").c_str());
    EXPECT_EQ(tooLong.MemberCount(), 4u);
    EXPECT_EQ(console.Count("<E>"), 1);
}

TEST(ZipArchive, FindsTheFirstOfTheMembersOfOneName) {
    const TestFolder folder;
    std::vector<Member> members;
    for (int i = 0; i < 300; ++i) {
        members.push_back({"m" + std::to_string(i % 100), "content " + std::to_string(i)});
    }
    WriteArchive(folder.Path("n.stpa"), members);
    ZipArchive archive(folder.Path("n.stpa").c_str());
    EXPECT_EQ(archive.MemberCount(), 300u);
    TextMemory memory;
    std::size_t size = 0;
    const char* problem = nullptr;
    for (int i = 0; i < 100; ++i) {
        const char* const text =
            archive.ReadMember(("m" + std::to_string(i)).c_str(), memory, &size, &problem);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(std::string(text, size), "content " + std::to_string(i));
    }
    EXPECT_EQ(archive.ReadMember("m100", memory, &size, &problem), nullptr);
    EXPECT_EQ(archive.ReadPacked("").data, nullptr);
}

TEST(ZipArchive, PutsTheHeadOfAGzipFileInFrontOfAMembersBytes) {
    const TestFolder folder;
    WriteArchive(folder.Path("p.stpa"), {{"m", "some text, some text, some text", 0}});
    ZipArchive archive(folder.Path("p.stpa").c_str());
    const ZipArchive::Packed packed = archive.ReadPacked("m");
    ASSERT_EQ(packed.size, 41u);
    const unsigned char head[10] = {0x1F, 0x8B, 8, 0, 0, 0, 0, 0, 0, 0x0D};
    EXPECT_EQ(std::memcmp(packed.data.get(), head, 10), 0);
    EXPECT_EQ(std::memcmp(packed.data.get() + 10, "some text", 9), 0);
    EXPECT_EQ(archive.ReadPacked("none").data, nullptr);
}

// What is said of a member that can't be read, as a document and as a part.
struct Problems {
    Problems(ZipArchive& archive, const char* name) {
        TextMemory memory;
        std::size_t size = 0;
        EXPECT_EQ(archive.ReadMember(name, memory, &size, &document), nullptr);
        const ZipArchive::Packed packed = archive.ReadPacked(name);
        EXPECT_EQ(packed.data, nullptr);
        part = packed.oddity;
    }
    const char* document = nullptr;
    const char* part = nullptr;
};

TEST(ZipArchive, TakesNoMemberThatClaimsMoreCharactersThanATextMayHave) {
    const TestFolder folder;
    const std::string path = folder.Path("l.stpa");
    WriteArchive(path, {{"m", "some text, some text, some text"}});
    for (const std::uint32_t size : {0x7FFC0000u, 0xFFFFFFFEu}) {
        SetField(path, "m", kUncompressedSize, size);
        ZipArchive archive(path.c_str());
        TextMemory memory;
        std::size_t read = 0;
        const char* problem = nullptr;
        EXPECT_EQ(archive.ReadMember("m", memory, &read, &problem), nullptr);
        EXPECT_STREQ(problem, "is too large");
    }
}

TEST(ZipArchive, TakesNoMemberOfMoreBytesThanATextMayHave) {
    const TestFolder folder;
    const std::string path = folder.Path("l.stpa");
    WriteArchive(path, {{"m", "some text, some text, some text"}});
    SetField(path, "m", kCompressedSize, 0x80000000u);
    // Behind as many bytes that aren't written, and so take no room on the disk.
    const std::string bytes = ReadWholeFile(path);
    std::ofstream file(path, std::ios::binary);
    file.seekp(std::streamoff{0x80000000});
    file << bytes << std::flush;
    ZipArchive archive(path.c_str());
    const Problems problems(archive, "m");
    EXPECT_STREQ(problems.document, "is too large");
    EXPECT_STREQ(problems.part, "is too large");
}

TEST(ZipArchive, TakesNoStoredDocumentThatHasMoreBytesThanCharacters) {
    const TestFolder folder;
    const std::string path = folder.Path("s.stpa");
    const std::string content(100, 'c');
    WriteArchive(path, {{"m", content, 0}, {"secret", content, 0, "password"}});
    const auto problemOf = [&](const char* name) {
        ZipArchive archive(path.c_str());
        TextMemory memory;
        std::size_t size = 0;
        const char* problem = nullptr;
        archive.ReadMember(name, memory, &size, &problem);
        return std::string(problem != nullptr ? problem : "");
    };
    EXPECT_EQ(problemOf("secret"), "is encrypted");
    SetField(path, "m", kUncompressedSize, 91);
    EXPECT_EQ(problemOf("m"), "") << "nine more are taken";
    SetField(path, "m", kUncompressedSize, 90);
    EXPECT_EQ(problemOf("m"), "can't be read, it is stored with more bytes than it has");
}

TEST(ZipArchive, TakesNoMemberWhoseRecordWasOverwrittenMeanwhile) {
    const TestFolder folder;
    const std::string path = folder.Path("c.stpa");
    const std::string large(100000, 'c'); // so that the directory is read again
    WriteArchive(path, {{"large", large, 0}, {"m", "some text", 0}});
    ZipArchive archive(path.c_str());
    TextMemory memory;
    std::size_t size = 0;
    const char* problem = nullptr;
    EXPECT_NE(archive.ReadMember("large", memory, &size, &problem), nullptr);
    const std::size_t directory = ReadWholeFile(path).find("PK\1\2");
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(directory));
    file << std::string(150, '\0') << std::flush;
    const Problems problems(archive, "m");
    EXPECT_STREQ(problems.document, "can't be read, its record in the archive is damaged");
    EXPECT_STREQ(problems.part, "can't be read, its record in the archive is damaged");
}

TEST(ZipArchive, TakesNoStoredDocumentWithADamagedLocalHeader) {
    const TestFolder folder;
    const std::string path = folder.Path("h.stpa");
    WriteArchive(path, {{"m", "some text", 0}});
    std::string bytes = ReadWholeFile(path);
    bytes[0] = 'x';
    folder.Write("h.stpa", bytes);
    ZipArchive archive(path.c_str());
    TextMemory memory;
    std::size_t size = 0;
    const char* problem = nullptr;
    EXPECT_EQ(archive.ReadMember("m", memory, &size, &problem), nullptr);
    EXPECT_STREQ(problem, "can't be read, its record in the archive is damaged");
}

// A load of an archive that has been damaged ends, and what it shows is sound.
class DamagedArchive : public testing::Test {
protected:
    void SetUp() override {
        WriteArchive(path_, Machine());
        good_ = ReadWholeFile(path_);
        log_ = std::make_unique<LogCapture>();
    }
    void TearDown() override {
        log_.reset();
        for (const std::string& reason : reasons_) { ADD_FAILURE() << reason; }
    }
    void Load(const std::string& bytes, const std::string& what) {
        folder_.Write("d.stpa", bytes);
        SceneView view;
        LoadZIPFile(view, path_.c_str(), nullptr, 1);
        const std::string reason = UnsoundIn(view);
        if (!reason.empty()) { Note(what + ": " + reason); }
        isWhole_ = view.loaded.drawnTriangles == 2;
        isTold_ = !view.loaded.unreadFiles.empty() || log_->TakeConsole().find("<E>") != std::string::npos;
        log_->TakeConsole();
        log_->TakeOutput();
    }
    void Note(const std::string& reason) {
        if (reasons_.size() < 10) { reasons_.push_back(reason); }
    }

    const TestFolder folder_;
    const std::string path_ = folder_.Path("d.stpa");
    std::string good_;
    bool isWhole_ = false; // whether the last load showed everything
    bool isTold_ = false;  // whether it told of anything
    std::unique_ptr<LogCapture> log_;
    std::vector<std::string> reasons_;
};

TEST_F(DamagedArchive, IsLoadedAtEveryLengthAndToldIfNotWhole) {
    for (std::size_t length = 0; length < good_.size(); ++length) {
        const std::string what = "length " + std::to_string(length);
        Load(good_.substr(0, length), what);
        if (!isWhole_ && !isTold_) { Note(what + ": nothing is told"); }
    }
}

TEST_F(DamagedArchive, StandsAtEveryPlace) {
    for (std::size_t i = 0; i < good_.size(); ++i) {
        for (const int byte : {good_[i] ^ (1 << (i % 8)), 0xFF}) {
            std::string damaged = good_;
            damaged[i] = static_cast<char>(byte);
            Load(damaged, "byte " + std::to_string(i) + " as " + std::to_string(byte));
        }
    }
}

TEST(Stpa, ReadsHundredsOfPartsOnSixThreads) {
    const TestFolder folder;
    std::string uses;
    std::string parts;
    std::vector<Member> members{kIni};
    for (int i = 0; i < 300; ++i) {
        const std::string n = std::to_string(i);
        uses += Use("o" + n, n + " 0 0");
        parts += Part("p" + n, UsedAs("o" + n) + Assigned("f" + n)) + File("f" + n, "p" + n + ".stp");
        members.push_back({"p" + n + ".stp", PartFile("p" + n, i + 1)});
    }
    const std::string root = Document(parts + Part("top", uses));
    members.push_back({"main.stpx", root});
    const Loaded loaded(folder, members);
    json archive = Report(loaded.view);
    EXPECT_EQ(archive["triangles"], 600);
    for (std::size_t i = 1; i + 1 < members.size(); ++i) {
        folder.Write(members[i].name, members[i].content);
    }
    EXPECT_EQ(archive, LoadReport(folder.Write("main.stpx", root), nullptr, 0));
}

} // namespace
} // namespace tarnwick
