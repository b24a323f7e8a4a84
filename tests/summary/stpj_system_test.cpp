// What the system denies a summary.

#include "formats/load_commands.h"
#include "summary/stpj_reader.h"
#include "support/address_space.h"
#include "support/formats.h"
#include "support/sanitized.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace tarnwick {
namespace {

using namespace test;

// One box at the top, and so many below it.
std::string WideSummary(int boxes) {
    const auto row = [](int depth) {
        return "{\"depth\":" + std::to_string(depth) +
               ",\"idx_prd\":1,\"rotation\":[1 0 0 0 1 0 0 0 1 ],\"translation\":[0 0 0 ]}";
    };
    std::string rows = row(0);
    for (int i = 0; i < boxes; ++i) { rows += "," + row(1); }
    return "{\"products_table\":{\"nb_products\":1,\"products\":[{\"idx\":1,\"name\":\"a\",\"bbox\":[0 1 0 1 "
           "0 1 "
           "]}]},\"occurrences_table\":{\"nb_occurrences\":" +
           std::to_string(boxes + 1) + ",\"max_depth\":0,\"occurrences\":[" + rows + "]}}";
}

TEST(StpjSystem, HasNoMemoryForAllBoxesOfADepth) {
    if (kSanitized) { GTEST_SKIP() << "a sanitizer takes memory of its own"; }
    const TestFolder folder;
    const std::string path = folder.Write("a\n.stpj", WideSummary(1000));
    SceneView view;
    LoadStpjFile(view, path.c_str());
    ASSERT_EQ(view.loaded.drawnTriangles, 12);
    const ConsoleText console;
    {
        const AddressSpaceLimit limit(0);
        SelectShownDepth(view, 1);
    }
    EXPECT_EQ(console.Text(), "<E> " + folder.Path("a?.stpj") + ": no memory for all of its boxes\n");
    EXPECT_GT(view.loaded.boxList->count, 0);
    EXPECT_LT(view.loaded.boxList->count, 1000);
    EXPECT_EQ(view.loaded.drawnTriangles, 12 * view.loaded.boxList->count);
    SelectShownDepth(view, 1);
    EXPECT_EQ(view.loaded.boxList->count, 1000) << "with memory again";
}

TEST(StpjSystem, ReadsOfAFileWhatThereIs) {
    // The system's own files have a page for their size, whatever is in them.
    const std::string path = "/sys/kernel/mm/transparent_hugepage/enabled";
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size <= content.size()) { GTEST_SKIP() << "no file here has less than its size"; }
    const ConsoleText console;
    LoadedScene loaded = NewScene();
    TraiteSTPJFile(loaded, path.c_str());
    EXPECT_EQ(console.Count("<E> " + path + ": only " + std::to_string(content.size()) + " of its " +
                            std::to_string(size) + " bytes can be read\n"),
              1);
    EXPECT_EQ(loaded.stpjFile, nullptr);
    ASSERT_EQ(loaded.unreadFiles.size(), 1u);
    EXPECT_STREQ(loaded.unreadFiles[0].reason, "isn't a summary with products and occurrences");
}

} // namespace
} // namespace tarnwick
