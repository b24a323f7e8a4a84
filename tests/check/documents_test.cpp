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

TEST(CheckDocuments, TellOfAnArchiveThatIsNone) {
    EXPECT_THAT(Findings("no archive", "a.stpa"), ElementsAre("unread-file"));
}

TEST(CheckDocuments, TellOfASummaryThatIsNotThere) {
    EXPECT_THAT(Brief(Checked("/nowhere/a.stpj")), ElementsAre("a.stpj unread-file"));
}

} // namespace
} // namespace tarnwick::test
