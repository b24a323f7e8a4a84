// The walk that flattens a product tree into draw lists.

#include "product/scene_tree.h"
#include "support/capture.h"
#include "support/sanitized.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

// Runs the walk; returns what it printed.
std::string Build(SceneTree& tree, ProductNode* product, PrepareOccurrence prepare = nullptr) {
    LogCapture log;
    BuildDrawLists(tree.arena, product, "file.stp", prepare);
    return log.TakeConsole();
}

std::vector<std::string> DrawnNames(const ProductNode& product) {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < product.drawList->count; ++i) {
        names.emplace_back(product.drawList->items[i]->product->name);
    }
    return names;
}

std::vector<float> PlacesAlongX(const ProductNode& product) {
    std::vector<float> places;
    for (std::int32_t i = 0; i < product.drawList->count; ++i) {
        places.push_back(product.drawList->items[i]->matrix[12]);
    }
    return places;
}

TEST(DrawTree, OfANullProductFails) {
    SceneTree tree;
    EXPECT_EQ(BuildDrawLists(tree.arena, nullptr, "", nullptr), 1);
    EXPECT_EQ(BuildDrawLists(tree.arena, tree.Product("top"), "", nullptr), 0);
}

TEST(DrawTree, OfThreeUsesOfAPartIsThreeItemsThatShareItsMeshes) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const part = tree.Part("part", 7);
    for (int i = 0; i < 3; ++i) { tree.Use(top, part, {static_cast<double>(i), 0, 0}); }
    EXPECT_EQ(Build(tree, top), "");
    ASSERT_EQ(top->drawList->count, 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(top->drawList->items[i]->meshes, part->drawList->items[0]->meshes);
        EXPECT_EQ(top->drawList->items[i]->product, part);
    }
    EXPECT_THAT(PlacesAlongX(*top), ElementsAre(0, 1, 2));
    // Counted once for each use.
    EXPECT_EQ(CountTriangles(*top->drawList), 21);
    EXPECT_EQ(top->drawList->capacity, 100);
    // The part's own item is as it was.
    EXPECT_EQ(part->drawList->count, 1);
    EXPECT_EQ(part->drawList->items[0]->matrix, nullptr);
}

TEST(DrawTree, OfAProductWithoutGeometryIsAnEmptyList) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const empty = tree.Product("empty");
    tree.Use(top, empty);
    EXPECT_EQ(Build(tree, top), "");
    ASSERT_NE(empty->drawList, nullptr);
    EXPECT_EQ(empty->drawList->count, 0);
    EXPECT_EQ(empty->drawList->capacity, 100);
    EXPECT_EQ(top->drawList->count, 0);
    EXPECT_EQ(top->hasBox, 0);
}

TEST(DrawTree, FlattensASubTreeOnceHoweverOftenItIsUsed) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const sub = tree.Product("sub");
    ProductNode* const part = tree.Part("part", 1);
    tree.Use(sub, part, {1, 0, 0});
    tree.Use(sub, part, {2, 0, 0});
    tree.Use(top, sub, {100, 0, 0});
    tree.Use(top, part, {50, 0, 0});
    tree.Use(top, sub, {200, 0, 0});
    Build(tree, top);
    EXPECT_THAT(PlacesAlongX(*sub), ElementsAre(1, 2));
    EXPECT_THAT(PlacesAlongX(*top), ElementsAre(101, 102, 50, 201, 202));
    EXPECT_THAT(top->box, ElementsAre(50, 203, 0, 1, 0, 1));
    EXPECT_THAT(sub->box, ElementsAre(1, 3, 0, 1, 0, 1));
}

TEST(DrawTree, LeavesAChildWithAListOfItsOwnUnwalked) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const both = tree.Part("both", 1, {0, 9, 0, 9, 0, 9});
    ProductNode* const below = tree.Part("below", 1);
    ProductNode* const deeper = tree.Product("deeper");
    tree.Use(both, below, {5, 0, 0});
    tree.Use(both, deeper);
    tree.Use(top, both);
    Build(tree, top);
    EXPECT_THAT(DrawnNames(*top), ElementsAre("both"));
    EXPECT_EQ(deeper->drawList, nullptr);
    EXPECT_THAT(both->box, ElementsAre(0, 9, 0, 9, 0, 9));
}

TEST(DrawTree, WalksARootWithAListOfItsOwnAndKeepsIt) {
    SceneTree tree;
    ProductNode* const root = tree.Part("root", 1, {0, 9, 0, 9, 0, 9});
    ProductNode* const below = tree.Part("below", 1);
    tree.Use(root, below, {5, 0, 0});
    Build(tree, root);
    EXPECT_THAT(DrawnNames(*root), ElementsAre("root", "below"));
    EXPECT_EQ(root->drawList->items[0]->matrix, nullptr);
    EXPECT_EQ(root->drawList->capacity, 12); // it was the reader's, with room for 1
    EXPECT_THAT(root->box, ElementsAre(5, 6, 0, 1, 0, 1));
}

TEST(DrawTree, GrowsALongListByTheStatedRule) {
    const std::pair<int, int> cases[] = {{99, 100},  {100, 200}, {199, 200},
                                         {200, 400}, {399, 400}, {400, 800}};
    for (const auto& [uses, capacity] : cases) {
        SceneTree tree;
        ProductNode* const top = tree.Product("top");
        ProductNode* const part = tree.Part("part", 1);
        for (int i = 0; i < uses; ++i) { tree.Use(top, part); }
        Build(tree, top);
        EXPECT_EQ(top->drawList->count, uses);
        EXPECT_EQ(top->drawList->capacity, capacity) << uses;
    }
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const sub = tree.Product("sub");
    ProductNode* const part = tree.Part("part", 1);
    for (int i = 0; i < 200; ++i) { tree.Use(sub, part); }
    for (int i = 0; i < 90; ++i) { tree.Use(top, part); }
    tree.Use(top, sub);
    Build(tree, top);
    EXPECT_EQ(top->drawList->capacity, 301);
}

constexpr std::int32_t kManyItems = (1 << 20) + 1; // at which the items to come are counted

// A product whose list has so many times the same item.
ProductNode* ManyItems(SceneTree& tree) {
    ProductNode* const part = tree.Part("many", 1);
    DrawList* const list = MakeDrawList(tree.arena, kManyItems);
    std::fill_n(list->items, kManyItems, part->drawList->items[0]);
    list->count = kManyItems;
    part->drawList = list;
    return part;
}

TEST(DrawTree, IsGivenUpBeforeItHasMoreItemsThanItMay) {
    SceneTree tree;
    ProductNode* const many = ManyItems(tree);
    ProductNode* const top = tree.Product("top");
    ProductNode* const sub = tree.Product("sub");
    tree.Use(top, many);
    tree.Use(top, sub);
    tree.Use(top, sub);
    for (int i = 0; i < 8; ++i) { tree.Use(sub, many); }
    LogCapture log;
    const int result = BuildDrawLists(tree.arena, top, "file.stp", nullptr);
    const std::string console = log.TakeConsole();
    EXPECT_EQ(result, 1);
    EXPECT_EQ(console, "<E> file.stp: not all of its parts are placed, they are more than 16777216\n");
    EXPECT_EQ(top->drawList->count, 0) << "nothing is placed for nothing";
}

TEST(DrawTree, PlacesManyItemsAsLongAsTheyAreNotTooMany) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const sub = tree.Product("sub");
    tree.Use(top, ManyItems(tree));
    tree.Use(top, sub);
    tree.Use(top, tree.Product("without a description"))->child = nullptr;
    tree.Use(sub, tree.Part("part", 1));
    tree.Use(sub, top); // closes a cycle
    EXPECT_EQ(Build(tree, top),
              "<E> file.stp: product 'top' is part of itself; that use of it is left out\n");
    EXPECT_EQ(top->drawList->count, kManyItems + 1);
}

TEST(DrawTree, IsThatOfThePlainForm) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> value(-3, 3);
    for (int round = 0; round < 60; ++round) {
        SceneTree tree;
        // Every product uses only later ones, so that there is no cycle.
        std::vector<ProductNode*> products;
        for (int i = 0; i < 12; ++i) { products.push_back(i < 6 ? tree.Product("p") : tree.Part("part", i)); }
        for (std::size_t i = 0; i < 6; ++i) {
            const int uses = static_cast<int>(random() % 4);
            for (int u = 0; u < uses; ++u) {
                Rotation rotation;
                Translation move;
                for (double& v : rotation) { v = value(random); }
                for (double& v : move) { v = 10 * value(random); }
                tree.Use(products[i], products[i + 1 + random() % (11 - i)], move, rotation);
            }
        }
        const std::vector<PlainItem> expected = PlainItems(*products[0]);
        Build(tree, products[0]);
        const DrawList& list = *products[0]->drawList;
        ASSERT_EQ(static_cast<std::size_t>(list.count), expected.size());
        std::int64_t triangles = 0;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ASSERT_EQ(list.items[i]->product, expected[i].product);
            ASSERT_EQ(list.items[i]->meshes, expected[i].meshes);
            ASSERT_EQ(MatrixOf(*list.items[i]), expected[i].matrix);
            triangles += expected[i].meshes[0]->triangleCount;
        }
        EXPECT_EQ(CountTriangles(list), triangles);
        for (const ProductNode* const product : products) {
            std::array<float, 6> box{};
            if (product->occurrenceCount > 0 && product->drawList != nullptr && PlainBox(*product, &box)) {
                EXPECT_THAT(product->box, ElementsAreArray(box));
            }
        }
    }
}

TEST(DrawTree, LeavesOutTheUseThatClosesACycleAndSaysSoOnce) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const sub = tree.Product("sub");
    ProductNode* const part = tree.Part("part", 1);
    tree.Use(top, sub, {1, 0, 0});
    tree.Use(sub, part, {10, 0, 0});
    tree.Use(sub, top, {20, 0, 0});
    tree.Use(sub, sub, {30, 0, 0});
    tree.Use(sub, part, {40, 0, 0});
    tree.Use(top, part, {2, 0, 0});
    EXPECT_EQ(Build(tree, top),
              "<E> file.stp: product 'top' is part of itself; that use of it is left out\n");
    EXPECT_THAT(PlacesAlongX(*top), ElementsAre(11, 41, 2));
    EXPECT_THAT(PlacesAlongX(*sub), ElementsAre(10, 40));
}

TEST(DrawTree, LeavesOutAProductThatIsDirectlyPartOfItself) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const part = tree.Part("part", 1);
    tree.Use(top, top);
    tree.Use(top, part);
    EXPECT_EQ(Build(tree, top),
              "<E> file.stp: product 'top' is part of itself; that use of it is left out\n");
    EXPECT_THAT(DrawnNames(*top), ElementsAre("part"));
}

TEST(DrawTree, PutsTheNameOfACycleOnOneLineWithoutReadingItAsAFormat) {
    SceneTree tree;
    ProductNode* const top = tree.Product("50%s%n\n<E> b\x1b[2J");
    tree.Use(top, top);
    EXPECT_EQ(Build(tree, top),
              "<E> file.stp: product '50%s%n?<E> b?[2J' is part of itself; that use of it is left out\n");
}

TEST(DrawTree, OfARootWithGeometryThatIsPartOfItselfPlacesWhatItHasSoFar) {
    // Such a root has a list before it is walked, and that list is what a use of it is given.
    SceneTree tree;
    ProductNode* const root = tree.Part("root", 1);
    ProductNode* const part = tree.Part("part", 1);
    tree.Use(root, part, {1, 0, 0});
    tree.Use(root, root, {10, 0, 0});
    tree.Use(root, part, {2, 0, 0});
    Build(tree, root);
    EXPECT_THAT(DrawnNames(*root), ElementsAre("root", "part", "root", "part", "part"));
    const DrawList& list = *root->drawList;
    EXPECT_EQ(list.items[2]->matrix[12], 10);
    EXPECT_EQ(list.items[3]->matrix[12], 11);
    EXPECT_EQ(list.items[4]->matrix[12], 2);
}

TEST(DrawTree, CanBeAHundredThousandLevelsDeep) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* above = top;
    constexpr int kLevels = kSanitized ? 10000 : 100000;
    for (int i = 1; i <= kLevels; ++i) {
        ProductNode* const below = i == kLevels ? tree.Part("part", 2) : tree.Product("level");
        tree.Use(above, below, {1, 0, 0});
        above = below;
    }
    EXPECT_EQ(Build(tree, top), "");
    ASSERT_EQ(top->drawList->count, 1);
    EXPECT_EQ(top->drawList->items[0]->matrix[12], kLevels);
    EXPECT_EQ(CountTriangles(*top->drawList), 2);
    EXPECT_THAT(top->box, ElementsAre(kLevels, kLevels + 1, 0, 1, 0, 1));
}

TEST(DrawTree, PreparesEachOccurrenceOnceRightBeforeItIsPlaced) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const sub = tree.Product("sub");
    tree.Use(sub, tree.Part("part", 1), {1, 0, 0});
    tree.Use(top, sub);
    tree.Use(top, sub);
    Build(tree, top, [](Occurrence* occurrence) { occurrence->translation[0] += 10; });
    EXPECT_THAT(PlacesAlongX(*top), ElementsAre(21, 21));
}

TEST(CountTriangles, StopsAtTheLargestNumber) {
    SceneTree tree;
    ProductNode* const top = tree.Product("top");
    ProductNode* const part = tree.Part("part", 2000000000);
    for (int i = 0; i < 3; ++i) { tree.Use(top, part); }
    Build(tree, top);
    LogCapture log;
    const std::int32_t count = CountTriangles(*top->drawList);
    const std::string console = log.TakeConsole();
    EXPECT_EQ(count, 2147483647);
    EXPECT_EQ(console, "<W> 6000000000 triangles, of which 2147483647 are counted\n");
}

} // namespace
} // namespace tarnwick::test
