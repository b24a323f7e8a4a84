// The built program, where the system has no room for it.

#include "support/run_program.h"
#include "support/sanitized.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// Runs the program by a shell, which sets what is around it.
ProgramRun RunAs(const std::string& script, const std::string& argument = {}) {
    return RunProgram("/bin/sh", {"-c", script, TARNWICK_MAKE, argument});
}

TEST(MakeProgram, FailsWhenItsStandardOutputIsLost) {
    const TempFolder folder;
    for (const char* const script : {"exec \"$0\" part \"$1\" > /dev/full", "exec \"$0\" --help > /dev/full",
                                     "exec \"$0\" --version > /dev/full"}) {
        const ProgramRun run = RunAs(script, folder.Path("a.stp"));
        EXPECT_EQ(run.status, 1) << script;
        EXPECT_THAT(run.errors, StartsWith("tarnwick-make: standard output can't be written: ")) << script;
    }
}

TEST(MakeProgram, EndsWithALineWhenMemoryRunsOut) {
    if (kSanitized) { GTEST_SKIP() << "a sanitizer needs more address space than any limit leaves"; }
    const TempFolder folder;
    const ProgramRun run =
        RunAs("ulimit -v 60000; exec \"$0\" stpj \"$1\" --occurrences 20000000", folder.Path("a.stpj"));
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("memory"));
    EXPECT_EQ(RunProgram("/bin/ls", {"-A", folder.Path("")}).output, "");
}

} // namespace
} // namespace tarnwick::test
