// How an APPLIED_DOCUMENT_REFERENCE gives a product its file.

#include "product/structure_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;

// The file that a product "part" gets from a document with this name; "(none)" without one.
std::string FileFrom(std::string_view documentName) {
    AssemblyText text;
    text.MarkAsAssembly();
    text.File(text.Product("part"), documentName);
    StructureRun run;
    run.ReadTop(text.Text());
    const ProductNode* const part = run.Find("part");
    EXPECT_NE(part, nullptr);
    EXPECT_EQ(run.console, "");
    EXPECT_EQ(run.tree.queue.Count().all, part->fileName != nullptr ? 1 : 0);
    return part->fileName != nullptr ? part->fileName : "(none)";
}

// A file with the part's product (1 to 3) and these lines.
std::string WithPart(const Lines& lines) {
    Lines data{"#1=PRODUCT('part','',$,(#90));", "#2=PRODUCT_DEFINITION_FORMATION('','',#1);",
               "#3=PRODUCT_DEFINITION('','',#2,#90);", "#4=NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',$,$,$);"};
    data.insert(data.end(), lines.begin(), lines.end());
    return P21Text(data);
}

TEST(DocumentReference, GivesAProductTheFileOfItsDocument) {
    AssemblyText text;
    text.MarkAsAssembly();
    const int part = text.Product("part");
    text.File(part, "part.stp");
    StructureRun run;
    run.ReadTop(text.Text());
    ASSERT_EQ(run.tree.products.count, 1);
    const ProductNode& product = *run.Product(0);
    EXPECT_STREQ(product.fileName, "part.stp");
    EXPECT_STREQ(product.name, "part");
    EXPECT_EQ(product.definitionId, part);
    EXPECT_EQ(product.formationId, part - 1);
    EXPECT_EQ(product.isRoot, 1);
    EXPECT_THAT(run.QueueNames(), ElementsAre("part"));
    EXPECT_EQ(run.tree.root, &product);
}

TEST(DocumentReference, OpensAnStpFileForACgrFile) {
    EXPECT_EQ(FileFrom("axle.cgr"), "axle.stp");
    EXPECT_EQ(FileFrom(".cgr"), ".stp");
    EXPECT_EQ(FileFrom("axle.cgr.cgr"), "axle.cgr.stp");
    EXPECT_EQ(FileFrom("axle.CGR"), "axle.CGR");
    EXPECT_EQ(FileFrom("axle.cgr "), "axle.cgr ");
    EXPECT_EQ(FileFrom("axlecgr"), "axlecgr");
    EXPECT_EQ(FileFrom("cgr"), "cgr");
    EXPECT_EQ(FileFrom("axle.cgr/part.stp"), "axle.cgr/part.stp");
}

TEST(DocumentReference, RefusesANameWithThreePoints) {
    EXPECT_EQ(FileFrom("long...name.stp"), "(none)");
    EXPECT_EQ(FileFrom("..."), "(none)");
    EXPECT_EQ(FileFrom("a....stp"), "(none)");
    EXPECT_EQ(FileFrom("name...cgr"), "(none)");
    EXPECT_EQ(FileFrom("../a..stp"), "../a..stp");
}

TEST(DocumentReference, KeepsTheNameAsItStands) {
    EXPECT_EQ(FileFrom("sub\\folder/part one.stp"), "sub\\folder/part one.stp");
    EXPECT_EQ(FileFrom(""), "");
    EXPECT_EQ(FileFrom("PART.STP"), "PART.STP");
    EXPECT_EQ(FileFrom("caf\xE9 %n.stp"), "caf\xE9 %n.stp");
}

TEST(DocumentReference, CutsANameAt299Characters) {
    EXPECT_EQ(FileFrom(std::string(298, 'f')), std::string(298, 'f'));
    EXPECT_EQ(FileFrom(std::string(299, 'f')), std::string(299, 'f'));
    EXPECT_EQ(FileFrom(std::string(300, 'f')), std::string(299, 'f'));
    EXPECT_EQ(FileFrom(std::string(5000, 'f')), std::string(299, 'f'));
    // What is left is what is looked at.
    EXPECT_EQ(FileFrom(std::string(295, 'f') + ".cgr..."), std::string(295, 'f') + ".stp");
    EXPECT_EQ(FileFrom(std::string(297, 'f') + "...stp"), std::string(297, 'f') + "..");
    EXPECT_EQ(FileFrom(std::string(296, 'f') + "...stp"), "(none)");
}

TEST(DocumentReference, EndsTheNameAtANul) {
    // What is left is what is looked at, and the scan has gone no further.
    for (const auto& [name, fileName] : {std::pair{std::string("axle.cgr\0...", 12), "axle.stp"},
                                         std::pair{std::string("axle\0.cgr", 9), "axle"}}) {
        StructureRun run;
        run.ReadTop(WithPart(
            {"#6=APPLIED_DOCUMENT_REFERENCE(#5,'',(#3));", "#5=DOCUMENT_FILE('" + name + "','',$);"}));
        EXPECT_STREQ(run.Product(0)->fileName, fileName);
    }
}

TEST(DocumentReference, TakesTheFirstStringOfTheDocument) {
    StructureRun run;
    run.ReadTop(WithPart(
        {"#5=DOCUMENT_FILE($,#90,'third.stp','fourth.stp');", "#6=APPLIED_DOCUMENT_REFERENCE(#5,'',(#3));"}));
    EXPECT_STREQ(run.Product(0)->fileName, "third.stp");
}

TEST(DocumentReference, EndsTheNameAtADoubledQuote) {
    StructureRun run;
    run.ReadTop(
        WithPart({"#5=DOCUMENT_FILE('it''s.stp','',$);", "#6=APPLIED_DOCUMENT_REFERENCE(#5,'',(#3));"}));
    EXPECT_STREQ(run.Product(0)->fileName, "it");
}

TEST(DocumentReference, UsesOnlyTheFirstItemOfItsList) {
    AssemblyText text;
    text.MarkAsAssembly();
    const int first = text.Product("first");
    const int second = text.Product("second");
    const int document = text.Line("DOCUMENT_FILE('x.stp','','',$,'',$)");
    text.Line("APPLIED_DOCUMENT_REFERENCE(#" + std::to_string(document) + ",'',(#" + std::to_string(first) +
              ",#" + std::to_string(second) + "))");
    StructureRun run;
    run.ReadTop(text.Text());
    EXPECT_THAT(run.ProductNames(), ElementsAre("first"));
}

TEST(DocumentReference, PassesOverOneCommaInItsSource) {
    // The second comma that it steps to is that in the source, and the list is still the next parenthesis.
    StructureRun run;
    run.ReadTop(
        WithPart({"#5=DOCUMENT_FILE('x.stp','');", "#6=APPLIED_DOCUMENT_REFERENCE(#5,'a, b',(#3));"}));
    EXPECT_THAT(run.ProductNames(), ElementsAre("part"));
}

TEST(DocumentReference, IsConfusedByAListInItsSource) {
    StructureRun run;
    run.ReadTop(
        WithPart({"#5=DOCUMENT_FILE('x.stp','');", "#6=APPLIED_DOCUMENT_REFERENCE(#5,'a,(#99)',(#3));"}));
    EXPECT_THAT(run.ProductNames(), IsEmpty());
    EXPECT_EQ(run.console, "");
}

TEST(DocumentReference, BeginsAtEveryKeywordWithTheComparedBeginning) {
    StructureRun run;
    run.ReadTop(WithPart({"#5=DOCUMENT_FILE('x.stp','');", "#6=APPLIED_DOCUMENT_REF(#5,'',(#3));"}));
    EXPECT_THAT(run.QueueNames(), ElementsAre("part"));
}

TEST(DocumentReference, ToAMissingDocumentLeavesTheProductWithoutAFile) {
    StructureRun run;
    EXPECT_EQ(run.ReadTop(WithPart({"#6=APPLIED_DOCUMENT_REFERENCE(#5,'',(#3));"})), 0);
    ASSERT_THAT(run.ProductNames(), ElementsAre("part"));
    EXPECT_EQ(run.Product(0)->fileName, nullptr);
    EXPECT_THAT(run.QueueNames(), IsEmpty());
    EXPECT_EQ(run.console, "");
}

TEST(DocumentReference, ToAMissingDefinitionMakesNothing) {
    StructureRun run;
    EXPECT_EQ(run.ReadTop(
                  WithPart({"#5=DOCUMENT_FILE('x.stp','');", "#6=APPLIED_DOCUMENT_REFERENCE(#5,'',(#99));"})),
              0);
    EXPECT_THAT(run.ProductNames(), IsEmpty());
    EXPECT_EQ(run.console, "");
}

TEST(DocumentReference, ReadsWhateverStandsWhereADefinitionIsExpected) {
    // The item is a formation, whose third attribute is taken for the formation: that of the PRODUCT, whose
    // own third attribute leads nowhere.
    StructureRun run;
    run.ReadTop(WithPart({"#5=DOCUMENT_FILE('x.stp','');", "#6=APPLIED_DOCUMENT_REFERENCE(#5,'',(#2));"}));
    EXPECT_THAT(run.ProductNames(), IsEmpty());
}

TEST(DocumentReference, ThatIsReadLaterReplacesTheFileOfOneBefore) {
    AssemblyText text;
    text.MarkAsAssembly();
    const int part = text.Product("part");
    std::map<int, std::string> fileOf;
    std::vector<int> references;
    for (const char* const name : {"a.stp", "b.stp", "c.stp"}) {
        const int reference = text.File(part, name);
        references.push_back(reference);
        fileOf[reference] = name;
    }
    const int last = TableOrder(references, static_cast<int>(text.DataLines().size())).back();
    StructureRun run;
    run.ReadTop(text.Text());
    ASSERT_EQ(run.tree.products.count, 1);
    EXPECT_EQ(run.Product(0)->fileName, fileOf[last]);
    EXPECT_EQ(run.tree.queue.Count().all, 1);
}

TEST(DocumentReference, ThatIsRefusedLeavesTheFileOfOneBefore) {
    // In a table of 8 buckets #8 comes before #9.
    for (const bool refusedFirst : {false, true}) {
        StructureRun run;
        run.ReadTop(WithPart(
            {refusedFirst ? "#5=DOCUMENT_FILE('a...stp','');" : "#5=DOCUMENT_FILE('a.stp','');",
             refusedFirst ? "#6=DOCUMENT_FILE('a.stp','');" : "#6=DOCUMENT_FILE('a...stp','');",
             "#8=APPLIED_DOCUMENT_REFERENCE(#5,'',(#3));", "#9=APPLIED_DOCUMENT_REFERENCE(#6,'',(#3));"}));
        EXPECT_STREQ(run.Product(0)->fileName, "a.stp");
        EXPECT_THAT(run.QueueNames(), ElementsAre("part"));
    }
}

TEST(DocumentReference, GivesAFileToAProductThatAnOccurrenceMade) {
    AssemblyText text;
    const int top = text.Product("top");
    const int part = text.Product("part");
    text.Use(top, part);
    text.File(part, "part.stp");
    StructureRun run;
    run.ReadTop(text.Text());
    EXPECT_EQ(run.tree.products.count, 2);
    EXPECT_STREQ(run.Find("part")->fileName, "part.stp");
    EXPECT_EQ(run.Find("part")->isRoot, 0);
    EXPECT_EQ(run.Find("top")->fileName, nullptr);
    EXPECT_THAT(run.QueueNames(), ElementsAre("part"));
}

TEST(DocumentReference, LeavesAProductThatAnotherFileHasQueuedItsFile) {
    AssemblyText top;
    const int root = top.Product("top");
    const int part = top.Product("part");
    top.Use(root, part);
    top.File(part, "upper.stp");
    StructureRun run;
    run.ReadTop(top.Text());
    AssemblyText lower;
    lower.MarkAsAssembly();
    lower.File(lower.Product("part"), "lower.stp");
    run.ReadSub(lower.Text());
    EXPECT_EQ(run.tree.products.count, 2);
    EXPECT_THAT(run.QueueNames(), ElementsAre("part"));
    EXPECT_STREQ(run.Find("part")->fileName, "upper.stp");
}

TEST(DocumentReference, QueuesTwoProductsOfOneNameThatBothHaveAFile) {
    AssemblyText text;
    text.MarkAsAssembly();
    text.File(text.Product("twin"), "same.stp");
    text.File(text.Product("twin"), "same.stp");
    StructureRun run;
    run.ReadTop(text.Text());
    EXPECT_THAT(run.QueueNames(), ElementsAre("twin", "twin"));
    EXPECT_NE(run.tree.queue.At(0), run.tree.queue.At(1));
}

TEST(DocumentReference, QueuesTheProductsOfAFileAsTheyWereMade) {
    AssemblyText text;
    const int top = text.Product("top");
    for (int i = 0; i < 30; ++i) {
        const int part = text.Product("part " + std::to_string(i));
        if (i % 2 == 0) { text.File(part, "part.stp"); }
        text.Use(top, part);
    }
    StructureRun run;
    run.ReadTop(text.Text());
    std::vector<std::string> withFile;
    for (std::int32_t i = 0; i < run.tree.products.count; ++i) {
        if (run.Product(i)->fileName != nullptr) { withFile.emplace_back(run.Product(i)->name); }
    }
    EXPECT_EQ(withFile.size(), 15u);
    EXPECT_EQ(run.QueueNames(), withFile);
}

TEST(DocumentReference, ThatRunsPastTheEndOfTheTextGivesTheFileUp) {
    const std::vector<std::pair<Lines, int>> endings{
        {{"#6=APPLIED_DOCUMENT_REFERENCE(#5,'',$);"}, 6},
        {{"#6=APPLIED_DOCUMENT_REFERENCE($);"}, 6},
        {{"#5=APPLIED_DOCUMENT_REFERENCE(#6,'',(#3));", "#6=DOCUMENT_FILE($);"}, 6},
        {{"#5=APPLIED_DOCUMENT_REFERENCE(#6,'',(#3));", "#6=DOCUMENT_FILE('x.stp);"}, 6},
    };
    for (const auto& [lines, id] : endings) {
        StructureRun run;
        EXPECT_EQ(run.ReadTop(WithPart(lines)), 1) << lines.back();
        EXPECT_THAT(run.ProductNames(), IsEmpty());
        EXPECT_THAT(run.QueueNames(), IsEmpty());
        EXPECT_THAT(run.console, EndsWith("its structure is given up, #" + std::to_string(id) +
                                          " runs past the end of the file\n"));
    }
}

TEST(DocumentReference, WithAnUnendedNameOf299CharactersIsCutBeforeTheEndOfTheText) {
    StructureRun run;
    run.ReadTop(WithPart(
        {"#5=APPLIED_DOCUMENT_REFERENCE(#6,'',(#3));", "#6=DOCUMENT_FILE('" + std::string(400, 'f') + ");"}));
    ASSERT_THAT(run.ProductNames(), ElementsAre("part"));
    EXPECT_EQ(run.Product(0)->fileName, std::string(299, 'f'));
}

} // namespace
} // namespace tarnwick::test
