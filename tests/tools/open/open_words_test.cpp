// tarnwick-open where there is no display.

#include "mesher/solid_text.h"
#include "support/p21_text.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class OpenWords : public testing::Test {
protected:
    ProgramRun Run(const std::vector<std::string>& arguments) const {
        return RunProgram(
            TARNWICK_OPEN, arguments,
            {"DISPLAY=", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM=", "XDG_CACHE_HOME=" + folder_.Path("cache")});
    }

    TempFolder folder_;
};

TEST_F(OpenWords, WhatTheViewerShowsWholeIsTakenAsItIs) {
    for (const std::string name :
         {"gear.stp", "flange.stpz", "machine/machine.stp", "machine-xml/machine.stpx", "machine.stpa",
          "machine.stpj", "panel-fem.stp", "surface-sets.stpz"}) {
        const std::string path = std::string(TARNWICK_SAMPLES) + "/" + name;
        const ProgramRun run = Run({path});
        EXPECT_EQ(run.status, 0) << name;
        EXPECT_EQ(run.output, path + "\n");
        EXPECT_EQ(run.errors, "") << name;
    }
    EXPECT_FALSE(std::filesystem::exists(folder_.Path("cache")));
}

TEST_F(OpenWords, AFileOfAnotherNameIsPreparedIntoTheCacheOnce) {
    const std::string path = folder_.Write("part.step", SmallPartText());
    const ProgramRun run = Run({path});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, StartsWith(folder_.Path("cache/tarnwick/prepared/")));
    EXPECT_THAT(run.output, HasSubstr("/part.stp\n"));
    EXPECT_THAT(run.errors, HasSubstr("part.step: 1 part, placed 1 time"));
    const ProgramRun again = Run({path});
    EXPECT_EQ(again.output, run.output);
    EXPECT_THAT(again.errors, HasSubstr("(was there already)"));
}

TEST_F(OpenWords, FilesOfOneNameHaveFoldersOfTheirOwn) {
    std::filesystem::create_directory(folder_.Path("other"));
    const ProgramRun one = Run({folder_.Write("part.step", SmallPartText())});
    const ProgramRun other = Run({folder_.Write("other/part.step", SmallPartText())});
    EXPECT_EQ(other.status, 0);
    EXPECT_NE(one.output, other.output);
}

TEST_F(OpenWords, ALinkHasTheFolderOfItsFile) {
    const std::string path = folder_.Write("part.step", SmallPartText());
    std::filesystem::create_symlink(path, folder_.Path("link"));
    const std::string shown = Run({path}).output;
    const std::string linked = Run({folder_.Path("link")}).output;
    EXPECT_EQ(std::filesystem::path(shown).parent_path(), std::filesystem::path(linked).parent_path());
}

TEST_F(OpenWords, APartThatTheViewerShowsOnlySomeOfIsPrepared) {
    // The second list is broken over lines, where the viewer's reader ends it.
    std::string text = SmallPartText();
    const std::size_t shape = text.find("TRIANGULATED_FACE");
    ASSERT_NE(shape, std::string::npos);
    const std::size_t comma = text.find("),(", shape);
    ASSERT_NE(comma, std::string::npos);
    text.insert(comma + 2, "\n");
    const ProgramRun run = Run({folder_.Write("part.stp", text)});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("/cache/tarnwick/prepared/"));
}

TEST_F(OpenWords, ANameThatEndsTheViewersReaderIsNoHindrance) {
    std::string text = SmallPartText();
    const std::size_t product = text.find("PRODUCT('");
    ASSERT_NE(product, std::string::npos);
    text.insert(product + 9, std::string(400, 'n'));
    const ProgramRun run = Run({folder_.Write("part.stp", text)});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("/cache/tarnwick/prepared/"));
}

TEST_F(OpenWords, SaysWhyThereIsNothing) {
    const ProgramRun missing = Run({folder_.Path("gone.step")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.errors, HasSubstr("gone.step: No such file or directory\n"));
    EXPECT_EQ(missing.output, "");
    const ProgramRun text = Run({folder_.Write("notes.step", "notes\n")});
    EXPECT_EQ(text.status, 1);
    EXPECT_THAT(text.errors, HasSubstr("it is neither an ISO 10303-21 file nor STEP XML\n"));
    EXPECT_EQ(text.output, "");
}

TEST_F(OpenWords, AreAskedForWhereThereIsADisplay) {
    const std::string path = std::string(TARNWICK_SAMPLES) + "/gear.stp";
    const ProgramRun run = RunProgram(TARNWICK_OPEN, {"--path", path}, {"DISPLAY=:nowhere"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, path + "\n");
}

TEST_F(OpenWords, Returns2ForAWrongCommandLine) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {}, {""}, {"a", "b"}, {"--no-such-option", "a"}, {"--shows"}, {"--shows", "many", "a"}}) {
        const ProgramRun run = Run(arguments);
        EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(run.errors, HasSubstr("tarnwick-open: ")) << testing::PrintToString(arguments);
    }
}

TEST_F(OpenWords, ExplainsItself) {
    const ProgramRun help = Run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("Usage: tarnwick-open FILE\n"));
    EXPECT_EQ(Run({"--version"}).output, "tarnwick-open " TARNWICK_VERSION "\n");
}

TEST_F(OpenWords, TellsAProgramWhatTheViewerShows) {
    const std::string path = folder_.Write("part.stp", SmallPartText());
    EXPECT_EQ(Run({"--shows", "1", "--", path}).status, 0);
    EXPECT_EQ(Run({"--shows", "1000000", path}).status, 1);
    EXPECT_EQ(Run({"--shows", "1", folder_.Write("part.step", SmallPartText())}).status, 1);
}

} // namespace
} // namespace tarnwick::test
