#include "summary/stpj_reader.h"

#include "formats/load_commands.h"
#include "load/load_file.h"
#include "product/draw_list.h"
#include "summary/select_depth.h"
#include "support/capture.h"
#include "support/formats.h"
#include "support/sound_scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace tarnwick {
namespace {

using namespace test;
using nlohmann::json;

std::string Row(int depth, int product, const std::string& translation = "0 0 0") {
    return "{\"depth\": " + std::to_string(depth) + ", \"idx_prd\": " + std::to_string(product) +
           ", \"rotation\": [1 0 0 0 1 0 0 0 1], \"translation\": [" + translation + "]}";
}

std::string Joined(const std::vector<std::string>& rows) {
    std::string text;
    for (const std::string& row : rows) { text += (text.empty() ? "" : ",\n") + row; }
    return text;
}

const std::string kBoxed = "{\"idx\": 7, \"name\": \"a\", \"filename\": \"a.stp\", \"bbox\": [0 1 0 2 0 3]}";

std::string Summary(const std::vector<std::string>& products, const std::vector<std::string>& occurrences,
                    const std::string& depthKey = "\"max_depth\": ", int depth = 2) {
    return "{\"products_table\": {\"nb_products\": " + std::to_string(products.size()) + ", \"products\": [" +
           Joined(products) +
           "]},\n\"occurrences_table\": {\"nb_occurrences\": " + std::to_string(occurrences.size()) + ", " +
           depthKey + std::to_string(depth) + ", \"occurrences\": [" + Joined(occurrences) + "]}}\n";
}

struct Loaded {
    explicit Loaded(const std::string& text) {
        const std::string path = folder.Write("a.stpj", text);
        TraiteSTPJFile(result, path.c_str());
    }
    // The places of the occurrences that show at a depth, by their x translation.
    std::vector<float> At(std::int32_t depth) {
        Arena memory;
        DrawList list{};
        EXPECT_TRUE(SelectDepth(*result.stpjFile, depth, &list, memory));
        std::vector<float> places;
        for (std::int32_t i = 0; i < list.count; ++i) {
            const BoxItem& box = *list.boxes[i];
            places.push_back(box.matrix != nullptr ? box.matrix[12] : -1);
        }
        return places;
    }
    TestFolder folder;
    ConsoleText console;
    LoadedScene result = NewScene();
};

TEST(Stpj, ReadsProductsAndOccurrences) {
    Loaded loaded(Summary(
        {kBoxed, "{\"idx\": 8, \"name\": \"b\"}"},
        {Row(0, 1), "{\"trans\":[10 20 30], \"rotat\":[1 2 3 4 5 6 7 8 9], \"idx_prd\":2, \"depth\":1}"}));
    ASSERT_NE(loaded.result.stpjFile, nullptr);
    const StpjFile& file = *loaded.result.stpjFile;
    ASSERT_EQ(file.productCount, 2);
    EXPECT_STREQ(file.products[0]->name, "a");
    EXPECT_EQ(file.products[0]->fileName, nullptr);
    EXPECT_EQ(file.products[0]->definitionId, 7);
    EXPECT_EQ(file.products[0]->isRoot, 1);
    EXPECT_EQ(file.products[0]->hasBox, 1);
    EXPECT_EQ(file.products[0]->box[3], 2);
    EXPECT_EQ(file.products[1]->hasBox, 0);
    ASSERT_EQ(file.occurrenceCount, 2);
    EXPECT_EQ(file.maxDepth, 2);
    EXPECT_EQ(file.occurrences[0]->hasBox, 1);
    EXPECT_EQ(file.occurrences[0]->box[5], 3);
    const StpjOccurrence& second = *file.occurrences[1];
    EXPECT_EQ(second.depth, 1);
    EXPECT_EQ(second.hasBox, 0);
    const float matrix[16] = {1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 10, 20, 30, 1};
    EXPECT_TRUE(std::equal(matrix, matrix + 16, second.matrix));
    EXPECT_TRUE(
        loaded.console.Text().starts_with("Start TraiteSTPJFile\nCPU load products & occurrences : "));
    EXPECT_FALSE(loaded.console.Has("<E>"));
}

TEST(Stpj, ShowsOneBoxAtDepth0WhateverTheDepthOfTheFile) {
    Loaded loaded(Summary({"{\"idx\": 1, \"name\": \"no box\"}", kBoxed}, {Row(0, 1), Row(1, 2, "5 0 0")}));
    EXPECT_EQ(loaded.At(0), (std::vector<float>{-1}));
    EXPECT_EQ(loaded.At(1), (std::vector<float>{5}));
}

TEST(Stpj, ShowsOccurrencesOfADepthAndChildlessOnesAboveIt) {
    Loaded chain(Summary({kBoxed}, {Row(0, 1, "10 0 0"), Row(1, 1, "11 0 0"), Row(2, 1, "12 0 0")}));
    EXPECT_EQ(chain.At(1), (std::vector<float>{11}));
    EXPECT_EQ(chain.At(2), (std::vector<float>{12}));
    Loaded flat(Summary({kBoxed}, {Row(0, 1, "10 0 0"), Row(1, 1, "11 0 0"), Row(1, 1, "12 0 0")}));
    EXPECT_EQ(flat.At(5), (std::vector<float>{11, 12}));
    EXPECT_EQ(flat.At(0), (std::vector<float>{-1}));
}

TEST(Stpj, ShowsNoBoxOfAProductWithoutOne) {
    Loaded loaded(Summary({"{\"idx\": 1, \"name\": \"n\"}"}, {Row(0, 1), Row(1, 1)}));
    EXPECT_EQ(loaded.At(1).size(), 0u);
    EXPECT_EQ(loaded.At(2).size(), 0u);
    EXPECT_EQ(loaded.At(0).size(), 1u);
}

TEST(Stpj, LosesTheColonOfAFiveLetterDepthKey) {
    Loaded tight(Summary({kBoxed}, {Row(0, 1)}, "\"max_d\":"));
    EXPECT_EQ(tight.result.maxDepth, 0);
    Loaded spaced(Summary({kBoxed}, {Row(0, 1)}, "\"max_d\" :"));
    EXPECT_EQ(spaced.result.maxDepth, 2);
    Loaded longer(Summary({kBoxed}, {Row(0, 1)}, "\"max_dep\":"));
    EXPECT_EQ(longer.result.maxDepth, 2);
}

std::vector<float> BoxOf(const std::string& numbers) {
    Loaded loaded(Summary({"{\"bbox\": [" + numbers + "], \"name\": \"a\"}"}, {Row(0, 1)}));
    const ProductNode& product = *loaded.result.stpjFile->products[0];
    EXPECT_EQ(product.hasBox, 1);
    return {product.box, product.box + 6};
}

TEST(Stpj, ReadsNumbersThatBlanksSeparate) {
    EXPECT_EQ(BoxOf("1 2 3 4 5 6"), (std::vector<float>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(BoxOf(" 1,  2, 3, 4, 5, 6 "), (std::vector<float>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(BoxOf("1\n 2\n 3\n 4\n 5\n 6\n"), (std::vector<float>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(BoxOf("1 2 3 4 5 6 7 8"), (std::vector<float>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(BoxOf("1 2 3"), (std::vector<float>{1, 2, 3, 0, 0, 0}));
    EXPECT_EQ(BoxOf(""), (std::vector<float>{0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(BoxOf("1,2,3,4,5,6"), (std::vector<float>{1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(BoxOf("1\n2\n3"), (std::vector<float>{1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(BoxOf("\t 1 2 3 4 5 6"), (std::vector<float>{1, 1, 2, 3, 4, 5}))
        << "the blank after a tab ends a number";
    EXPECT_EQ(BoxOf("\n 1 2 3 4 5 6"), (std::vector<float>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(BoxOf("1.5e1 -2.5 +3 4. .5 x6"), (std::vector<float>{15, -2.5, 3, 4, 0.5, 0}));
}

TEST(Stpj, ReadsADigitAsItReadsTheSameNumberWithAPoint) {
    std::mt19937 random(7);
    const std::vector<std::string> separators = {", ", " ", "  ", ",", ",\t", "\t ", " ,", "\n", ",, ", "] "};
    for (int round = 0; round < 400; ++round) {
        std::string digits;
        std::string reals;
        for (auto count = random() % 9; count > 0; --count) {
            const std::string number = (random() % 3 == 0   ? "-"
                                        : random() % 9 == 0 ? "+"
                                                            : "") +
                                       std::to_string(random() % 10);
            const std::string& separator =
                random() % 3 == 0 ? separators[random() % separators.size()] : separators[0];
            digits += number + separator;
            reals += number + "." + separator;
        }
        const std::vector<float> expected = BoxOf(reals);
        const std::vector<float> read = BoxOf(digits);
        EXPECT_EQ(std::memcmp(read.data(), expected.data(), 6 * sizeof(float)), 0) << digits;
    }
}

TEST(Stpj, LimitsIntegersToThoseOf32Bits) {
    Loaded loaded(
        Summary({"{\"idx\": 2147483648, \"name\": \"a\"}", "{\"idx\": 99999999999999999999}"}, {Row(0, 1)}));
    EXPECT_EQ(loaded.result.stpjFile->products[0]->definitionId, 2147483647);
    EXPECT_EQ(loaded.result.stpjFile->products[1]->definitionId, 2147483647);
}

TEST(Stpj, CarriesNameAndNumberOverToAProductWithoutThemButNotTheBox) {
    Loaded loaded(Summary({kBoxed, "{\"x\": 1}"}, {Row(0, 2)}));
    const ProductNode& second = *loaded.result.stpjFile->products[1];
    EXPECT_STREQ(second.name, "a");
    EXPECT_EQ(second.definitionId, 7);
    EXPECT_EQ(second.hasBox, 0);
}

TEST(Stpj, EndsAnObjectAtItsFirstClosingBrace) {
    Loaded loaded(
        Summary({"{\"more\": {\"x\": 1}, \"name\": \"lost\"}", "{\"name\": \"b, c\"}"}, {Row(0, 1)}));
    // The name after the nested object is no product's; the next object is the second product.
    EXPECT_STREQ(loaded.result.stpjFile->products[0]->name, "");
    EXPECT_STREQ(loaded.result.stpjFile->products[1]->name, "b, c");
}

TEST(Stpj, FindsNoOccurrencesInFrontOfTheProducts) {
    const std::string good = Summary({kBoxed}, {Row(0, 1)});
    const std::size_t second = good.find("\"occurrences_table\"");
    const std::string swapped =
        good.substr(second, good.size() - second - 2) + ", " + good.substr(1, second - 1) + "}";
    Loaded loaded(swapped);
    EXPECT_EQ(loaded.result.stpjFile, nullptr);
    EXPECT_EQ(loaded.console.Count("<E>"), 1);
    EXPECT_EQ(loaded.result.unreadFiles.size(), 1u);
}

TEST(Stpj, TakesTheTableKeyFromAnyQuoteAlsoAClosingOne) {
    std::string text = Summary({kBoxed}, {Row(0, 1)});
    text.insert(1, "\"x\"products_ta : ");
    EXPECT_NE(Loaded(text).result.stpjFile, nullptr);
}

TEST(Stpj, LeavesOutWhatACountClaimsAndTheFileLacks) {
    std::string text = Summary({kBoxed}, {Row(0, 1), Row(1, 1)});
    text.replace(text.find("\"nb_occurrences\": 2"), 19, "\"nb_occurrences\": 2000000000");
    Loaded loaded(text);
    ASSERT_NE(loaded.result.stpjFile, nullptr);
    EXPECT_EQ(loaded.result.stpjFile->occurrenceCount, 2);
    EXPECT_EQ(loaded.console.Count("<E>"), 1);
    EXPECT_EQ(loaded.At(2).size(), 1u);
}

TEST(Stpj, ReadsNoMoreThanACountClaims) {
    std::string text = Summary({kBoxed}, {Row(0, 1), Row(1, 1)});
    text.replace(text.find("\"nb_occurrences\": 2"), 19, "\"nb_occurrences\": 1");
    EXPECT_EQ(Loaded(text).result.stpjFile->occurrenceCount, 1);
}

TEST(Stpj, HasNothingToShowWithoutAnyOccurrence) {
    for (const char* const text : {"", "\"", "\"products_ta", "{\"products_table\": {\"other\": 1}}",
                                   "{\"products_table\": {\"nb_prod\": 0, \"p\": []}, \"occurrences_table\": "
                                   "{\"nb_occu\": 0, \"max_depth\": 0, \"o\": []}}",
                                   "{\"products_table\": {\"nb_prod\": 1, \"p\": [{\"idx\":1}]}, "
                                   "\"occurrences_table\": {\"max_depth\": 0}}"}) {
        Loaded loaded(text);
        EXPECT_EQ(loaded.result.stpjFile, nullptr) << text;
        EXPECT_EQ(loaded.console.Count("<E>"), 1) << text;
        EXPECT_EQ(loaded.result.unreadFiles.size(), 1u) << text;
    }
}

TEST(Stpj, GivesUpAFileOfMoreBytesThanATextMayHave) {
    const TestFolder folder;
    const std::string path = folder.Write("l.stpj", Summary({kBoxed}, {Row(0, 1)}));
    std::filesystem::resize_file(path, std::uintmax_t{1} << 31); // a hole: it takes no room
    const ConsoleText console;
    LoadedScene result = NewScene();
    TraiteSTPJFile(result, path.c_str());
    EXPECT_EQ(result.stpjFile, nullptr);
    EXPECT_TRUE(console.Has("<E> " + path + ": its 2147483648 bytes are more than a summary may have\n"));
    ASSERT_EQ(result.unreadFiles.size(), 1u);
    EXPECT_STREQ(result.unreadFiles[0].reason, "is too large");
}

TEST(Stpj, ShowsNothingForAnOccurrenceOfAProductThatIsNotThere) {
    for (const int product : {0, -1, 2, 2000000000}) {
        Loaded loaded(
            Summary({kBoxed}, {Row(0, product, "1 0 0"), Row(0, 1, "2 0 0"), Row(0, product, "3 0 0")}));
        EXPECT_EQ(loaded.At(1), (std::vector<float>{2})) << product;
        // An index below 1 stands for no product; one above the last can only be an error.
        EXPECT_EQ(loaded.console.Count("<E>"), product > 0 ? 1 : 0);
        EXPECT_EQ(loaded.console.Count("occurrences of products that it doesn't have: 2"),
                  product > 0 ? 1 : 0);
        EXPECT_EQ(loaded.result.box[1], 0);
    }
}

TEST(Stpj, ShowsABoxWithoutSizeOrProductAtDepth0WhereTheFirstOccurrenceHasNoProduct) {
    for (const int product : {0, -1, 2, 2000000000}) {
        Loaded loaded(Summary({kBoxed}, {Row(0, product, "1 0 0"), Row(0, 1, "2 0 0")}));
        Arena memory;
        DrawList list{};
        ASSERT_TRUE(SelectDepth(*loaded.result.stpjFile, 0, &list, memory));
        ASSERT_EQ(list.count, 1) << product;
        const BoxItem& whole = *list.boxes[0];
        EXPECT_EQ(whole.matrix, nullptr);
        EXPECT_EQ(whole.product, nullptr);
        EXPECT_TRUE(std::all_of(whole.vertices, whole.vertices + 72, [](float v) { return v == 0; }));
    }
}

TEST(Stpj, ShowsNothingForAnOccurrenceWithoutAPlacement) {
    Loaded loaded(
        Summary({kBoxed}, {Row(0, 1), "{\"depth\":1,\"idx_prd\":1,\"trans\":[1 2 3]}", Row(1, 1, "2 0 0")}));
    EXPECT_EQ(loaded.At(1), (std::vector<float>{2}));
    EXPECT_EQ(loaded.console.Count("<E>"), 1);
}

TEST(Stpj, GivesUpAFileWithANameThatDoesNotFit) {
    const auto file = [](std::size_t name, std::size_t fileName) {
        Loaded loaded(Summary({"{\"name\": \"" + std::string(name, 'n') + "\", \"filename\": \"" +
                               std::string(fileName, 'f') + "\"}"},
                              {Row(0, 1)}));
        return loaded.result.stpjFile != nullptr;
    };
    EXPECT_TRUE(file(511, 583));
    EXPECT_FALSE(file(512, 5));
    EXPECT_FALSE(file(5, 584));
}

// The first thing that isn't sound in what the load of a damaged summary shows, at any depth.
std::string UnsoundSummary(const std::string& path) {
    SceneView view;
    LoadStpjFile(view, path.c_str());
    if (const std::string reason = UnsoundIn(view); !reason.empty()) { return reason; }
    if (view.loaded.stpjFile == nullptr) {
        return view.loaded.boxList != nullptr ? "boxes without a file" : "";
    }
    const StpjFile& file = *view.loaded.stpjFile;
    if (file.productCount < 0 || file.productCount > 2) { return "the count of the products"; }
    if (file.occurrenceCount < 1 || file.occurrenceCount > 3) { return "the count of the occurrences"; }
    if (view.loaded.summaryProductCount != file.productCount) { return "the products of the view"; }
    for (std::int32_t i = 0; i < file.occurrenceCount; ++i) {
        const StpjOccurrence& occurrence = *file.occurrences[i];
        const bool known = occurrence.productIndex >= 1 && occurrence.productIndex <= file.productCount;
        const ProductNode* const product = ProductOf(file, occurrence);
        if (product != (known ? file.products[occurrence.productIndex - 1] : nullptr)) { return "a product"; }
        if (occurrence.hasBox != 0 && (product == nullptr || product->hasBox == 0)) { return "a box"; }
    }
    for (const std::int32_t depth : {0, 1, 5, -1}) {
        SelectShownDepth(view, depth);
        if (const std::string reason = UnsoundIn(view); !reason.empty()) { return reason; }
    }
    return "";
}

TEST(Stpj, StaysInItsTextAndItsTablesWhereverThatIsCutOrDamaged) {
    const std::string text =
        Summary({kBoxed, "{\"name\":\"b\",\"bbox\":[1 2 3 4 5 6]}"}, {Row(0, 1), Row(1, 2), Row(1, 1)});
    const TestFolder folder;
    std::vector<std::string> reasons;
    const auto load = [&](const std::string& damaged, const std::string& what) {
        const std::string reason = UnsoundSummary(folder.Write("a.stpj", damaged));
        if (!reason.empty()) { reasons.push_back(what + ": " + reason); }
    };
    {
        const LogCapture log;
        for (std::size_t cut = 0; cut <= text.size(); ++cut) {
            load(text.substr(0, cut), "length " + std::to_string(cut));
        }
        for (std::size_t i = 0; i < text.size(); ++i) {
            for (const char c : std::string_view("\"{}[]:, \0x9<", 12)) {
                std::string damaged = text;
                damaged[i] = c;
                load(damaged, "byte " + std::to_string(i) + " as " + std::to_string(c));
            }
        }
    }
    EXPECT_THAT(reasons, testing::IsEmpty());
}

TEST(StpjLoad, ShowsBoxesAndFollowsTheSlider) {
    const TestFolder folder;
    const std::string path =
        folder.Write("a.stpj", Summary({kBoxed, "{\"idx\": 8, \"name\": \"b\", \"bbox\":[0 1 0 1 0 1]}"},
                                       {Row(0, 1), Row(1, 2, "1 0 0"), Row(1, 2, "2 0 0")}));
    SceneView view;
    view.selectedIndex = 4;
    LoadStpjFile(view, path.c_str());
    EXPECT_EQ(view.selectedIndex, -1);
    json report = Report(view);
    EXPECT_EQ(report["triangles"], 24);
    EXPECT_EQ(report["maxDepth"], 2);
    EXPECT_EQ(report["pickMode"], 0);
    EXPECT_EQ(report["box"], (json{0, 1, 0, 2, 0, 3}));
    EXPECT_EQ(report["drawList"], nullptr);
    ASSERT_EQ(report["boxList"].size(), 2u);
    EXPECT_EQ(report["boxList"][0]["product"], 1);
    EXPECT_EQ(report["boxList"][0]["vertices"].size(), 72u);
    EXPECT_EQ(report["boxList"][1]["matrix"][12], 2);
    ASSERT_EQ(report["products"].size(), 2u);
    EXPECT_EQ(report["products"][1]["definitionId"], 8);
    EXPECT_EQ(report["products"][1]["occurrences"].size(), 0u);
    for (int i = 0; i < 5; ++i) {
        SelectShownDepth(view, 0);
        report = Report(view);
        EXPECT_EQ(report["triangles"], 12);
        EXPECT_EQ(report["boxList"][0]["matrix"], nullptr);
        EXPECT_EQ(report["boxList"][0]["product"], 0);
        SelectShownDepth(view, 1);
        EXPECT_EQ(Report(view)["triangles"], 24);
        LoadStpjFile(view, path.c_str());
    }
}

TEST(StpjLoad, ShowsNothingForAFileThatCannotBeOpened) {
    SceneView view;
    view.loaded.maxDepth = 3;
    const ConsoleText console;
    LoadStpjFile(view, "/nosuch.stpj");
    EXPECT_EQ(console.Count("<E>"), 1);
    EXPECT_EQ(view.loaded.boxList, nullptr);
    EXPECT_EQ(view.loaded.maxDepth, 0);
    EXPECT_EQ(view.modelSize, 120);
    ASSERT_EQ(view.loaded.unreadFiles.size(), 1u);
    SelectShownDepth(view, 1);
    EXPECT_EQ(view.loaded.drawnTriangles, 0);
}

} // namespace
} // namespace tarnwick
