#include "load/step_driver.h"

#include "support/capture.h"
#include "support/loaded_file.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;

struct Driven {
    Driven(const std::string& path, bool useThreads) {
        LogCapture log;
        result = TraiteSTEPFile(session, path.c_str(), useThreads);
        output = log.TakeOutput();
        console = log.TakeConsole();
    }
    LoadedScene loaded = NewScene();
    LoadSession session{loaded};
    int result;
    std::string output;
    std::string console;
};

TEST(TraiteSTEPFile, ReadsAFileThatIsOnePart) {
    const TempFolder folder;
    const Driven driven(folder.Write("part.stp", SmallPartText()), 0);
    const LoadSession& session = driven.session;
    EXPECT_EQ(driven.result, 0);
    EXPECT_EQ(driven.console, "Start TraiteSTEPFile\n");
    EXPECT_EQ(session.isAssembly, 0);
    EXPECT_EQ(session.partCount, 1);
    EXPECT_EQ(session.loaded.drawnTriangles, 8);
    EXPECT_EQ(session.loaded.hasBox, 1);
    EXPECT_THAT(session.loaded.box, ElementsAre(0, 1, 0, 15, -2.25f, 0));
    ASSERT_NE(session.loaded.root, nullptr);
    EXPECT_EQ(session.loaded.drawList, session.loaded.root->drawList);
    EXPECT_EQ(session.loaded.containerCount, 2);
    EXPECT_EQ(session.loaded.rootName, "P1");
    EXPECT_EQ(session.fileCount, 0);
    EXPECT_EQ(session.loaded.readSeconds, 0);
    EXPECT_EQ(session.folder, "");
    EXPECT_EQ(session.loaded.resultMesh, nullptr);
}

TEST(TraiteSTEPFile, StartsNoThreadsForOnePart) {
    const TempFolder folder;
    const Driven driven(folder.Write("part.stp", SmallPartText()), 1);
    EXPECT_EQ(driven.result, 0);
    EXPECT_EQ(driven.console, "Start TraiteSTEPFile\n") << "no thread says that it ends";
    EXPECT_EQ(driven.session.loaded.drawnTriangles, 8);
}

TEST(TraiteSTEPFile, FailsForAFileThatIsNotThere) {
    const Driven driven("/nowhere/part.stp", 1);
    EXPECT_EQ(driven.result, 1);
    EXPECT_EQ(driven.console, "Start TraiteSTEPFile\n");
    EXPECT_EQ(driven.session.isAssembly, -1);
    EXPECT_EQ(driven.session.loaded.root, nullptr);
    ASSERT_EQ(driven.session.loaded.unreadFiles.size(), 1u);
    EXPECT_EQ(driven.session.loaded.unreadFiles[0].path, "/nowhere/part.stp") << "as it was tried first";
    EXPECT_EQ(driven.session.loaded.unreadFiles[0].productName, "");
    EXPECT_STREQ(driven.session.loaded.unreadFiles[0].reason, "can't be opened");
}

TEST(TraiteSTEPFile, FailsForAFileOf2GiB) {
    const TempFolder folder;
    const std::string path = folder.Write("part.stp", P21Text({}));
    std::filesystem::resize_file(path, std::uintmax_t{1} << 31); // a hole: it takes no room
    const Driven driven(path, 0);
    EXPECT_EQ(driven.result, 1);
    EXPECT_EQ(driven.console,
              "Start TraiteSTEPFile\n<E> " + path + ": files of 2 GiB and more can't be read\n");
    ASSERT_EQ(driven.session.loaded.unreadFiles.size(), 1u);
    EXPECT_STREQ(driven.session.loaded.unreadFiles[0].reason, "can't be opened");
}

TEST(TraiteSTEPFile, FailsForAFileOfAnotherKind) {
    const TempFolder folder;
    const Driven driven(folder.Write("part.stp", "anything\n"), 0);
    EXPECT_EQ(driven.result, 1) << "and not 5";
    EXPECT_EQ(driven.console, "Start TraiteSTEPFile\n<E> Invalid P21 file\n");
    ASSERT_EQ(driven.session.loaded.unreadFiles.size(), 1u);
    EXPECT_STREQ(driven.session.loaded.unreadFiles[0].reason, "isn't taken for an ISO 10303-21 file");
}

TEST(TraiteSTEPFile, HasABoxOfZerosForAPartWithoutFaces) {
    const TempFolder folder;
    const Driven driven(folder.Write("part.stp", P21Text({"#1=PRODUCT('P','','',());"})), 0);
    EXPECT_EQ(driven.result, 0);
    EXPECT_EQ(driven.session.loaded.hasBox, 1);
    EXPECT_THAT(driven.session.loaded.box, ElementsAre(0, 0, 0, 0, 0, 0));
    EXPECT_EQ(driven.session.loaded.drawnTriangles, 0);
}

TEST(TraiteSTEPFile, GoesOnWithoutAPart) {
    const TempFolder folder;
    const Driven driven(folder.Write("part.stp", P21Text({})), 0);
    EXPECT_EQ(driven.result, 0);
    EXPECT_EQ(driven.session.loaded.root, nullptr);
    EXPECT_EQ(driven.session.loaded.drawList, nullptr);
    EXPECT_FALSE(driven.session.loaded.hasRootName);
    EXPECT_EQ(driven.session.partCount, 1);
    EXPECT_EQ(driven.session.loaded.unreadFiles.size(), 1u);
}

TEST(TraiteSTEPFile, EndsTheNameAtANul) {
    const TempFolder folder;
    std::string text = P21Text({"#1=PRODUCT('ab_cd','','',());"});
    text[text.find("ab_cd") + 2] = '\0';
    const Driven driven(folder.Write("part.stp", text), 0);
    EXPECT_EQ(driven.result, 0);
    EXPECT_EQ(driven.session.loaded.rootName, "ab");
}

} // namespace
} // namespace tarnwick::test
