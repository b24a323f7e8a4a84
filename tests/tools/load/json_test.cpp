#include "tools/load/load_program.h"

namespace tarnwick::test {
namespace {

TEST_F(LoadProgram, WritesTheSceneReport) {
    const std::string name = folder_.Path("report.json");
    const ProgramRun run = Run({part_, "--json", name});
    EXPECT_EQ(run.status, 0);
    const json report = ParseJson(ReadWholeFile(name));
    EXPECT_EQ(report["format"], "tarnwick.scene/1");
    EXPECT_EQ(report["path"], part_);
    EXPECT_EQ(report["triangles"], 8);
    EXPECT_FALSE(report["meshes"][0].contains("vertices"));
    const std::string lastLine = run.output.substr(run.output.rfind('\n', run.output.size() - 2) + 1);
    EXPECT_EQ(report["status"].get<std::string>() + "\n", lastLine);
}

TEST_F(LoadProgram, WritesArraysWhenAsked) {
    const std::string name = folder_.Path("report.json");
    Run({part_, "--json", name, "--arrays"});
    EXPECT_EQ(ParseJson(ReadWholeFile(name))["meshes"][0]["triangles"], ParseJson("[0,1,2,0,2,3]"));
}

TEST_F(LoadProgram, WritesNothingElseToStandardOutputWithTheReport) {
    const ProgramRun run = Run({part_, "--json", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(ParseJson(run.output)["format"], "tarnwick.scene/1");
    const ProgramRun bad = Run({folder_.Write("bad.stp", "bad\n"), "--json", "-"});
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(ParseJson(bad.output)["triangles"], 0);
}

TEST_F(LoadProgram, ShowsAProductOfAnEmptyNameWhenAsked) {
    const std::string path = folder_.Write(
        "a.stpx",
        "<DataContainer>\n<Part>\n<Name><CharacterString></CharacterString></Name>\n"
        "<PartView><Occurrence uid=\"o\"></Occurrence></PartView>\n</Part>\n"
        "<Part>\n<Name><CharacterString>top</CharacterString></Name>\n"
        "<PartView><ViewOccurrenceRelationship><Related uidRef=\"o\"/>\n<Placement>"
        "<RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix><TranslationVector>0 0 0</TranslationVector>"
        "</Placement></ViewOccurrenceRelationship></PartView>\n</Part>\n</DataContainer>\n");
    EXPECT_EQ(ParseJson(Run({path, "--json", "-"}).output)["products"].size(), 2u);
    EXPECT_EQ(ParseJson(Run({path, "", "--json", "-"}).output)["products"].size(), 1u);
}

TEST_F(LoadProgram, ReportsAFailedLoadAsTheFirstState) {
    const json report = ParseJson(Run({"/nowhere/x.stp", "--json", "-"}).output);
    EXPECT_EQ(report["path"], "/nowhere/x.stp");
    EXPECT_EQ(report["status"], "Nb Triangles: 0  CPU tot: 0.000s ");
    EXPECT_EQ(report["pickMode"], 0);
    EXPECT_EQ(report["modelSize"], 120.0);
    EXPECT_TRUE(report["drawList"].is_null());
    EXPECT_TRUE(report["rootName"].is_null());
}

TEST_F(LoadProgram, ReportsARefusedExtensionWithoutStatus) {
    const ProgramRun run = Run({"x.step", "--json", "-"});
    EXPECT_EQ(run.status, 1);
    const json report = ParseJson(run.output);
    EXPECT_TRUE(report["status"].is_null());
    EXPECT_EQ(report["path"], "x.step");
    EXPECT_EQ(report["modelSize"], 120.0);
}

TEST_F(LoadProgram, SaysThatAReportCannotBeWritten) {
    const ProgramRun run = Run({part_, "--json", "/nowhere/report.json"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, testing::HasSubstr("/nowhere/report.json"));
}

TEST_F(LoadProgram, ReportsTheSameAfterManyLoads) {
    json once = ParseJson(Run({part_, "--json", "-", "--arrays"}).output);
    json often = ParseJson(Run({part_, "--json", "-", "--arrays", "--repeat", "5", "--no-threads"}).output);
    once.erase("status");
    often.erase("status");
    EXPECT_EQ(once, often);
}

TEST_F(LoadProgram, ReportsNoCharacterBehindANulOfAName) {
    std::string text = P21Text({"#1=PRODUCT('ab_cd','','',());"});
    text[text.find("ab_cd") + 2] = '\0';
    const ProgramRun run = Run({folder_.Write("cut.stp", text), "--json", "-"});
    const json report = ParseJson(run.output);
    EXPECT_EQ(report["rootName"], "ab");
    EXPECT_EQ(report["products"][0]["name"], "ab");
}

} // namespace
} // namespace tarnwick::test
