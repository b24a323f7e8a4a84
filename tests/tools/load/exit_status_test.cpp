#include "platform/fail_fast.h"
#include "support/assembly_text.h"
#include "tools/load/load_program.h"

namespace tarnwick::test {
namespace {

using testing::HasSubstr;

TEST_F(LoadProgram, Returns0WhenThereIsATriangle) {
    EXPECT_EQ(Run({part_}).status, 0);
}

TEST_F(LoadProgram, Returns1WhenThereIsNoTriangle) {
    EXPECT_EQ(Run({folder_.Write("empty.stp", P21Text({"#1=PRODUCT('P','','',());"}))}).status, 1);
}

TEST_F(LoadProgram, Returns1AndNamesAMissingFile) {
    const ProgramRun run = Run({"/nowhere/missing.stp"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("/nowhere/missing.stp"));
    EXPECT_EQ(run.output, "Nb Triangles: 0  CPU tot: 0.000s \n") << "the status text is formed all the same";
}

TEST_F(LoadProgram, Returns1AndNamesAFileOfAnotherKind) {
    for (const char* const name : {"a.step", "a.p21", "a", "a.stp.Z", "a.123456789"}) {
        const std::string path = folder_.Write(name, SmallPartText());
        const ProgramRun run = Run({path});
        EXPECT_EQ(run.status, 1) << name;
        EXPECT_THAT(run.errors, HasSubstr(path)) << name;
        EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 2) << run.errors;
        EXPECT_EQ(run.output, "") << name;
    }
}

TEST_F(LoadProgram, Returns1AndSaysWhyForAFileThatIsNoP21) {
    const ProgramRun run = Run({folder_.Write("bad.stp", "bad\n")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("<E> Invalid P21 file\n"));
    EXPECT_THAT(run.errors, HasSubstr("bad.stp"));
}

TEST_F(LoadProgram, Returns2ForAWrongCommandLine) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {},
             {"--no-such-option", part_},
             {part_, "product", "third"},
             {part_, "--json"},
             {part_, "--repeat", "0"},
             {part_, "--repeat", "-1"},
             {part_, "--repeat", "many"},
             {part_, "--repeat"},
             {part_, "--arrays"},
             {part_, "--entities"},
             {part_, "--index", "--json", "x.json"},
         }) {
        const ProgramRun run = Run(arguments);
        EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments);
        EXPECT_NE(run.errors, "") << testing::PrintToString(arguments);
        EXPECT_EQ(run.output, "") << testing::PrintToString(arguments);
    }
}

TEST_F(LoadProgram, NamesAnUnknownOptionRatherThanTheMissingPath) {
    const ProgramRun unknown = Run({"--no-such-option"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("--no-such-option"));
    EXPECT_THAT(Run({}).errors, HasSubstr("PATH"));
}

TEST_F(LoadProgram, EndsAtOnceWhereABoundsCheckFails) {
    const std::string report = folder_.Path("report.json");
    const ProgramRun run =
        Run({folder_.Write("long.stp", P21Text({"#1=PRODUCT('" + std::string(300, 'n') + "','','',());"})),
             "--json", report});
    EXPECT_EQ(run.status, kFailFastStatus);
    EXPECT_EQ(run.errors, "Start TraiteSTEPFile\n") << "no console line of its own";
    EXPECT_EQ(ReadWholeFile(report), "") << "and no report";
}

TEST_F(LoadProgram, ExplainsItself) {
    const ProgramRun help = Run({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* const word : {"PATH", "PRODUCT", "--json", "--arrays", "--no-threads", "--repeat",
                                   "--index", "--entities", "--check", "--verbose", "--help", "--version"}) {
        EXPECT_THAT(help.output, HasSubstr(word));
    }
    EXPECT_EQ(help.errors, "");
}

TEST_F(LoadProgram, TellsItsVersion) {
    const ProgramRun run = Run({"--version"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, std::string("tarnwick-load ") + TARNWICK_VERSION + "\n");
}

TEST_F(LoadProgram, NamesAnUnreadFileOnOneLineWhateverItsProductIsCalled) {
    AssemblyText top;
    const int root = top.Product("root");
    const int leaf = top.Product("a\nb\x1b[2J");
    top.Use(root, leaf);
    top.File(leaf, "gone.stp");
    const ProgramRun run = Run({folder_.Write("top.stp", top.Text())});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("gone.stp, the file of product 'a?b?[2J', can't be opened\n"));
}

TEST_F(LoadProgram, NamesAMissingFileOnOneLineWhateverItIsCalled) {
    EXPECT_THAT(Run({"--index", "a\nb.stp"}).errors, HasSubstr("tarnwick-load: a?b.stp can't be opened\n"));
    EXPECT_THAT(Run({"a\nb.txt"}).errors, HasSubstr("tarnwick-load: a?b.txt: not a kind of file"));
}

} // namespace
} // namespace tarnwick::test
