// Where what is written doesn't fit. A shell sets that up.

#include "tools/load/load_program.h"

namespace tarnwick::test {
namespace {

using testing::HasSubstr;

TEST_F(LoadProgram, Returns1AndSaysWhyWhenStandardOutputIsFull) {
    for (const std::string options : {"", "--json -", "--index", "--check", "--help"}) {
        const ProgramRun run = RunProgram(
            "/bin/sh", {"-c", "exec \"$0\" \"$1\" " + options + " > /dev/full", TARNWICK_LOAD, part_});
        EXPECT_EQ(run.status, 1) << options;
        EXPECT_THAT(run.errors,
                    HasSubstr("tarnwick-load: standard output can't be written: No space left on device\n"))
            << options;
    }
}

TEST_F(LoadProgram, LeavesTheFormerReportWhenTheNewOneDoesntFit) {
    const std::string report = folder_.Write("report.json", "former");
    // No file may have more than one block of 512 bytes, and no signal tells of that.
    const ProgramRun run =
        RunProgram("/bin/sh", {"-c", "trap '' XFSZ; ulimit -f 1; exec \"$0\" \"$1\" --json \"$2\"",
                               TARNWICK_LOAD, part_, report});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("report.json can't be written: File too large\n"));
    EXPECT_EQ(ReadWholeFile(report), "former");
}

} // namespace
} // namespace tarnwick::test
