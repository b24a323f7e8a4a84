#include "check/checked.h"
#include "platform/within_memory.h"
#include "support/json.h"

#include <filesystem>

namespace tarnwick::test {
namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

CheckReport ReportOf(std::string_view text) {
    const TempFolder folder;
    return Checked(folder.Write("part.stp", text));
}

// A good part with `count` items that aren't drawn, from line 10 on.
std::string WithWires(int count) {
    std::string wires;
    std::string items = "(#20,#22";
    for (int i = 100; i < 100 + count; ++i) {
        wires += "#" + std::to_string(i) + "=TESSELLATED_WIRE();\n";
        items += ",#" + std::to_string(i);
    }
    return EditedIn(Edited("(#20,#22", items), "#9=", wires + "#9=");
}

TEST(CheckReports, SayThatNothingIsWrong) {
    const std::string text = CheckText(ReportOf(GoodPart()));
    EXPECT_EQ(text, "Shows all of its 7 triangles\n\nNothing is wrong with this file.\n");
    EXPECT_THAT(CheckText(ReportOf(GoodPart()), {.isVerbose = true}), HasSubstr("        2  STYLED_ITEM\n"));
}

TEST(CheckReports, DontPraiseAFileWhoseLoadWasNotTried) {
    const TempFolder folder;
    const std::string text = CheckText(CheckedUntried(folder.Write("part.stp", GoodPart())));
    EXPECT_EQ(text, "No fault is found, but the load couldn't be tried\n\n"
                    "The load couldn't be tried: try it with tarnwick-load.\n");
}

TEST(CheckReports, TellOfMemoryThatOnlyTheLoadDidNotFind) {
    const TempFolder folder;
    LoadOutcome outcome;
    outcome.end = LoadOutcome::End::kDone;
    outcome.unread = {{"part.stp", "wheel", kNeedsMemory}, {"other.stp", "axle", "can't be opened"}};
    const CheckReport report = CheckWith(folder.Write("part.stp", GoodPart()), nullptr, outcome);
    ASSERT_EQ(report.findings.size(), 1u);
    EXPECT_EQ(report.findings[0].kind, FindingKind::kUnread);
    EXPECT_EQ(report.findings[0].text, "the file of product 'wheel' needs more memory than there is");
}

TEST(CheckReports, NameLineAndEntityOfAFinding) {
    const CheckReport report = ReportOf(WithWires(1));
    EXPECT_EQ(
        CheckText(report),
        "Shows 7 triangles, which isn't all that the file holds\n\nItems that are not drawn\n  line 10, "
        "#100: TESSELLATED_WIRE isn't drawn\nWrite shapes as faces of a TESSELLATED_SOLID or "
        "TESSELLATED_SHELL, or as COMPLEX_TRIANGULATED_SURFACE_SETs, that the representation lists: "
        "others aren't drawn.\n\nOr have it brought into the form that the viewer shows:\n  " +
            report.command + "\n");
    EXPECT_EQ(report.command, "tarnwick-prepare " + report.path);
}

TEST(CheckReports, GiveTheAdviceOfEachKind) {
    const std::string text = CheckText(
        ReportOf(EditedIn(Edited("4,((0.,0.,1.)),$", "4,$,$"), "TRANSPARENT(0.5)", "TRANSPARENT(0.)")));
    EXPECT_THAT(text, HasSubstr(TextOf(FindingKind::kTransparent).advice));
    EXPECT_THAT(text, HasSubstr(TextOf(FindingKind::kNoNormals).advice));
}

TEST(CheckReports, AreUtf8WhateverTheNamesAre) {
    CheckReport report;
    report.files = {"a.stp"};
    report.findings.push_back({.kind = FindingKind::kNoShape,
                               .text = "product 'pi\xE8"
                                       "ce'"});
    EXPECT_THAT(CheckText(report), HasSubstr("  product 'pi\xC3\xA8"
                                             "ce'\n"));
}

TEST(CheckReports, HaveColoursOnlyWhereTheyAreAskedFor) {
    const CheckReport report = ReportOf(WithWires(1));
    EXPECT_THAT(CheckText(report), Not(HasSubstr("\x1b")));
    EXPECT_THAT(CheckText(report, {.colours = true}), HasSubstr("\x1b[1mShows 7 triangles"));
}

TEST(CheckReports, QuoteThePathInTheCommand) {
    const TempFolder folder;
    const CheckReport report = Checked(folder.Write("it's one.stp", WithWires(1)));
    EXPECT_EQ(report.command, "tarnwick-prepare '" + folder.Path("it'\\''s one.stp") + "'");
}

TEST(CheckReports, HaveACommandThatTakesAPathWithADashInFrontForAPath) {
    const TempFolder folder;
    folder.Write("-one.stp", WithWires(1));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.Path(""));
    const CheckReport report = Checked("-one.stp");
    std::filesystem::current_path(before);
    EXPECT_EQ(report.command, "tarnwick-prepare -- -one.stp");
}

TEST(CheckReports, ShowTenOfAKind) {
    const std::string ten = CheckText(ReportOf(WithWires(10)));
    EXPECT_THAT(ten, HasSubstr("line 19, #109"));
    EXPECT_THAT(ten, Not(HasSubstr("more\n")));
    const std::string more = CheckText(ReportOf(WithWires(12)));
    EXPECT_THAT(more, HasSubstr("line 19, #109"));
    EXPECT_THAT(more, Not(HasSubstr("#110:")));
    EXPECT_THAT(more, HasSubstr("  and 2 more\n"));
}

TEST(CheckReports, GiveTheAdviceOfTheMostSeriousFinding) {
    const std::string text =
        EditedIn(Edited("4,((0.,0.,1.)),$", "4,$,$"), "TRANSPARENT(0.5)", "TRANSPARENT(0.)");
    EXPECT_STREQ(AdviceFor(ReportOf(text).findings), TextOf(FindingKind::kTransparent).advice);
    const std::string both = EditedIn(text, "(1,2,3,4),((1,2,3),", "(1,2,3,4),\n((1,2,3),");
    EXPECT_STREQ(AdviceFor(ReportOf(both).findings), TextOf(FindingKind::kBrokenList).advice);
}

TEST(CheckReports, HoldAllFindingsAsJson) {
    const json report = ParseJson(CheckJson(ReportOf(WithWires(12))));
    EXPECT_EQ(report["format"], "tarnwick.check/1");
    EXPECT_EQ(report["counts"]["TESSELLATED_WIRE"], 12);
    ASSERT_EQ(report["findings"].size(), 12U);
    EXPECT_EQ(report["findings"][11], ParseJson(R"({"kind": "not-drawn", "entity": 111, "line": 21,
                                                       "text": "TESSELLATED_WIRE isn't drawn"})"));
    EXPECT_EQ(report["advice"], TextOf(FindingKind::kNotDrawn).advice);
    EXPECT_EQ(report["advices"], json::array({TextOf(FindingKind::kNotDrawn).advice}));
    EXPECT_EQ(report["summary"], "Shows 7 triangles, which isn't all that the file holds");
    EXPECT_EQ(report["shown"], ParseJson(R"({"triangles": 7, "visible": 7, "parts": 1})"));
    EXPECT_EQ(report["held"]["parts"], 1);
    EXPECT_EQ(report["console"], json::array());
    EXPECT_EQ(report["command"].get<std::string>().substr(0, 17), "tarnwick-prepare ");
}

TEST(CheckReports, HaveNullForWhatThereIsNone) {
    const json report = ParseJson(CheckJson(ReportOf(Edited("#1=PRODUCT(", "#1=PRODUKT("))));
    EXPECT_EQ(report["findings"][0]["entity"], nullptr);
    EXPECT_EQ(report["findings"][0]["line"], nullptr);
}

TEST(CheckReports, HaveEachByteOfAName) {
    const json report = ParseJson(CheckJson(ReportOf(Edited("#62=", "#70=\xE9TAT();\n#62="))));
    EXPECT_EQ(report["counts"]["\xC3\xA9TAT"], 1);
}

TEST(CheckReports, KeepANameOnOneLine) {
    CheckReport report;
    report.path = "a\nb.stp";
    report.files = {report.path, "c\x1b.stp"};
    report.counts["P\nQ"] = 1;
    report.findings.push_back({.kind = FindingKind::kUnread, .file = 1, .text = "product 'd\ne' is lost"});
    const std::string text = CheckText(report, {.isVerbose = true});
    EXPECT_THAT(text, HasSubstr("        1  P?Q\n"));
    EXPECT_THAT(text, HasSubstr("  c?.stp: product 'd?e' is lost\n"));
    EXPECT_EQ(json::parse(CheckJson(report))["findings"][0]["file"], "c\x1b.stp");
}

} // namespace
} // namespace tarnwick::test
