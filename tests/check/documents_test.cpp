#include "check/checked.h"
#include "support/archive.h"
#include "support/p21_text.h"

namespace tarnwick::test {
namespace {

const std::string kDocument =
    "<DataContainer>\n<Part>\n<Name><CharacterString>wheel</CharacterString></Name>\n<PartView>\n"
    "<Occurrence uid=\"o1\"></Occurrence>\n<DocumentAssignment><AssignedDocument uidRef=\"f1\"/>"
    "</DocumentAssignment>\n</PartView>\n</Part>\n<File uid=\"f1\"><Id id=\"x\"><Identifier "
    "id=\"wheel.stp\"/>"
    "</Id></File>\n<Part>\n<Name><CharacterString>top</CharacterString></Name>\n<PartView>\n"
    "<ViewOccurrenceRelationship>\n<Related uidRef=\"o1\"/>\n<Placement>\n"
    "<RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix>\n<TranslationVector>10 0 0</TranslationVector>\n"
    "</Placement>\n</ViewOccurrenceRelationship>\n</PartView>\n</Part>\n</DataContainer>\n";

TEST(CheckDocuments, FindNothingInAGoodOne) {
    const TempFolder folder;
    folder.Write("wheel.stp", GoodPart());
    const CheckReport report = Checked(folder.Write("top.stpx", kDocument));
    EXPECT_THAT(Brief(report), IsEmpty());
    EXPECT_EQ(report.counts.at("TESSELLATED_SOLID"), 1);
}

TEST(CheckDocuments, TellOfPartsThatAreNotThere) {
    const TempFolder folder;
    const CheckReport report = Checked(folder.Write("top.stpx", kDocument));
    EXPECT_THAT(Brief(report), ElementsAre("wheel.stp unread-file"));
    EXPECT_EQ(report.findings[0].text, "the file of product 'wheel' can't be opened");
}

TEST(CheckDocuments, CheckTheirParts) {
    const TempFolder folder;
    folder.Write("wheel.stp", Edited("TRANSPARENT(0.5)", "TRANSPARENT(0.)"));
    EXPECT_THAT(Brief(Checked(folder.Write("top.stpx", kDocument))),
                ElementsAre("wheel.stp transparent 18 #42"));
}

TEST(CheckDocuments, TellOfAUseWithoutAProduct) {
    const TempFolder folder;
    folder.Write("wheel.stp", GoodPart());
    const std::string text = EditedIn(kDocument, "<Related uidRef=\"o1\"/>", "<Related uidRef=\"o2\"/>");
    const CheckReport report = Checked(folder.Write("top.stpx", text));
    EXPECT_THAT(Brief(report), ElementsAre("top.stpx use"));
    EXPECT_EQ(report.findings[0].text, "product 'top' uses 'o2', which is no product's");
}

TEST(CheckDocuments, TellOfADocumentThatBreaksOff) {
    const TempFolder folder;
    EXPECT_THAT(Brief(Checked(folder.Write("top.stpx", "<DataContainer>\n<Part>\n<Name>"))),
                ElementsAre("document"));
}

// The findings in an archive of the document and this part.
std::vector<std::string> FindingsInArchive(const std::string& part) {
    const TempFolder folder;
    const std::string path = folder.Path("a.stpa");
    WriteArchive(path, {{"stpa.ini", "root=\"top.stpx\"\n"}, {"top.stpx", kDocument}, {"wheel.stp", part}});
    return Brief(Checked(path, 1));
}

TEST(CheckDocuments, CheckThePartsOfAnArchive) {
    EXPECT_THAT(FindingsInArchive(GoodPart()), IsEmpty());
    EXPECT_THAT(FindingsInArchive(Edited("TRANSPARENT(0.5)", "TRANSPARENT(0.)")),
                ElementsAre("wheel.stp transparent 18 #42"));
    EXPECT_THAT(FindingsInArchive("no part"), ElementsAre("wheel.stp header"));
    EXPECT_THAT(FindingsInArchive(P21Text({"#1=NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',#1,#1,$);"})),
                ElementsAre("wheel.stp unread-file"));
}

TEST(CheckDocuments, GoOnWhereAnArchiveEndsTheProgramOrStandsStill) {
    EXPECT_THAT(FindingsInArchive(Edited("'P1'", "'" + std::string(300, 'n') + "'")), IsEmpty())
        << "the name of a part's product isn't read";
    EXPECT_THAT(FindingsInArchive(Edited("#58=FILL_AREA_STYLE_COLOUR('',#59)",
                                         "#58=FILL_AREA_STYLE_COLOUR('',#000000000000059)")),
                ElementsAre("wheel.stp too-long 27 #58"));
    const TempFolder folder;
    const std::string path = folder.Path("a.stpa");
    WriteArchive(path, {{"stpa.ini", "root=\"top.stpx\"\n"},
                        {"top.stpx", EditedIn(kDocument, ">wheel<", ">6&#34; wheel<")},
                        {"wheel.stp", GoodPart()}});
    EXPECT_THAT(Brief(Checked(path, true)), ElementsAre("top.stpx stands-still 3"));
}

TEST(CheckDocuments, TellOfAnArchiveThatIsNone) {
    EXPECT_THAT(Findings("no archive", "a.stpa"), ElementsAre("unread-file"));
}

TEST(CheckDocuments, TellOfASummaryThatIsNotThere) {
    EXPECT_THAT(Brief(Checked("/nowhere/a.stpj")), ElementsAre("a.stpj unread-file"));
}

// A good document with one place edited, checked beside a good part: the findings of the document alone.
CheckReport AfterEdit(const TempFolder& folder, std::string_view from, std::string_view to) {
    folder.Write("wheel.stp", GoodPart());
    return Checked(folder.Write("top.stpx", EditedIn(kDocument, from, to)));
}

void ExpectOne(std::string_view from, std::string_view to, const char* brief, std::string_view text) {
    const TempFolder folder;
    const CheckReport report = AfterEdit(folder, from, to);
    EXPECT_THAT(Brief(report), ElementsAre(brief)) << to;
    if (report.findings.size() == 1) { EXPECT_EQ(report.findings[0].text, text); }
    EXPECT_EQ(report.outcome.triangles, 0) << to;
}

TEST(CheckDocuments, SayHowMuchIsShown) {
    const TempFolder folder;
    EXPECT_EQ(SummaryOf(AfterEdit(folder, "10 0 0", "20 0 0")), "Shows all of its 7 triangles");
}

TEST(CheckDocuments, TellOfAUseWithoutPlacement) {
    ExpectOne("<Placement>\n<RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix>\n<TranslationVector>10 0 0"
              "</TranslationVector>\n</Placement>\n",
              "", "top.stpx use 13", "the use has no Placement: it isn't drawn");
    ExpectOne("<RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix>", "", "top.stpx use 13",
              "the use has no RotationMatrix in its Placement: it isn't drawn");
    ExpectOne("<Related uidRef=\"o1\"/>\n", "", "top.stpx use 13", "the use has no Related: it isn't drawn");
}

TEST(CheckDocuments, TellOfAPlacementThatIsAReference) {
    const std::string whole = "<Placement>\n<RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix>\n"
                              "<TranslationVector>10 0 0</TranslationVector>\n</Placement>";
    ExpectOne(whole, "<Placement uidRef=\"p1\"/>", "use 15",
              "its placement is a reference, <Placement uidRef=\"p1\"/>: what stands from here to the next "
              "</Placement> isn't read");
}

TEST(CheckDocuments, SayWhatShapeIsThereWhereTheDocumentIsGivenUp) {
    const TempFolder folder;
    const CheckReport report = AfterEdit(folder, "<RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix>",
                                         "</Placement>\n<Placement uidRef=\"p1\"/>\n<Placement>");
    EXPECT_EQ(report.totals.tessellated, 2);
    EXPECT_NE(report.command, "");
}

TEST(CheckDocuments, TellOfNamesInOtherElements) {
    ExpectOne("<Name><CharacterString>wheel</CharacterString></Name>",
              "<Name><LocalizedString lang=\"en\">wheel</LocalizedString></Name>", "document 3",
              "the name of this Part is in <LocalizedString lang=\"en\">: only a <CharacterString> right in "
              "<Name> is read");
}

TEST(CheckDocuments, TellOfEmptyElements) {
    ExpectOne("<Id id=\"x\"><Identifier id=\"wheel.stp\"/></Id>", "<Id id=\"wheel.stp\"/>", "document 9",
              "<Id id=\"wheel.stp\"/> is an empty element: the reader waits for </Id>, and passes over what "
              "stands before");
}

TEST(CheckDocuments, TellOfABlankBehindATagsName) {
    ExpectOne(
        "</PartView>\n</Part>\n<File", "<Empty />\n</PartView>\n</Part>\n<File", "document 7",
        "the tag <Empty /> has a blank or line end after its name or last attribute: the reader goes on "
        "into what follows it");
}

TEST(CheckDocuments, GoOnWhereTheLoadStandsStill) {
    const TempFolder folder;
    const CheckReport report = AfterEdit(folder, ">wheel<", ">6&#34; wheel<");
    EXPECT_THAT(Brief(report), ElementsAre("top.stpx stands-still 3"));
    EXPECT_EQ(report.outcome.end, LoadOutcome::End::kStands);
    EXPECT_THAT(SummaryOf(report), testing::StartsWith("Stops the program for ever: a name holds an \"&\""));
    const CheckReport attribute = AfterEdit(folder, "id=\"x\"", "id=\"&#34;\"");
    EXPECT_THAT(Brief(attribute), IsEmpty()) << "nothing in attributes is decoded";
    const CheckReport known = AfterEdit(folder, ">wheel<", ">nut &amp; bolt<");
    EXPECT_THAT(Brief(known), IsEmpty());
}

TEST(CheckDocuments, GoOnWhereAPartEndsTheProgram) {
    const TempFolder folder;
    folder.Write("wheel.stp", Edited("#58=FILL_AREA_STYLE_COLOUR('',#59)",
                                     "#58=FILL_AREA_STYLE_COLOUR('',#000000000000059)"));
    const CheckReport report = Checked(folder.Write("top.stpx", kDocument));
    EXPECT_THAT(Brief(report), ElementsAre("wheel.stp too-long 27 #58"));
    EXPECT_EQ(report.outcome.end, LoadOutcome::End::kEnded);
}

TEST(CheckDocuments, TellOfAPartFileThatHidesComponents) {
    const TempFolder folder;
    folder.Write("wheel.stp", GoodPart());
    const std::string text =
        EditedIn(kDocument, "<File uid=\"f1\"><Id id=\"x\"><Identifier id=\"wheel.stp\"/></Id></File>\n", "");
    const std::string both = EditedIn(
        text, "</DataContainer>",
        "<File uid=\"f1\"><Id id=\"x\"><Identifier id=\"wheel.stp\"/></Id></File>\n</DataContainer>");
    const CheckReport report = Checked(
        folder.Write("top.stpx", EditedIn(both, "<PartView>\n<ViewOcc",
                                          "<PartView>\n<DocumentAssignment><AssignedDocument uidRef=\"f1\"/>"
                                          "</DocumentAssignment>\n<ViewOcc")));
    EXPECT_THAT(Brief(report), ElementsAre("top.stpx no-file-name", "top.stpx hidden-components"));
}

TEST(CheckDocuments, AreCheckedUnderOtherExtensions) {
    const TempFolder folder;
    folder.Write("wheel.stp", GoodPart());
    const CheckReport report = Checked(folder.Write("top.xml", kDocument));
    EXPECT_THAT(Brief(report), ElementsAre("top.xml extension"));
    EXPECT_EQ(report.findings[0].text, "isn't taken under a name with this extension; a copy of it under the "
                                       "name 'top.stpx' is");
    EXPECT_EQ(SummaryOf(report), "Isn't taken under this name; a copy: Shows all of its 7 triangles");
}

} // namespace
} // namespace tarnwick::test
