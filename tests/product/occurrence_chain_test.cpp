// From a CONTEXT_DEPENDENT_SHAPE_REPRESENTATION to the two products and the placement of an occurrence, hop
// by hop over the raw text.

#include "product/structure_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// What an occurrence of the chain comes to when its placement leads nowhere.
void ExpectNoPlacement(const Occurrence& occurrence) {
    EXPECT_THAT(occurrence.rotation, ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
    EXPECT_THAT(occurrence.translation, ElementsAre(0, 0, 0));
}

TEST(OccurrenceChain, LeadsToParentChildAndPlacement) {
    StructureRun run;
    EXPECT_EQ(run.ReadTop(Chain().Text()), 0);
    ASSERT_THAT(run.ProductNames(), ElementsAre("top", "leaf"));
    const ProductNode& top = *run.Product(0);
    EXPECT_EQ(top.isRoot, 1);
    EXPECT_EQ(top.definitionId, Chain::kTop);
    EXPECT_EQ(top.formationId, Chain::kTopFormation);
    EXPECT_EQ(top.fileName, nullptr);
    EXPECT_EQ(top.drawList, nullptr);
    EXPECT_EQ(top.hasBox, 0);
    ASSERT_EQ(top.occurrenceCount, 1);
    const ProductNode& leaf = *run.Product(1);
    EXPECT_EQ(leaf.isRoot, 0);
    EXPECT_EQ(leaf.definitionId, Chain::kLeaf);
    EXPECT_EQ(leaf.formationId, Chain::kLeafFormation);
    EXPECT_EQ(leaf.occurrenceCount, 0);
    EXPECT_EQ(leaf.occurrences, nullptr);
    const Occurrence& occurrence = *top.occurrences[0];
    EXPECT_EQ(occurrence.child, &leaf);
    EXPECT_EQ(occurrence.relatedUid, nullptr);
    EXPECT_THAT(occurrence.translation, ElementsAre(1, 2, 3));
    EXPECT_THAT(occurrence.rotation, ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
    EXPECT_EQ(run.tree.root, &top);
    EXPECT_EQ(run.console, "");
}

TEST(OccurrenceChain, WithoutItsContextLineAnUsageIsNoOccurrence) {
    StructureRun run;
    EXPECT_EQ(run.ReadTop(Chain().Without(Chain::kContext)), 0);
    EXPECT_THAT(run.ProductNames(), IsEmpty());
    EXPECT_EQ(run.tree.root, nullptr);
}

TEST(OccurrenceChain, BeginsAtEveryKeywordWithTheComparedBeginning) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kContext, "CONTEXT_DEPENDENT_SHAPE_REPLICA(#16,#15)"));
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", "leaf"));
    StructureRun other;
    other.ReadTop(Chain().With(Chain::kContext, "CONTEXT_DEPENDENT_SHAPE_RE(#16,#15)"));
    EXPECT_THAT(other.ProductNames(), IsEmpty());
}

TEST(OccurrenceChain, IsDroppedInSilenceWhereAProductOrALinkIsMissing) {
    for (const int id :
         {Chain::kTopProduct, Chain::kTopFormation, Chain::kTop, Chain::kLeafProduct, Chain::kLeafFormation,
          Chain::kLeaf, Chain::kUsage, Chain::kShape, Chain::kRelationship}) {
        Chain chain;
        // The flag of an assembly stays, also without the usage.
        chain.lines[40] = "NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',$,$,$)";
        StructureRun run;
        EXPECT_EQ(run.ReadTop(chain.Without(id)), 0) << id;
        EXPECT_THAT(run.ProductNames(), IsEmpty()) << id;
        EXPECT_EQ(run.tree.root, nullptr) << id;
        EXPECT_EQ(run.console, "") << id;
    }
}

TEST(OccurrenceChain, StaysWhereItsTransformationIsMissing) {
    StructureRun run;
    run.ReadTop(Chain().Without(Chain::kTransform));
    ASSERT_THAT(run.ProductNames(), ElementsAre("top", "leaf"));
    ASSERT_EQ(run.Product(0)->occurrenceCount, 1);
    ExpectNoPlacement(*run.Product(0)->occurrences[0]);
    EXPECT_EQ(run.console, "");
}

TEST(OccurrenceChain, TakesTheFirstReferenceOfTheShapeLineWhateverAttributeItStandsIn) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kShape, "PRODUCT_DEFINITION_SHAPE(#14,'',#3)"));
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", "leaf"));
}

TEST(OccurrenceChain, IsConfusedByANumberSignInASkippedString) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kShape, "PRODUCT_DEFINITION_SHAPE('no #99','',#14)"));
    EXPECT_THAT(run.ProductNames(), IsEmpty());
}

TEST(OccurrenceChain, IsConfusedByACommaInASkippedString) {
    // The second comma is the one in the name, so that the reference after it is the parent.
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kUsage, "NEXT_ASSEMBLY_USAGE_OCCURRENCE('u','as in,#6','d',#3,#6,$)"));
    ASSERT_THAT(run.ProductNames(), ElementsAre("leaf", "top"));
    EXPECT_THAT(ChildrenOf(*run.Product(0)), ElementsAre("top"));
    EXPECT_EQ(run.tree.root, run.Product(0));
}

TEST(OccurrenceChain, PassesOverCommasInFrontOfTheParent) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kUsage, "NEXT_ASSEMBLY_USAGE_OCCURRENCE('u','a, b, c','d, e',#3,#6,$)"));
    ASSERT_THAT(run.ProductNames(), ElementsAre("top", "leaf"));
    EXPECT_THAT(ChildrenOf(*run.Product(0)), ElementsAre("leaf"));
}

TEST(OccurrenceChain, FindsTheTransformationBehindTheThirdParenthesis) {
    StructureRun run;
    // Another beginning with as many parentheses does as well.
    run.ReadTop(Chain().With(Chain::kRelationship, "(A()B(#13))"));
    ASSERT_EQ(run.tree.products.count, 2);
    EXPECT_THAT(run.Product(0)->occurrences[0]->translation, ElementsAre(1, 2, 3));
}

TEST(OccurrenceChain, ReliesOnTheOrderOfThePartialEntities) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kRelationship, "(REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(#13)"
                                                   "REPRESENTATION_RELATIONSHIP('','',#91,#92)"
                                                   "SHAPE_REPRESENTATION_RELATIONSHIP())"));
    ASSERT_EQ(run.tree.products.count, 2);
    ExpectNoPlacement(*run.Product(0)->occurrences[0]);
}

TEST(OccurrenceChain, IsConfusedByAParenthesisInTheNameOfTheRelationship) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kRelationship,
                             "(REPRESENTATION_RELATIONSHIP('(','',#91,#92)REPRESENTATION_RELATIONSHIP_WITH_"
                             "TRANSFORMATION(#13)SHAPE_REPRESENTATION_RELATIONSHIP())"));
    ASSERT_EQ(run.tree.products.count, 2);
    ExpectNoPlacement(*run.Product(0)->occurrences[0]);
}

TEST(OccurrenceChain, LeadsOverLineFeedsWithinALine) {
    StructureRun run;
    Chain chain;
    chain.lines[Chain::kContext] = "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION\n(#16,\n  #15)";
    chain.lines[Chain::kUsage] = "NEXT_ASSEMBLY_USAGE_OCCURRENCE('u',\r\n'n','d',\r\n#3,\r\n#6,$)";
    chain.lines[Chain::kTransform] = "ITEM_DEFINED_TRANSFORMATION('','',\n#10,\n#12)";
    run.ReadTop(chain.Text());
    ASSERT_THAT(run.ProductNames(), ElementsAre("top", "leaf"));
    EXPECT_THAT(run.Product(0)->occurrences[0]->translation, ElementsAre(1, 2, 3));
}

TEST(OccurrenceChain, ReadsOnInTheLinesBehindOneThatLacksTheAwaitedCharacter) {
    // The "#" that is found is that of the next line, which is a usage.
    Chain chain;
    chain.lines.erase(Chain::kUsage);
    chain.lines[Chain::kRelationship + 10] = chain.lines[Chain::kRelationship];
    chain.lines.erase(Chain::kRelationship);
    chain.lines[Chain::kShape] = "PRODUCT_DEFINITION_SHAPE('','d',$)";
    chain.lines[Chain::kShape + 1] = "NEXT_ASSEMBLY_USAGE_OCCURRENCE('u','n','d',#3,#6,$)";
    chain.lines[Chain::kContext] = "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(#26,#15)";
    StructureRun run;
    run.ReadTop(chain.Text());
    ASSERT_THAT(run.ProductNames(), ElementsAre("top", "leaf"));
    EXPECT_THAT(ChildrenOf(*run.Product(0)), ElementsAre("leaf"));
}

TEST(OccurrenceChain, GivesTwoOccurrencesAndOneProductForAChildUsedTwice) {
    AssemblyText text;
    const int top = text.Product("top");
    const int leaf = text.Product("leaf");
    text.Use(top, leaf, At(1, 0, 0));
    text.Use(top, leaf, At(2, 0, 0));
    StructureRun run;
    run.ReadTop(text.Text());
    ASSERT_EQ(run.tree.products.count, 2);
    const ProductNode& product = *run.Find("top");
    ASSERT_EQ(product.occurrenceCount, 2);
    EXPECT_EQ(product.occurrences[0]->child, product.occurrences[1]->child);
    EXPECT_NE(product.occurrences[0]->translation[0], product.occurrences[1]->translation[0]);
}

TEST(OccurrenceChain, IsReadInTheOrderOfTheTable) {
    AssemblyText text;
    const int top = text.Product("top");
    std::vector<int> contexts;
    std::map<int, std::string> nameOf;
    for (int i = 0; i < 37; ++i) {
        const std::string name = "part " + std::to_string(i);
        const int context = text.Use(top, text.Product(name));
        contexts.push_back(context);
        nameOf[context] = name;
    }
    std::vector<std::string> expected;
    for (const int context : TableOrder(contexts, static_cast<int>(text.DataLines().size()))) {
        expected.push_back(nameOf[context]);
    }
    StructureRun run;
    run.ReadTop(text.Text());
    EXPECT_THAT(ChildrenOf(*run.Find("top")), ElementsAreArray(expected));
    std::vector<std::string> made{"top"};
    made.insert(made.end(), expected.begin(), expected.end());
    EXPECT_THAT(run.ProductNames(), ElementsAreArray(made));
    // With this many lines that isn't the order of the file.
    EXPECT_NE(expected.front(), "part 0");
}

TEST(OccurrenceChain, GrowsAProductsOccurrencesFromTenToTwentyAtTheTenth) {
    for (const auto& [uses, capacity] : std::map<int, int>{{1, 10}, {9, 10}, {10, 20}, {19, 20}, {20, 40}}) {
        AssemblyText text;
        const int top = text.Product("top");
        const int leaf = text.Product("leaf");
        for (int i = 0; i < uses; ++i) { text.Use(top, leaf); }
        StructureRun run;
        run.ReadTop(text.Text());
        EXPECT_EQ(run.Find("top")->occurrenceCount, uses);
        EXPECT_EQ(run.Find("top")->occurrenceCapacity, capacity) << uses;
    }
}

TEST(OccurrenceChain, WithProductsThatAreEachOthersPartsLeavesNoRoot) {
    AssemblyText text;
    const int a = text.Product("a");
    const int b = text.Product("b");
    text.Use(a, b);
    text.Use(b, a);
    StructureRun run;
    run.ReadTop(text.Text());
    EXPECT_EQ(run.tree.products.count, 2);
    EXPECT_EQ(run.tree.root, nullptr);
}

TEST(OccurrenceChain, KeepsAProductThatIsItsOwnPart) {
    AssemblyText text;
    const int a = text.Product("a");
    text.Use(a, a);
    StructureRun run;
    run.ReadTop(text.Text());
    ASSERT_EQ(run.tree.products.count, 1);
    EXPECT_EQ(run.Product(0)->isRoot, 0);
    EXPECT_THAT(ChildrenOf(*run.Product(0)), ElementsAre("a"));
    EXPECT_EQ(run.tree.root, nullptr);
}

TEST(OccurrenceChain, ThatRunsPastTheEndOfTheTextGivesTheFileUp) {
    // Nothing after the line has the awaited "#", in a text that ends with it.
    const std::vector<std::pair<int, std::string>> endings{
        {Chain::kContext, "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(#16,$)"},
        {Chain::kContext, "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION $"},
        {Chain::kContext + 1, "PRODUCT_DEFINITION_SHAPE('','d',$)"},
        {Chain::kContext + 1, "NEXT_ASSEMBLY_USAGE_OCCURRENCE('u','n','d',#3,$)"},
        {Chain::kContext + 1, "PRODUCT_DEFINITION('','',$)"},
        {Chain::kContext + 1, "PRODUCT(top)"},
        {Chain::kContext + 1, "(A()B)"},
        {Chain::kContext + 1, "ITEM_DEFINED_TRANSFORMATION('','',#10,$)"},
        {Chain::kContext + 1, "AXIS2_PLACEMENT_3D('',#11,#8,$)"},
        {Chain::kContext + 1, "CARTESIAN_POINT('',(1.))"},
    };
    const int moved[] = {0,
                         0,
                         Chain::kShape,
                         Chain::kUsage,
                         Chain::kTop,
                         Chain::kTopProduct,
                         Chain::kRelationship,
                         Chain::kTransform,
                         Chain::kTarget,
                         Chain::kPlace};
    for (std::size_t i = 0; i < endings.size(); ++i) {
        const auto& [id, entity] = endings[i];
        Chain chain;
        // The line that takes the place of another one is the last of the file, and all refer to it there.
        if (moved[i] != 0) {
            const std::string from = "#" + std::to_string(moved[i]);
            const std::string to = "#" + std::to_string(id);
            chain.lines.erase(moved[i]);
            for (auto& [other, line] : chain.lines) {
                for (std::size_t at = line.find(from); at != std::string::npos;
                     at = line.find(from, at + 1)) {
                    const std::size_t end = at + from.size();
                    if (end == line.size() || line[end] == ',' || line[end] == ')') {
                        line.replace(at, from.size(), to);
                    }
                }
            }
        }
        chain.lines[id] = entity;
        StructureRun run;
        EXPECT_EQ(run.ReadTop(chain.Text()), 1) << entity;
        EXPECT_THAT(run.ProductNames(), IsEmpty()) << entity;
        EXPECT_EQ(run.tree.root, nullptr) << entity;
        EXPECT_EQ(run.tree.queue.Count().all, 0) << entity;
        EXPECT_THAT(run.console, StartsWith("<E> ")) << entity;
        EXPECT_THAT(run.console, EndsWith("structure.stp: its structure is given up, #" + std::to_string(id) +
                                          " runs past the end of the file\n"))
            << entity;
    }
}

TEST(OccurrenceChain, TellsOnceOfALineThatRunsPastTheEndForParentAndChild) {
    Chain chain;
    chain.lines[Chain::kLeaf] = "PRODUCT_DEFINITION('','',#2,#90)";
    const std::string text = chain.Without(Chain::kTopFormation);
    StructureRun run;
    EXPECT_NE(run.ReadTop(text.substr(0, text.find("ENDSEC;\nEND")) + "#2=PRODUCT_DEFINITION_FORMATION("), 0);
    EXPECT_THAT(run.console, EndsWith("structure.stp: its structure is given up, #2 runs past the end of the "
                                      "file\n"));
    EXPECT_EQ(run.console.find('\n'), run.console.size() - 1);
}

} // namespace
} // namespace tarnwick::test
