// Assemblies of several levels whose parts are shared between files: each part has to come to where the tree
// puts it, and with any number of threads to the same place.

#include "load/generated_assembly.h"
#include "support/loaded_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tarnwick::test {
namespace {

std::vector<GeneratedAssembly::Item> ItemsOf(const LoadedFile& load) {
    std::vector<GeneratedAssembly::Item> items;
    for (std::int32_t i = 0; i < load.session.loaded.drawList->count; ++i) {
        const DrawItem& item = *load.session.loaded.drawList->items[i];
        GeneratedAssembly::Item placed{item.product->name, {}};
        for (std::size_t e = 0; e < 16; ++e) {
            placed.matrix[e] = static_cast<int>(item.matrix[e]);
            EXPECT_EQ(static_cast<float>(placed.matrix[e]), item.matrix[e]);
        }
        items.push_back(placed);
    }
    std::sort(items.begin(), items.end());
    return items;
}

TEST(GeneratedAssembly, ComesOutAsItsTreeSays) {
    int shared = 0;
    int missing = 0;
    for (unsigned seed = 1; seed <= 150; ++seed) {
        GeneratedAssembly assembly(seed);
        std::sort(assembly.items.begin(), assembly.items.end());
        const LoadedFile load(assembly.path, static_cast<int>(seed % 2));
        ASSERT_EQ(ItemsOf(load), assembly.items) << "seed " << seed;
        ASSERT_EQ(load.session.loaded.drawnTriangles, assembly.triangles) << "seed " << seed;
        ASSERT_EQ(load.session.partCount, assembly.parts) << "seed " << seed;
        ASSERT_EQ(static_cast<int>(load.session.loaded.unreadFiles.size()), assembly.missing)
            << "seed " << seed;
        ASSERT_EQ(load.session.loaded.rootName, "L0.0");
        // Each file is read once: what a part is used for more than that is shared.
        shared += static_cast<int>(assembly.items.size()) - assembly.parts;
        missing += assembly.missing;
    }
    // Else the seeds have become too easy.
    EXPECT_GT(shared, 500);
    EXPECT_GT(missing, 10);
}

TEST(GeneratedAssembly, GivesTheSameReportWithAndWithoutThreads) {
    for (unsigned seed = 1000; seed < 1100; ++seed) {
        const GeneratedAssembly assembly(seed);
        const std::string alone = ReportOf(assembly.path, 0);
        ASSERT_EQ(ReportOf(assembly.path, 1), alone) << "seed " << seed;
        ASSERT_EQ(ReportOf(assembly.path, 1), alone) << "seed " << seed;
    }
}

} // namespace
} // namespace tarnwick::test
