#include "xml/stpx_document.h"

#include "support/formats.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <unistd.h>

namespace tarnwick {
namespace {

using namespace test;

const std::string kMinimal = Document(Part("top", Use("o1", "10 0 0")) +
                                      Part("wheel", UsedAs("o1") + Assigned("f1")) + File("f1", "wheel.stp"));

TEST(StpxDocument, ReadsTheSmallestAssembly) {
    Tables tables;
    const ReadDocument read(tables, kMinimal);
    ASSERT_EQ(read.problem, nullptr);
    ASSERT_EQ(read.document.products.size(), 2u);
    ProductNode* const top = read.Product("top");
    ProductNode* const wheel = read.Product("wheel");
    EXPECT_EQ(read.document.root, top);
    EXPECT_EQ(top->isRoot, 1);
    EXPECT_EQ(top->definitionId, 0);
    EXPECT_EQ(top->formationId, 0);
    ASSERT_EQ(top->occurrenceCount, 1);
    EXPECT_EQ(top->occurrenceCapacity, 10);
    const Occurrence& use = *top->occurrences[0];
    EXPECT_EQ(use.child, wheel);
    EXPECT_STREQ(use.relatedUid, "o1");
    const double rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    EXPECT_TRUE(std::equal(rotation, rotation + 9, use.rotation));
    EXPECT_EQ(use.translation[0], 10);
    EXPECT_EQ(wheel->isRoot, 0);
    EXPECT_STREQ(wheel->fileName, "wheel.stp");
    EXPECT_EQ(tables.assemblies.Count(), 0);
    ASSERT_EQ(tables.parts.Count(), 1);
    EXPECT_EQ(tables.parts[0], wheel);
}

TEST(StpxDocument, HasThePartReadLastAsItsRootWhenNoPartIsAComponent) {
    Tables tables;
    const ReadDocument read(tables, Document(Part("a", Use("nobody")) + Part("b", "")));
    EXPECT_EQ(read.document.root, read.Product("b"));
}

TEST(StpxDocument, LeavesTheChildOfAUseNullWhenNoOccurrenceMatches) {
    Tables tables;
    const ReadDocument read(tables, Document(Part("a", Use("nobody") + Use("o")) + Part("b", UsedAs("o"))));
    ASSERT_EQ(read.Product("a")->occurrenceCount, 2);
    EXPECT_EQ(read.Product("a")->occurrences[0]->child, nullptr);
    EXPECT_EQ(read.Product("a")->occurrences[1]->child, read.Product("b"));
}

TEST(StpxDocument, HasNoRootWhenEveryPartIsAComponent) {
    Tables tables;
    const ReadDocument read(tables, Document(Part("a", UsedAs("o1")) + Part("b", UsedAs("o2"))));
    EXPECT_EQ(read.problem, nullptr);
    EXPECT_EQ(read.document.root, nullptr);
}

TEST(StpxDocument, TakesTheLaterOfTwoRoots) {
    Tables tables;
    const ReadDocument read(tables, Document(Part("a", "") + Part("b", "") + Part("c", UsedAs("o"))));
    EXPECT_EQ(read.document.root, read.Product("b"));
}

TEST(StpxDocument, FindsTheFirstOfTwoOccurrencesWithTheSameUid) {
    Tables tables;
    const ReadDocument read(
        tables, Document(Part("a", UsedAs("o")) + Part("b", UsedAs("o")) + Part("top", Use("o"))));
    EXPECT_EQ(read.document.root->occurrences[0]->child, read.Product("a"));
}

TEST(StpxDocument, LosesTheOtherFilesOnceOneStoodRightBehindItsPart) {
    Tables tables;
    const ReadDocument read(tables, Document(Part("a", UsedAs("1") + Assigned("fa")) +
                                             Part("b", UsedAs("2") + Assigned("fb")) + File("fb", "b.stp") +
                                             File("fa", "a.stp") + Part("top", "")));
    EXPECT_STREQ(read.Product("b")->fileName, "b.stp");
    EXPECT_EQ(read.Product("a")->fileName, nullptr);
    EXPECT_EQ(tables.parts.Count(), 1);
}

TEST(StpxDocument, ResolvesAllFilesByTheMapsWhenNoneStoodBehindItsPart) {
    Tables tables;
    const ReadDocument read(tables,
                            Document(File("fa", "a.stp") + File("fb", "b.STPX") + File("fb", "c.stp") +
                                     Part("a", Assigned("fa")) + Part("b", Assigned("fb"))));
    EXPECT_STREQ(read.Product("a")->fileName, "a.stp");
    EXPECT_STREQ(read.Product("b")->fileName, "b.STPX") << "the first of two equal keys";
    EXPECT_EQ(tables.parts.Count(), 1);
    EXPECT_EQ(tables.assemblies.Count(), 1);
}

const std::string kVersion = "<Document><DocumentVersion uid=\"v\"><DocumentDefinition><Files><DigitalFile "
                             "uidRef=\"f\"/></Files></DocumentDefinition></DocumentVersion></Document>\n";

TEST(StpxDocument, FollowsAnAssignmentThroughDocumentVersionAndDigitalFile) {
    Tables tables;
    const ReadDocument read(tables, Document(Part("a", Assigned("v")) + kVersion + File("f", "a.stp")));
    EXPECT_STREQ(read.Product("a")->fileName, "a.stp");
}

TEST(StpxDocument, SaysWhichAssignmentMissesAFileAndGoesOn) {
    Tables tables;
    const ConsoleText console;
    const ReadDocument read(
        tables, Document(File("fa", "a.stp") + Part("a", Assigned("x")) + Part("b", Assigned("fa"))));
    EXPECT_EQ(console.Text(), "<E> Chaine x non trouv\xE9"
                              "e dans mapDF_Filename\n");
    EXPECT_STREQ(read.Product("b")->fileName, "a.stp");
}

TEST(StpxDocument, LeavesOutAnAssignmentThatMissesTheVersionsOrHasNoFilesAtAll) {
    {
        Tables tables;
        const ConsoleText console;
        const ReadDocument read(tables, Document(Part("a", Assigned("x")) + Part("b", Assigned("v")) +
                                                 kVersion + File("f", "b.stp")));
        EXPECT_EQ(console.Text(), "<E> Chaine x non trouv\xE9"
                                  "e dans mapDV_DF\n");
        EXPECT_EQ(read.problem, nullptr);
        EXPECT_EQ(read.Product("a")->fileName, nullptr);
        EXPECT_STREQ(read.Product("b")->fileName, "b.stp");
    }
    {
        Tables tables;
        const ConsoleText console;
        const ReadDocument read(tables, Document(Part("a", Assigned("v")) + kVersion));
        EXPECT_EQ(console.Text(), "<E> Chaine f non trouv\xE9"
                                  "e dans mapDF_Filename\n");
        EXPECT_EQ(read.problem, nullptr);
    }
}

TEST(StpxDocument, TellsDocumentsFromPartsByTheLastLettersOfTheName) {
    EXPECT_TRUE(IsXmlByLastLetters("a.stpx"));
    EXPECT_TRUE(IsXmlByLastLetters("a.stpxz"));
    EXPECT_TRUE(IsXmlByLastLetters("a.STPX"));
    EXPECT_TRUE(IsXmlByLastLetters("a.STPXZ"));
    EXPECT_TRUE(IsXmlByLastLetters("index"));
    EXPECT_TRUE(IsXmlByLastLetters("x"));
    EXPECT_FALSE(IsXmlByLastLetters("a.stp"));
    EXPECT_FALSE(IsXmlByLastLetters("a.stpz"));
    EXPECT_FALSE(IsXmlByLastLetters("a.xy"));
    EXPECT_FALSE(IsXmlByLastLetters("z"));
    EXPECT_FALSE(IsXmlByLastLetters(""));
}

TEST(StpxDocument, AssignsAPartsFileAgainButADocumentOnlyOnce) {
    Tables tables;
    const ReadDocument read(tables, Document(File("1", "a.stp") + File("2", "b.stp") + File("3", "c.stpx") +
                                             File("4", "d.stpx") +
                                             Part("p", Assigned("1") + Assigned("2") + Assigned("3")) +
                                             Part("q", Assigned("3") + Assigned("4"))));
    EXPECT_STREQ(read.Product("p")->fileName, "b.stp");
    EXPECT_STREQ(read.Product("q")->fileName, "c.stpx");
    EXPECT_EQ(tables.parts.Count(), 2);
    EXPECT_EQ(tables.assemblies.Count(), 1);
}

TEST(StpxDocument, JoinsAPartToTheProductOfItsNameThatAskedForADocument) {
    Tables tables;
    const ReadDocument first(tables, Document(Part("sub", UsedAs("1") + Assigned("f")) +
                                              File("f", "sub.stpx") + Part("top", Use("1"))));
    ProductNode* const sub = first.Product("sub");
    ASSERT_EQ(tables.assemblies.Count(), 1);
    const ReadDocument second(tables, Document(Part("sub", Use("1") + Assigned("g")) +
                                               File("g", "again.stpx") + Part("leaf", UsedAs("1"))));
    EXPECT_EQ(second.document.products[0], sub);
    ASSERT_EQ(sub->occurrenceCount, 1);
    EXPECT_EQ(sub->occurrences[0]->child, second.Product("leaf"));
    EXPECT_STREQ(sub->fileName, "sub.stpx");
    EXPECT_EQ(tables.assemblies.Count(), 1);
}

TEST(StpxDocument, FindsTheChildrenOfAJoinedProductThatItListsTwice) {
    Tables tables;
    const ReadDocument first(tables, Document(Part("sub", UsedAs("1") + Assigned("f")) +
                                              File("f", "sub.stpx") + Part("top", Use("1"))));
    const ReadDocument second(tables, Document(Part("sub", Use("1")) + Part("leaf", UsedAs("1")) +
                                               Part("sub", Use("2")) + Part("other", UsedAs("2"))));
    ASSERT_EQ(second.document.products.size(), 4u);
    const ProductNode& sub = *first.Product("sub");
    EXPECT_EQ(second.document.products[0], &sub);
    EXPECT_EQ(second.document.products[2], &sub);
    ASSERT_EQ(sub.occurrenceCount, 2);
    EXPECT_EQ(sub.occurrences[0]->child, second.Product("leaf"));
    EXPECT_EQ(sub.occurrences[1]->child, second.Product("other"));
}

TEST(StpxDocument, JoinsNoPartToAProductOfADocumentThatWasGivenUp) {
    Tables tables;
    const ReadDocument cut(tables, "<DataContainer>" + Part("gone", Assigned("f")) + File("f", "gone.stpx"));
    ASSERT_NE(cut.problem, nullptr);
    const ReadDocument read(tables, Document(Part("sub", Assigned("f")) + File("f", "sub.stpx") +
                                             Part("gone", Assigned("g")) + File("g", "gone.stp")));
    ASSERT_EQ(read.problem, nullptr);
    EXPECT_EQ(tables.assemblies.FindByName("gone"), nullptr) << "its place is that of another one";
    EXPECT_EQ(tables.assemblies.FindByName("sub"), read.Product("sub"));
    EXPECT_STREQ(read.Product("gone")->fileName, "gone.stp");
}

TEST(StpxDocument, LeavesNothingBehindWhenItIsGivenUp) {
    Tables tables;
    const ReadDocument first(tables, Document(Part("sub", UsedAs("1") + Assigned("f")) +
                                              File("f", "sub.stpx") + Part("top", Use("1"))));
    ProductNode* const sub = first.Product("sub");
    const ProductNode before = *sub;
    const std::string text = Document(Part("sub", Use("1") + UsedAs("9")) + Part("x", Assigned("g")) +
                                      File("g", "x.stpx") + Part("y", Assigned("h")) + File("h", "y.stp"));
    for (std::size_t cut = 0; cut < text.find("</DataContainer>") + 10; ++cut) {
        const ReadDocument second(tables, std::string_view(text).substr(0, cut));
        ASSERT_NE(second.problem, nullptr);
        ASSERT_EQ(second.document.root, nullptr);
        ASSERT_TRUE(second.document.products.empty());
        ASSERT_EQ(sub->occurrenceCount, before.occurrenceCount);
        ASSERT_EQ(sub->isRoot, before.isRoot);
        ASSERT_EQ(tables.assemblies.Count(), 1);
        ASSERT_EQ(tables.parts.Count(), 0);
        ASSERT_EQ(tables.assemblies.FindByName("x"), nullptr);
        ASSERT_EQ(tables.assemblies.FindByName("sub"), sub);
    }
}

TEST(StpxDocument, DropsAUseThatLacksItsPlacementOrOneOfItsParts) {
    Tables tables;
    const ReadDocument read(
        tables,
        Document(Part("a",
                      "<ViewOccurrenceRelationship><Related uidRef=\"o\"/></ViewOccurrenceRelationship>"
                      "<ViewOccurrenceRelationship><Related uidRef=\"o\"/><Placement><RotationMatrix>1 0 0 "
                      "0 1 0 0 0 1</RotationMatrix></Placement></ViewOccurrenceRelationship>")));
    EXPECT_EQ(read.problem, nullptr);
    EXPECT_EQ(read.document.root->occurrenceCount, 0);
}

TEST(StpxDocument, KeepsTheNumbersOfTheLastPlacementWhereATextCannotBeRead) {
    Tables tables;
    const ReadDocument read(tables, Document(Part("a", Use("1", "1 2 3", "1 2 3 4 5 6 7 8 9") +
                                                           Use("2", "7 x", "x") + Use("3", "", ""))));
    const ProductNode& root = *read.document.root;
    ASSERT_EQ(root.occurrenceCount, 3);
    EXPECT_EQ(root.occurrences[1]->rotation[8], 9);
    EXPECT_EQ(root.occurrences[1]->translation[0], 7);
    EXPECT_EQ(root.occurrences[1]->translation[1], 2);
    EXPECT_EQ(root.occurrences[2]->translation[0], 7);
}

TEST(StpxDocument, ComparesTagsWhole) {
    Tables tables;
    const ReadDocument read(tables,
                            Document("<Parts><Name><CharacterString>no</CharacterString></Name></Parts>"
                                     "<PartVersion uid=\"x\"/>" +
                                     Part("a", "")));
    ASSERT_EQ(read.document.products.size(), 1u);
    EXPECT_EQ(read.document.root, read.Product("a"));
}

TEST(StpxDocument, SkipsWhatStandsInTheLocationsOfAFile) {
    Tables tables;
    const ReadDocument read(
        tables, Document(Part("a", Assigned("f")) +
                         "<File uid=\"f\"><Locations><Id><Identifier id=\"no.stp\"/></Id></Locations><Id>"
                         "<Identifier id=\"yes.stp\"/></Id></File>"));
    EXPECT_STREQ(read.Product("a")->fileName, "yes.stp");
    EXPECT_EQ(tables.parts.Count(), 1);
}

TEST(StpxDocument, DecodesAnAmpersandInANameAndTakesWhatStandsBehindABlankInItsTag) {
    Tables tables;
    const ReadDocument read(
        tables, Document("<Part><Name><CharacterString>a&amp;b</CharacterString></Name></Part>"
                         "<Part><Name><CharacterString lang=\"x\">c</CharacterString></Name></Part>"));
    EXPECT_STREQ(read.document.products[0]->name, "a&b");
    EXPECT_STREQ(read.document.products[1]->name, "lang=\"x\">c");
}

TEST(StpxDocument, EndsItsWalksAtAPartWhoseNameIsNoCharacterString) {
    Tables tables;
    const ReadDocument read(tables,
                            Document(Part("a", Use("o")) + "<Part><Name><Other>x</Other></Name></Part>" +
                                     Part("b", UsedAs("o"))));
    EXPECT_EQ(read.problem, nullptr);
    EXPECT_EQ(read.document.products[1], nullptr);
    EXPECT_EQ(read.document.root, read.Product("a"));
    EXPECT_EQ(read.document.root->occurrences[0]->child, read.Product("b"));
}

TEST(StpxDocument, ListsThePartBeforeAgainForAPartWithoutAName) {
    Tables tables;
    const ReadDocument read(
        tables, Document(Part("a", "") + "<Part><PartView>" + UsedAs("o") + "</PartView></Part>"));
    ASSERT_EQ(read.document.products.size(), 2u);
    EXPECT_EQ(read.document.products[0], read.document.products[1]);
    EXPECT_EQ(read.document.products[0]->isRoot, 0);
}

TEST(StpxDocument, IsGivenUpWhereAViewBelongsToNoNamedPart) {
    for (const std::string& view : {std::string(), UsedAs("o"), Use("o")}) {
        Tables tables;
        const ReadDocument read(tables, Document("<Part><PartView>" + view + "</PartView></Part>"));
        EXPECT_NE(read.problem, nullptr);
    }
    Tables tables;
    const ReadDocument read(tables, Document("<Part><Name><X/></Name><PartView></PartView></Part>"));
    EXPECT_NE(read.problem, nullptr);
}

TEST(StpxDocument, IsGivenUpWhereAValueDoesNotFit) {
    const auto problem = [](const std::string& content) {
        Tables tables;
        return ReadDocument(tables, Document(content)).problem;
    };
    EXPECT_EQ(problem(Part(std::string(111, 'a'), "")), nullptr);
    EXPECT_NE(problem(Part(std::string(112, 'a'), "")), nullptr);
    EXPECT_EQ(problem(Part("a", UsedAs(std::string(111, 'u')))), nullptr);
    EXPECT_NE(problem(Part("a", UsedAs(std::string(112, 'u')))), nullptr);
    EXPECT_EQ(problem(Part("a", Use("u", "0 0 0" + std::string(202, ' ')))), nullptr);
    EXPECT_NE(problem(Part("a", Use("u", "0 0 0" + std::string(203, ' ')))), nullptr);
    EXPECT_NE(problem("<" + std::string(112, 't') + ">"), nullptr);
}

TEST(StpxDocument, NeedsItsContainerAndTheContainersEnd) {
    for (const char* const text :
         {"", "<", "<?xml version=\"1.0\"?>", "<DataContainer>", "<DataContainer/>",
          "<DataContainer><Part></DataContainer>", "<DataContainer><File uid=\"x\"></DataContainer>"}) {
        Tables tables;
        EXPECT_NE(ReadDocument(tables, text).problem, nullptr) << text;
    }
    Tables tables;
    const ReadDocument empty(tables, "<DataContainer></DataContainer>");
    EXPECT_EQ(empty.problem, nullptr);
    EXPECT_EQ(empty.document.root, nullptr);
}

TEST(StpxDocumentDeathTest, NeverGetsPastAnAmpersandInAName) {
    EXPECT_EXIT(
        {
            alarm(1);
            Tables tables;
            ReadDocument(tables, Document(Part("a&lt;b", "")));
        },
        testing::KilledBySignal(SIGALRM), "<E> test.stpx");
}

TEST(StpxTables, AreNeverQuiteFull) {
    ProductTable table;
    table.Allocate();
    ProductNode product{};
    for (int i = 0; i < 999; ++i) { table.Append(&product); }
    EXPECT_EQ(table.Capacity(), 1000);
    table.Append(&product);
    EXPECT_EQ(table.Capacity(), 2000);
    EXPECT_EQ(table.Count(), 1000);
}

} // namespace
} // namespace tarnwick
