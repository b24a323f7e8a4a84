// Assemblies that nobody here wrote, where they are at hand.

#include "support/loaded_file.h"
#include "support/real_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

using ::testing::IsEmpty;

TEST(RealAssembly, OverEightPartFilesComesOutWhole) {
    const std::string path = RealFile("assemblies/s1-tu-203/s1-tu-203.stp");
    if (path.empty()) { GTEST_SKIP() << "the real files aren't here"; }
    for (const bool useThreads : {0, 1}) {
        const LoadedFile load(path, useThreads);
        EXPECT_EQ(load.session.loaded.rootName, "s1");
        EXPECT_EQ(load.session.tree.products.count, 13);
        std::int32_t occurrences = 0;
        for (std::int32_t i = 0; i < load.session.tree.products.count; ++i) {
            occurrences += load.session.tree.products.items[static_cast<std::size_t>(i)]->occurrenceCount;
        }
        EXPECT_EQ(occurrences, 14);
        EXPECT_EQ(load.session.loaded.drawList->count, 11);
        EXPECT_EQ(load.session.loaded.drawnTriangles, 24124);
        EXPECT_EQ(load.session.partCount, 8);
        EXPECT_THAT(load.session.loaded.unreadFiles, IsEmpty());
    }
    EXPECT_EQ(ReportOf(path, 1), ReportOf(path, 0));
}

TEST(RealAssembly, InASingleFileWithoutTessellationIsATreeAndNothingDrawn) {
    const std::string path = RealFile("other/as1-oc-214.stp");
    if (path.empty()) { GTEST_SKIP() << "the real files aren't here"; }
    const LoadedFile load(path);
    EXPECT_EQ(load.session.isAssembly, 1);
    ASSERT_NE(load.session.loaded.root, nullptr);
    EXPECT_GT(load.session.loaded.root->occurrenceCount, 0);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    EXPECT_EQ(load.session.tree.queue.Count().all, 0);
    EXPECT_EQ(load.session.loaded.drawList->count, 0);
}

} // namespace
} // namespace tarnwick::test
