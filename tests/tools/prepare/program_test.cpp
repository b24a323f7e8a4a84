// tarnwick-prepare as a program.

#include "support/json.h"
#include "support/p21_text.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// A block beside a triangle: nobody makes its shape.
std::string TextWithABlock() {
    return P21Text({
        "#1=PRODUCT('P','P','',(#9));",
        "#2=PRODUCT_DEFINITION_FORMATION('','',#1);",
        "#3=PRODUCT_DEFINITION('','',#2,#9);",
        "#4=PRODUCT_DEFINITION_SHAPE('','',#3);",
        "#5=SHAPE_REPRESENTATION('',(#10,#12),#9);",
        "#6=SHAPE_DEFINITION_REPRESENTATION(#4,#5);",
        "#10=BLOCK('',#11,1.,1.,1.);",
        "#12=TRIANGULATED_FACE('',#13,3,((0.,0.,1.)),$,(),((1,2,3)));",
        "#13=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.)));",
    });
}

class PrepareProgram : public testing::Test {
protected:
    ProgramRun Run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--output", out_});
        return RunProgram(TARNWICK_PREPARE, arguments);
    }

    TempFolder folder_;
    std::string out_ = folder_.Path("out");
    std::string part_ = folder_.Write("part.step", SmallPartText());
    std::string block_ = folder_.Write("block.step", TextWithABlock());
};

TEST_F(PrepareProgram, Returns0WhereAllCame) {
    const ProgramRun run = Run({part_});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, StartsWith(part_ + ": 1 part, placed 1 time, 8 triangles, "));
    EXPECT_THAT(run.output, EndsWith(" -> " + out_ + "/part.stp\n"));
    EXPECT_TRUE(fs::exists(out_ + "/part.stp"));
}

TEST_F(PrepareProgram, Returns1WhereShapeIsMissing) {
    const ProgramRun run = Run({block_, part_});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("  missing: P: #10: a BLOCK is described by how it is made"));
    EXPECT_TRUE(fs::exists(out_ + "/block.stp"));
    EXPECT_TRUE(fs::exists(out_ + "/part.stp")) << "the others come all the same";
}

TEST_F(PrepareProgram, Returns1AndSaysWhyWhereNothingCame) {
    const ProgramRun run = Run({folder_.Path("gone.step"), folder_.Write("notes.step", "notes\n")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.output, HasSubstr("gone.step: No such file or directory\n"));
    EXPECT_THAT(run.output, HasSubstr("notes.step: it is neither an ISO 10303-21 file nor STEP XML\n"));
}

TEST_F(PrepareProgram, Returns2ForAWrongCommandLine) {
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {},
             {"--no-such-option", part_},
             {"--deflection", "0", part_},
             {"--angle", "many", part_},
             {"--jobs", "0", part_},
             {"--time-limit", "-1", part_},
             {part_, "--json"},
         }) {
        const ProgramRun run = Run(arguments);
        EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments);
        EXPECT_NE(run.errors, "") << testing::PrintToString(arguments);
        EXPECT_EQ(run.output, "") << testing::PrintToString(arguments);
    }
    EXPECT_FALSE(fs::exists(out_));
}

TEST_F(PrepareProgram, Returns2ForTwoFilesOfOneOutcome) {
    fs::create_directory(folder_.Path("other"));
    const ProgramRun run = Run({part_, folder_.Write("other/part.p21", SmallPartText())});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.errors, "tarnwick-prepare: two of the files would both become part.stp\n");
    EXPECT_FALSE(fs::exists(out_));
}

TEST_F(PrepareProgram, ExplainsItself) {
    const ProgramRun help = Run({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* const word : {"FILE", "--output", "--deflection", "--angle", "--jobs", "--time-limit",
                                   "--force", "--compress", "--json", "--help", "--version"}) {
        EXPECT_THAT(help.output, HasSubstr(word));
    }
    EXPECT_EQ(Run({"--version"}).output, std::string("tarnwick-prepare ") + TARNWICK_VERSION + "\n");
}

TEST_F(PrepareProgram, WritesAReport) {
    const std::string file = folder_.Path("report.json");
    EXPECT_EQ(Run({part_, block_, folder_.Path("gone.step"), "--json", file}).status, 1);
    const json report = ParseJson(ReadWholeFile(file));
    ASSERT_EQ(report.size(), 3u);
    EXPECT_EQ(report[0]["input"], part_);
    EXPECT_EQ(report[0]["output"], out_ + "/part.stp");
    EXPECT_EQ(report[0]["parts"], 1);
    EXPECT_EQ(report[0]["placedParts"], 1);
    EXPECT_EQ(report[0]["triangles"], 8);
    EXPECT_EQ(report[0]["complete"], true);
    EXPECT_EQ(report[0]["unchanged"], false);
    EXPECT_EQ(report[0]["error"], nullptr);
    EXPECT_EQ(report[1]["complete"], false);
    ASSERT_EQ(report[1]["losses"].size(), 1u);
    EXPECT_EQ(report[1]["losses"][0]["product"], "P");
    EXPECT_EQ(report[1]["losses"][0]["entity"], 10);
    EXPECT_EQ(report[1]["losses"][0]["shape"], true);
    EXPECT_EQ(report[2]["output"], nullptr);
    EXPECT_EQ(report[2]["error"], "No such file or directory");
}

TEST_F(PrepareProgram, WithTheReportOnStandardOutputTheWordsGoBesideIt) {
    const ProgramRun run = Run({part_, "--json", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(ParseJson(run.output)[0]["triangles"], 8);
    EXPECT_THAT(run.errors, HasSubstr("part.step: 1 part, "));
}

TEST_F(PrepareProgram, SaysWhyTheReportCantBeWritten) {
    const ProgramRun run = Run({part_, "--json", folder_.Path("no/report.json")});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.errors, HasSubstr("report.json can't be written: No such file or directory\n"));
}

TEST_F(PrepareProgram, LeavesWhatIsUnchanged) {
    Run({part_});
    const std::string outcome = out_ + "/part.stp";
    fs::last_write_time(outcome, fs::file_time_type::clock::now() - std::chrono::hours(1));
    const auto before = fs::last_write_time(outcome);
    const ProgramRun again = Run({part_});
    EXPECT_EQ(again.status, 0);
    EXPECT_THAT(again.output, HasSubstr(" (was there already) -> "));
    EXPECT_EQ(fs::last_write_time(outcome), before);
    EXPECT_EQ(Run({part_, "--force"}).output.find("was there already"), std::string::npos);
    EXPECT_NE(fs::last_write_time(outcome), before);
}

TEST_F(PrepareProgram, LossesAreToldAgainForWhatIsUnchanged) {
    const std::string told = Run({block_}).output;
    const ProgramRun again = Run({block_});
    EXPECT_EQ(again.status, 1);
    EXPECT_EQ(again.output.substr(again.output.find('\n')), told.substr(told.find('\n')));
}

TEST_F(PrepareProgram, CompressesTheOutcome) {
    const ProgramRun run = Run({part_, "--compress"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.output, EndsWith("/part.stpz\n"));
    EXPECT_THAT(ReadWholeFile(out_ + "/part.stpz"), StartsWith("\x78\x9C"));
    EXPECT_FALSE(fs::exists(out_ + "/part.stp"));
}

TEST_F(PrepareProgram, APipeGetsPlainLines) {
    const ProgramRun run = Run({part_, block_});
    for (const std::string& text : {run.output, run.errors}) {
        EXPECT_TRUE(std::none_of(text.begin(), text.end(), [](char c) {
            return static_cast<unsigned char>(c) < ' ' && c != '\n';
        })) << text;
    }
}

TEST_F(PrepareProgram, NamesAreOnOneLineWhateverIsInThem) {
    const ProgramRun run = Run({folder_.Path("a\nb\x1b[2J%s.step")});
    EXPECT_THAT(run.output, HasSubstr("a?b?[2J%s.step: "));
    EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 1);
}

} // namespace
} // namespace tarnwick::test
