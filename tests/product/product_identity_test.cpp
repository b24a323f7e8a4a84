// Which product a definition stands for: one of the same file by its number, one of another file by its name.

#include "platform/fail_fast.h"
#include "product/structure_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A top file that queues these names, all under one root.
std::string TopOf(const std::vector<std::string>& names) {
    AssemblyText text;
    const int top = text.Product("top");
    for (const std::string& name : names) {
        const int part = text.Product(name);
        text.Use(top, part);
        text.File(part, name + ".stp");
    }
    return text.Text();
}

TEST(ProductIdentity, IsTheIdOfTheProductAndNotItsName) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kLeafProduct, "PRODUCT('the id','the name',$,(#90))"));
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", "the id"));
}

TEST(ProductIdentity, IsTheFirstStringOfTheProductWhateverStandsBefore) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kLeafProduct, "PRODUCT($,#90,'third',$)"));
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", "third"));
}

TEST(ProductIdentity, EndsAtADoubledQuote) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kLeafProduct, "PRODUCT('it''s','',$,(#90))"));
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", "it"));
}

TEST(ProductIdentity, IsTakenAsTheBytesStand) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kLeafProduct, "PRODUCT(' \\X2\\00E9\\X0\\ \xE9 %s#(,','',$,(#90))"));
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", " \\X2\\00E9\\X0\\ \xE9 %s#(,"));
}

TEST(ProductIdentity, IsTheDefinitionWithinOneFile) {
    // Two definitions of one PRODUCT are two products with one name.
    AssemblyText text;
    const int top = text.Product("top");
    const int first = text.Product("part");
    const int second = text.Line("PRODUCT_DEFINITION('','',#" + std::to_string(first - 1) + ",#999999)");
    text.Use(top, first);
    text.Use(top, second);
    text.Use(top, first);
    StructureRun run;
    run.ReadTop(text.Text());
    ASSERT_EQ(run.tree.products.count, 3);
    EXPECT_EQ(run.Find("top")->occurrenceCount, 3);
    std::map<const ProductNode*, int> uses;
    for (int i = 0; i < 3; ++i) { ++uses[run.Find("top")->occurrences[i]->child]; }
    EXPECT_EQ(uses.size(), 2u);
    for (std::int32_t i = 0; i < 3; ++i) {
        const ProductNode& product = *run.Product(i);
        if (product.definitionId == first) { EXPECT_EQ(uses[&product], 2); }
        if (product.definitionId == second) { EXPECT_EQ(uses[&product], 1); }
    }
}

TEST(ProductIdentity, IsSharedWithAProductThatAnotherFileHasQueued) {
    StructureRun run;
    run.ReadTop(TopOf({"sub"}));
    ASSERT_THAT(run.QueueNames(), ElementsAre("sub"));
    ProductNode* const sub = run.Find("sub");
    const std::int32_t definition = sub->definitionId;
    AssemblyText lower(500);
    const int root = lower.Product("sub");
    const int leaf = lower.Product("leaf");
    lower.Use(root, leaf, At(0, 0, 5));
    run.ReadSub(lower.Text());
    // The node of the upper file got the occurrence; only the leaf is new.
    EXPECT_EQ(run.tree.products.count, 3);
    EXPECT_EQ(run.Find("sub"), sub);
    EXPECT_THAT(ChildrenOf(*sub), ElementsAre("leaf"));
    EXPECT_EQ(sub->occurrences[0]->child, run.Product(2));
    EXPECT_EQ(sub->definitionId, definition);
    EXPECT_EQ(sub->isRoot, 0);
    EXPECT_EQ(run.Product(2)->definitionId, leaf);
}

TEST(ProductIdentity, IsNotSharedWithAProductThatNobodyHasQueued) {
    StructureRun run;
    run.ReadTop(Chain().Text()); // a "leaf" without a file
    AssemblyText lower;
    lower.Use(lower.Product("other"), lower.Product("leaf"));
    run.ReadSub(lower.Text());
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", "leaf", "other", "leaf"));
}

TEST(ProductIdentity, IsComparedWholeAndInItsCase) {
    StructureRun run;
    run.ReadTop(TopOf({"Bolt", "bolt M6", "bol"}));
    AssemblyText lower;
    lower.Use(lower.Product("root"), lower.Product("bolt"));
    run.ReadSub(lower.Text());
    ASSERT_EQ(run.tree.products.count, 6);
    EXPECT_STREQ(run.Product(5)->name, "bolt");
}

TEST(ProductIdentity, IsThatOfTheFirstQueuedProductOfTheName) {
    AssemblyText top;
    const int root = top.Product("top");
    const int a = top.Product("twin");
    const int b = top.Product("twin");
    top.Use(root, a);
    top.Use(root, b);
    top.File(a, "a.stp");
    top.File(b, "b.stp");
    StructureRun run;
    run.ReadTop(top.Text());
    ASSERT_THAT(run.QueueNames(), ElementsAre("twin", "twin"));
    ASSERT_NE(run.tree.queue.At(0), run.tree.queue.At(1));
    AssemblyText lower;
    lower.Use(lower.Product("twin"), lower.Product("leaf"));
    run.ReadSub(lower.Text());
    EXPECT_EQ(run.tree.queue.At(0)->occurrenceCount, 1);
    EXPECT_EQ(run.tree.queue.At(1)->occurrenceCount, 0);
}

TEST(ProductIdentity, OfAnEmptyNameIsThatOfTheFirstQueuedEmptyName) {
    AssemblyText top;
    const int root = top.Product("top");
    const int part = top.Product("");
    top.Use(root, part);
    top.File(part, "empty.stp");
    StructureRun run;
    run.ReadTop(top.Text());
    AssemblyText lower(200);
    const int lowerRoot = lower.Product("");
    lower.Use(lowerRoot, lower.Product(""), At(1, 0, 0));
    lower.Use(lowerRoot, lower.Product("named"), At(2, 0, 0));
    run.ReadSub(lower.Text());
    // Both empty names of the lower file are the queued product, which is thereby part of itself.
    ASSERT_EQ(run.tree.products.count, 3);
    ProductNode* const empty = run.tree.queue.At(0);
    EXPECT_STREQ(empty->name, "");
    EXPECT_EQ(empty->occurrenceCount, 2);
    EXPECT_EQ(std::count_if(empty->occurrences, empty->occurrences + 2,
                            [empty](const Occurrence* o) { return o->child == empty; }),
              1);
}

TEST(ProductIdentity, EndsAtANulInTheName) {
    // The scan ends at a NUL, so that the line of such a name is the last.
    StructureRun run;
    run.ReadTop(TopOf({"sub"}));
    Chain lower;
    lower.lines.erase(Chain::kTopProduct);
    lower.lines[Chain::kTopFormation] = "PRODUCT_DEFINITION_FORMATION('','',#50)";
    lower.lines[50] = std::string("PRODUCT('sub\0hidden','')", 24);
    run.ReadSub(lower.Text());
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", "sub", "leaf"));
    EXPECT_THAT(ChildrenOf(*run.Find("sub")), ElementsAre("leaf"));
}

TEST(ProductIdentity, LooksAtTheQueueAsItStoodWhenTheFileWasBegun) {
    // Two products of a name in one file are two, although the first of them will be queued.
    AssemblyText lower;
    const int root = lower.Product("root");
    const int a = lower.Product("same");
    const int b = lower.Product("same");
    lower.File(a, "a.stp");
    lower.File(b, "b.stp");
    lower.Use(root, a);
    lower.Use(root, b);
    StructureRun run;
    run.ReadTop(TopOf({"x"}));
    run.ReadSub(lower.Text());
    EXPECT_THAT(run.QueueNames(), ElementsAre("x", "same", "same"));
    EXPECT_NE(run.tree.queue.At(1), run.tree.queue.At(2));
}

TEST(ProductIdentity, OfANameOf299CharactersIsKeptWhole) {
    const std::string longest(299, 'n');
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kLeafProduct, "PRODUCT('" + longest + "','',$,(#90))"));
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", longest));
}

TEST(ProductIdentityDeathTest, OfANameOf300CharactersEndsTheProcess) {
    const std::string text =
        Chain().With(Chain::kLeafProduct, "PRODUCT('" + std::string(300, 'n') + "','',$,(#90))");
    StructureRun run; // made here: the process that ends leaves its folder after
    EXPECT_EXIT(run.ReadTop(text), ::testing::ExitedWithCode(kFailFastStatus), "");
}

TEST(ProductIdentityDeathTest, OfAChildEndsTheProcessAlsoWhereTheParentIsMissing) {
    Chain chain;
    chain.lines[Chain::kUsage] = "NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',#77,#6,$)";
    const std::string text =
        chain.With(Chain::kLeafProduct, "PRODUCT('" + std::string(300, 'n') + "','',$,(#90))");
    StructureRun run; // made here: the process that ends leaves its folder after
    EXPECT_EXIT(run.ReadTop(text), ::testing::ExitedWithCode(kFailFastStatus), "");
}

TEST(ProductIdentity, OfALongNameWithoutAnEndGivesTheFileUp) {
    // It has no length that could be too long: the text ends before the name does.
    Chain chain;
    chain.lines.erase(Chain::kLeafProduct);
    chain.lines[Chain::kLeafFormation] = "PRODUCT_DEFINITION_FORMATION('','',#50)";
    chain.lines[50] = "PRODUCT('" + std::string(400, 'n') + ")";
    StructureRun run;
    run.ReadTop(chain.Text());
    EXPECT_THAT(run.ProductNames(), ElementsAre());
}

TEST(ProductIdentityDeathTest, AReferenceOf15DigitsEndsTheProcess) {
    const std::string text =
        Chain().With(Chain::kUsage, "NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',#3,#000000000000006,$)");
    StructureRun run; // made here: the process that ends leaves its folder after
    EXPECT_EXIT(run.ReadTop(text), ::testing::ExitedWithCode(kFailFastStatus), "");
}

TEST(ProductIdentity, AReferenceOf14DigitsIsItsValue) {
    StructureRun run;
    run.ReadTop(Chain().With(Chain::kUsage, "NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',#3,#00000000000006,$)"));
    EXPECT_THAT(run.ProductNames(), ElementsAre("top", "leaf"));
}

TEST(RootRule, TakesTheLastCandidateOfTheTopFile) {
    AssemblyText text;
    std::vector<int> contexts;
    std::map<int, std::string> rootOf;
    for (const char* const name : {"first", "second", "third"}) {
        const int root = text.Product(name);
        const int context = text.Use(root, text.Product(std::string(name) + " part"));
        contexts.push_back(context);
        rootOf[context] = name;
    }
    StructureRun run;
    run.ReadTop(text.Text());
    const int last = TableOrder(contexts, static_cast<int>(text.DataLines().size())).back();
    ASSERT_NE(run.tree.root, nullptr);
    EXPECT_EQ(run.tree.root->name, rootOf[last]);
    EXPECT_EQ(run.tree.root->isRoot, 1);
}

TEST(RootRule, CountsAProductThatOnlyADocumentNames) {
    // Without occurrences every product of a reference is a candidate, and the last of them wins.
    AssemblyText text;
    text.MarkAsAssembly();
    std::vector<int> references;
    std::map<int, std::string> nameOf;
    for (const char* const name : {"a", "b", "c", "d"}) {
        const int reference = text.File(text.Product(name), std::string(name) + ".stp");
        references.push_back(reference);
        nameOf[reference] = name;
    }
    const std::vector<int> order = TableOrder(references, static_cast<int>(text.DataLines().size()));
    StructureRun run;
    run.ReadTop(text.Text());
    ASSERT_EQ(run.tree.products.count, 4);
    EXPECT_EQ(run.tree.root->name, nameOf[order.back()]);
    EXPECT_EQ(run.QueueNames()[0], nameOf[order.front()]);
}

TEST(RootRule, IsNotTouchedByASubAssembly) {
    StructureRun run;
    run.ReadTop(TopOf({"sub"}));
    ProductNode* const root = run.tree.root;
    ASSERT_STREQ(root->name, "top");
    AssemblyText lower;
    lower.Use(lower.Product("lone root"), lower.Product("leaf"));
    run.ReadSub(lower.Text());
    EXPECT_EQ(run.tree.root, root);
    EXPECT_EQ(run.Find("lone root")->isRoot, 1);
    // Its products are in the session all the same.
    EXPECT_EQ(run.tree.products.count, 4);
}

TEST(RootRule, GivesNoRootWhereTheTopFileHasNone) {
    StructureRun run;
    run.ReadTop(Chain().Without(Chain::kContext));
    AssemblyText lower;
    lower.Use(lower.Product("a"), lower.Product("b"));
    run.ReadSub(lower.Text());
    EXPECT_EQ(run.tree.root, nullptr);
}

TEST(SessionProducts, GrowToTwiceTheirRoomOrByAFileThatNeedsMore) {
    const auto lists = [](int count) {
        AssemblyText text;
        text.MarkAsAssembly();
        for (int i = 0; i < count; ++i) {
            const std::string name = "p" + std::to_string(count) + "." + std::to_string(i);
            text.File(text.Product(name), "...");
        }
        return text.Text();
    };
    StructureRun run;
    run.ReadTop(lists(1000));
    EXPECT_EQ(run.tree.products.capacity, 1000);
    EXPECT_EQ(run.tree.products.count, 1000);
    run.ReadSub(lists(1));
    EXPECT_EQ(run.tree.products.capacity, 2000);
    run.ReadSub(lists(999));
    EXPECT_EQ(run.tree.products.capacity, 2000);
    EXPECT_EQ(run.tree.products.count, 2000);
    run.ReadSub(lists(2001));
    EXPECT_EQ(run.tree.products.capacity, 4001);
    EXPECT_EQ(run.tree.products.count, 4001);
    StructureRun other;
    other.ReadTop(lists(1001));
    EXPECT_EQ(other.tree.products.capacity, 2001);
    StructureRun edge;
    edge.ReadTop(lists(1));
    edge.ReadSub(lists(1000)); // does not exceed the old room
    EXPECT_EQ(edge.tree.products.capacity, 2000);
    EXPECT_THAT(edge.QueueNames(), IsEmpty());
}

TEST(PartQueue, DoublesWhenItIsFullAndKeepsItsEntries) {
    StructureRun run;
    Arena arena;
    std::vector<ProductNode*> products;
    for (int i = 0; i < 2001; ++i) {
        ProductNode* const product = arena.New<ProductNode>();
        const std::string name = "p" + std::to_string(i % 10);
        product->name = arena.Copy(name.data(), name.size());
        products.push_back(product);
        PushPartQueue(run.tree, product);
        const std::int32_t expected = i < 1000 ? 1000 : i < 2000 ? 2000 : 4000;
        ASSERT_EQ(run.tree.queue.Capacity(), expected) << i;
        ASSERT_EQ(run.tree.queue.Count().all, i + 1);
    }
    for (std::size_t i = 0; i < products.size(); ++i) {
        ASSERT_EQ(run.tree.queue.At(static_cast<std::int32_t>(i)), products[i]);
    }
    EXPECT_EQ(FindQueued(run.tree, "p3"), products[3]);
    EXPECT_EQ(FindQueued(run.tree, "p10"), nullptr);
}

} // namespace
} // namespace tarnwick::test
