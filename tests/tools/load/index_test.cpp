#include "support/packed.h"
#include "tools/load/load_program.h"

namespace tarnwick::test {
namespace {

TEST_F(LoadProgram, PrintsTheIndex) {
    const ProgramRun run = Run({"--index", part_});
    EXPECT_EQ(run.status, 0);
    const json report = ObjectIn(run.output);
    EXPECT_EQ(report["format"], "tarnwick.index/1");
    EXPECT_EQ(report["result"], 0);
    EXPECT_EQ(report["fileName"], part_);
    EXPECT_EQ(report["entityCount"], 35);
    EXPECT_FALSE(report.contains("entities"));
    EXPECT_EQ(run.errors, "") << "no load was started";
}

TEST_F(LoadProgram, PrintsTheEntityTableWhenAsked) {
    const json report = ObjectIn(Run({"--index", "--entities", part_}).output);
    ASSERT_EQ(report["entities"].size(), 35u);
    EXPECT_EQ(report["entities"][0][0], 1);
    EXPECT_EQ(report["entities"][0][3], 27);
    EXPECT_EQ(report["entities"][34][0], 78);
}

TEST_F(LoadProgram, PrintsTheIndexWhateverTheExtension) {
    for (const char* const name : {"a.step", "a.p21", "a", "a.txt"}) {
        const ProgramRun run = Run({"--index", folder_.Write(name, SmallPartText())});
        EXPECT_EQ(run.status, 0) << name;
        EXPECT_EQ(ObjectIn(run.output)["entityCount"], 35) << name;
    }
    const ProgramRun packed = Run({"--index", folder_.Write("a.stp.Z", ZlibPacked(SmallPartText()))});
    EXPECT_EQ(packed.status, 0);
    EXPECT_EQ(ObjectIn(packed.output)["compression"], 1);
}

TEST_F(LoadProgram, Returns1ForTheIndexOfAMissingFile) {
    const ProgramRun run = Run({"--index", "/nowhere/x.stp"});
    EXPECT_EQ(run.status, 1);
    const json report = ObjectIn(run.output);
    EXPECT_EQ(report["result"], 1);
    EXPECT_EQ(report["fileName"], "/nowhere/x.stpz");
    EXPECT_THAT(run.errors, testing::HasSubstr("/nowhere/x.stp"));
}

TEST_F(LoadProgram, Returns1ForTheIndexOfAFileThatIsNoP21) {
    const ProgramRun run = Run({"--index", folder_.Write("bad.stp", "bad\n")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(ObjectIn(run.output)["result"], 5);
    EXPECT_EQ(run.errors, "<E> Invalid P21 file\n");
}

} // namespace
} // namespace tarnwick::test
