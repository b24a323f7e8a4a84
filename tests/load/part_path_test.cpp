// Where the file of a part is looked for, under what names, and what is kept of one that can't be read.

#include "support/assembly_text.h"
#include "support/loaded_file.h"
#include "support/packed.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A top file with one part in that file.
std::string TopWith(std::string_view fileName) {
    AssemblyText text;
    const int top = text.Product("top");
    const int part = text.Product("part");
    text.Use(top, part);
    text.File(part, fileName);
    return text.Text();
}

struct Asked {
    std::string top;   // name of the top file, as it is asked for
    std::string there; // and as it lies in the folder
    std::string part;  // name of the part's file in the folder
    std::int32_t compression;
    std::string tried; // the name that is tried first
};

// The bytes as a file of that name has them.
std::string PackedFor(const std::string& name, const std::string& bytes) {
    return name.ends_with('Z') || name.ends_with('z') ? ZlibPacked(bytes) : bytes;
}

TEST(PartPath, FollowsTheCompressionOfTheTopFile) {
    const std::vector<Asked> cases{
        {"top.stp", "top.stp", "part.stp", 0, "part.stp"},
        {"top.stp.Z", "top.stp.Z", "part.stp.Z", 1, "part.stp.Z"},
        {"top.stpz", "top.stpz", "part.stpz", 2, "part.stpz"},
        // Each with the other twin of the part.
        {"top.stp", "top.stp", "part.stpz", 0, "part.stp"},
        {"top.stp.Z", "top.stp.Z", "part.stp", 1, "part.stp.Z"},
        {"top.stpz", "top.stpz", "part.stp", 2, "part.stpz"},
        // A top file that is found under its fall-back name counts as what it is.
        {"top.stp", "top.stpz", "part.stpz", 2, "part.stpz"},
        {"top.stpz", "top.stp", "part.stp", 0, "part.stp"},
        {"top.stp.Z", "top.stp", "part.stp", 0, "part.stp"},
    };
    for (const Asked& asked : cases) {
        const TempFolder folder;
        folder.Write(asked.there, PackedFor(asked.there, TopWith("part.stp")));
        folder.Write(asked.part, PackedFor(asked.part, PlateText(3)));
        const LoadedFile load(folder.Path(asked.top));
        EXPECT_EQ(load.session.compression, asked.compression) << asked.top;
        EXPECT_EQ(load.session.loaded.drawnTriangles, 3) << asked.top << " " << asked.part;
        EXPECT_THAT(load.session.loaded.unreadFiles, IsEmpty());
        // And without the part.
        std::filesystem::remove(folder.Path(asked.part));
        const LoadedFile without(folder.Path(asked.top));
        ASSERT_EQ(without.session.loaded.unreadFiles.size(), 1u);
        EXPECT_EQ(without.session.loaded.unreadFiles[0].path, folder.Path(asked.tried));
    }
}

TEST(PartPath, KnowsNoFurtherFallBackNames) {
    const TempFolder folder;
    folder.Write("part.stp.Z", ZlibPacked(PlateText(3)));
    EXPECT_EQ(LoadedFile(folder.Write("top.stp", TopWith("part.stp"))).session.loaded.drawnTriangles, 0);
    const TempFolder other;
    other.Write("part.stpz", ZlibPacked(PlateText(3)));
    EXPECT_EQ(
        LoadedFile(other.Write("top.stp.Z", ZlibPacked(TopWith("part.stp")))).session.loaded.drawnTriangles,
        0);
}

TEST(PartPath, OfASubAssemblysPartIsThatBesideTheTopFile) {
    // Not beside the sub-assembly's file, and packed as the top file is.
    const TempFolder folder;
    std::filesystem::create_directory(folder.Path("sub"));
    AssemblyText sub;
    const int root = sub.Product("part");
    const int leaf = sub.Product("leaf");
    sub.Use(root, leaf);
    sub.File(leaf, "leaf.stp");
    folder.Write("sub/sub.stpz", GzipPacked(sub.Text()));
    folder.Write("leaf.stpz", GzipPacked(PlateText(2)));
    folder.Write("sub/leaf.stpz", GzipPacked(PlateText(50)));
    const LoadedFile load(folder.Write("top.stpz", GzipPacked(TopWith("sub/sub.stp"))));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 2);
    EXPECT_GT(load.session.loaded.inflateSeconds, 0);
}

TEST(PartPath, LeadsThroughFolders) {
    for (const char* const name : {"sub/folder/part.stp", "sub\\folder\\part.stp", "sub\\folder/part.stp",
                                   "sub/../sub\\.\\folder/part.stp"}) {
        const TempFolder folder;
        std::filesystem::create_directories(folder.Path("sub/folder"));
        folder.Write("sub/folder/part.stp", PlateText(3));
        const LoadedFile load(folder.Write("top.stp", TopWith(name)));
        EXPECT_EQ(load.session.loaded.drawnTriangles, 3) << name;
        EXPECT_EQ(load.Find("part")->fileName, std::string(name)); // as it stands
    }
}

TEST(PartPath, LeadsUpwards) {
    const TempFolder folder;
    std::filesystem::create_directory(folder.Path("sub"));
    folder.Write("part.stp", PlateText(3));
    const LoadedFile load(folder.Write("sub/top.stp", TopWith("..\\part.stp")));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 3);
    EXPECT_EQ(load.session.folder, folder.Path("sub/"));
}

TEST(PartPath, TakesAnAbsoluteNameAsOneBesideTheTopFile) {
    const TempFolder folder;
    const TempFolder elsewhere;
    const std::string absolute = elsewhere.Write("part.stp", PlateText(3));
    const LoadedFile load(folder.Write("top.stp", TopWith(absolute)));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    ASSERT_EQ(load.session.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].path, folder.Path("") + absolute);
}

TEST(PartPath, IsTheNameAloneForATopFileWithoutAFolder) {
    const TempFolder folder;
    folder.Write("top.stp", TopWith("part.stp"));
    folder.Write("part.stp", PlateText(3));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path(""));
    const LoadedFile load("top.stp");
    std::filesystem::current_path(before);
    EXPECT_EQ(load.session.folder, "");
    EXPECT_EQ(load.session.loaded.drawnTriangles, 3);
}

TEST(PartPath, HoldsALongNameBehindALongFolder) {
    const TempFolder folder;
    const std::string deep = std::string(200, 'd') + "/" + std::string(200, 'e');
    std::filesystem::create_directories(folder.Path(deep + "/" + std::string(148, 'f')));
    const std::string name = std::string(148, 'f') + "/" + std::string(146, 'g') + ".stp";
    ASSERT_EQ(name.size(), 299u);
    folder.Write(deep + "/" + name, PlateText(3));
    const LoadedFile load(folder.Write(deep + "/top.stp", TopWith(name)), 1);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 3);
}

TEST(PartPath, OfACgrFileIsThatOfItsStpTwin) {
    const TempFolder folder;
    folder.Write("axle.stp", PlateText(3));
    folder.Write("axle.cgr", PlateText(50));
    EXPECT_EQ(LoadedFile(folder.Write("top.stp", TopWith("axle.cgr"))).session.loaded.drawnTriangles, 3);
}

TEST(PartPath, IsNoneForANameWithThreePoints) {
    const TempFolder folder;
    folder.Write("long...name.stp", PlateText(3));
    const LoadedFile load(folder.Write("top.stp", TopWith("long...name.stp")));
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    EXPECT_EQ(load.session.tree.queue.Count().all, 0);
    EXPECT_THAT(load.session.loaded.unreadFiles, IsEmpty());
    EXPECT_EQ(load.console, "Start TraiteSTEPFile\nNumber of files=0  ; Number of parts=0 \n");
}

TEST(PartPath, KeepsPercentSignsAndOtherBytes) {
    const TempFolder folder;
    folder.Write("50%s %n caf\xE9.stp", PlateText(3));
    EXPECT_EQ(
        LoadedFile(folder.Write("top.stp", TopWith("50%s %n caf\xE9.stp"))).session.loaded.drawnTriangles, 3);
}

TEST(UnreadFiles, TellPathProductAndReasonInTheOrderOfTheQueue) {
    for (const bool useThreads : {0, 1}) {
        const TempFolder folder;
        AssemblyText text;
        const int top = text.Product("top");
        for (int i = 0; i < 40; ++i) {
            const std::string name = std::to_string(i);
            const int part = text.Product("product " + name);
            text.Use(top, part);
            text.File(part, name + ".stp");
            if (i % 4 == 1) { folder.Write(name + ".stp", PlateText(1)); }
            if (i % 4 == 2) { folder.Write(name + ".stp", "not a STEP file"); }
            if (i % 4 == 3) { std::filesystem::create_directory(folder.Path(name + ".stp")); }
        }
        const LoadedFile load(folder.Write("top.stp", text.Text()), useThreads);
        EXPECT_EQ(load.session.loaded.drawnTriangles, 10);
        EXPECT_EQ(load.session.partCount, 10);
        std::vector<std::string> expected;
        std::vector<std::string> told;
        for (const std::string& product : load.QueueNames()) {
            const int i = std::stoi(product.substr(8));
            if (i % 4 == 1) { continue; }
            expected.push_back(folder.Path(std::to_string(i) + ".stp") + "|" + product + "|" +
                               (i % 4 == 2 ? "isn't taken for an ISO 10303-21 file" : "can't be opened"));
        }
        for (const UnreadFile& file : load.session.loaded.unreadFiles) {
            told.push_back(file.path + "|" + file.productName + "|" + file.reason);
        }
        EXPECT_EQ(told, expected);
        EXPECT_EQ(told.size(), 30u);
    }
}

TEST(UnreadFiles, CostTheConsoleNothingButWhatTheFilesSay) {
    const TempFolder folder;
    const LoadedFile missing(folder.Write("top.stp", TopWith("missing.stp")));
    EXPECT_EQ(missing.console, "Start TraiteSTEPFile\nNumber of files=0  ; Number of parts=0 \n");
    folder.Write("other.stp", "not a STEP file");
    const LoadedFile other(folder.Write("top.stp", TopWith("other.stp")));
    EXPECT_EQ(other.console,
              "Start TraiteSTEPFile\n<E> Invalid P21 file\nNumber of files=0  ; Number of parts=0 \n");
}

TEST(UnreadFiles, GiveTheirProductAnEmptyList) {
    const TempFolder folder;
    const LoadedFile load(folder.Write("top.stp", TopWith("missing.stp")));
    const ProductNode& part = *load.Find("part");
    ASSERT_NE(part.drawList, nullptr);
    EXPECT_EQ(part.drawList->count, 0);
    EXPECT_EQ(part.hasBox, 0);
    EXPECT_THAT(load.DrawnNames(), IsEmpty());
}

TEST(UnreadFiles, NameAFileOfEachProductThatWantsIt) {
    const TempFolder folder;
    AssemblyText text;
    const int top = text.Product("top");
    for (const char* const name : {"one", "two"}) {
        const int part = text.Product(name);
        text.Use(top, part);
        text.File(part, "shared.stp");
    }
    const LoadedFile load(folder.Write("top.stp", text.Text()));
    ASSERT_EQ(load.session.loaded.unreadFiles.size(), 2u);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].path, load.session.loaded.unreadFiles[1].path);
    EXPECT_NE(load.session.loaded.unreadFiles[0].productName, load.session.loaded.unreadFiles[1].productName);
}

TEST(UnreadFiles, AreThoseOfTheLowerFilesToo) {
    const TempFolder folder;
    AssemblyText sub;
    const int root = sub.Product("part");
    const int leaf = sub.Product("leaf");
    sub.Use(root, leaf);
    sub.File(leaf, "leaf.stp");
    folder.Write("sub.stp", sub.Text());
    const LoadedFile load(folder.Write("top.stp", TopWith("sub.stp")));
    ASSERT_EQ(load.session.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(load.session.loaded.unreadFiles[0].productName, "leaf");
    EXPECT_EQ(load.session.loaded.unreadFiles[0].place, 1);
}

} // namespace
} // namespace tarnwick::test
