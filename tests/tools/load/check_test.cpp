#include "tools/load/load_program.h"

namespace tarnwick::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

// SmallPartText has entities that nothing lists, references to what isn't there and a face without normals.
const std::string kSound = P21Text({
    "#1=PRODUCT('P1','','',());",
    "#2=TESSELLATED_SHAPE_REPRESENTATION('',(#3),#6);",
    "#3=TESSELLATED_SHELL('',(#4),$);",
    "#4=TRIANGULATED_FACE('',#5,3,((0.,0.,1.)),$,(),((1,2,3)));",
    "#5=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)));",
    "#6=GEOMETRIC_REPRESENTATION_CONTEXT('','',3);",
});

TEST_F(LoadProgram, ChecksAFile) {
    const ProgramRun sound = Run({"--check", folder_.Write("sound.stp", kSound)});
    EXPECT_EQ(sound.status, 0);
    EXPECT_EQ(sound.output, "Shows all of its 1 triangle\n\nNothing is wrong with this file.\n");
    EXPECT_EQ(sound.errors, "");
    EXPECT_THAT(Run({"--check", "--verbose", folder_.Path("sound.stp")}).output,
                EndsWith("        1  TRIANGULATED_FACE\n"));
    const ProgramRun run = Run({"--check", part_});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("\nFaces without normals\n"));
}

TEST_F(LoadProgram, ChecksAFileThatWouldEndTheProgram) {
    const std::string path =
        folder_.Write("long.stp", P21Text({"#1=PRODUCT('" + std::string(300, 'n') + "','','',());"}));
    const ProgramRun run = Run({"--check", path});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("Ends the program: its name has 300 characters or more\n"));
}

TEST_F(LoadProgram, ChecksWhatIsNotThere) {
    for (const char* const path :
         {"/nowhere/a.stp", "/nowhere/a.stpx", "/nowhere/a.stpa", "/nowhere/a.txt"}) {
        const ProgramRun run = Run({"--check", path});
        EXPECT_EQ(run.status, 1) << path;
        EXPECT_NE(run.output, "") << path;
    }
}

TEST_F(LoadProgram, WritesTheCheckAsJson) {
    const ProgramRun run = Run({"--check", part_, "--json", "-"});
    EXPECT_EQ(run.status, 1);
    const json report = ParseJson(run.output);
    EXPECT_EQ(report["format"], "tarnwick.check/1");
    EXPECT_EQ(report["path"], part_);
    EXPECT_EQ(report["counts"]["TRIANGULATED_FACE"], 2);
    const std::string name = folder_.Path("check.json");
    const ProgramRun toFile = Run({"--check", part_, "--json", name});
    EXPECT_EQ(toFile.output, "");
    EXPECT_EQ(ParseJson(ReadWholeFile(name)), report);
    EXPECT_EQ(Run({"--check", folder_.Write("sound.stp", kSound), "--json", "/nowhere/check.json"}).status, 1)
        << "a report that can't be written";
}

TEST_F(LoadProgram, RefusesToCheckTogetherWithOptionsOfALoad) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {"--check"},
             {"--check", part_, "--index"},
             {"--verbose", part_},
             {"--check", part_, "--repeat", "2"},
             {"--check", part_, "--depth", "1"},
             {"--check", part_, "--json", "-", "--arrays"},
         }) {
        const ProgramRun run = Run(arguments);
        EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments);
        EXPECT_NE(run.errors, "") << testing::PrintToString(arguments);
        EXPECT_EQ(run.output, "") << testing::PrintToString(arguments);
    }
}

} // namespace
} // namespace tarnwick::test
