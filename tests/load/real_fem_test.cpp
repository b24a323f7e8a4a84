// Finite element files that nobody here wrote, where they are at hand.

#include "support/loaded_file.h"
#include "support/real_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace tarnwick::test {
namespace {

TEST(RealFem, WithOneConstantSectionIsBlack) {
    const std::string path = RealFile("fem/ATS3-out.unwrapped.stp");
    if (path.empty()) { GTEST_SKIP() << "the real files aren't here"; }
    const LoadedFile load(path, 1);
    ASSERT_NE(load.session.loaded.resultMesh, nullptr);
    const ResultMesh& mesh = *load.session.loaded.resultMesh;
    EXPECT_EQ(mesh.nodeCount, 85);
    EXPECT_EQ(mesh.quadCount, 40);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 80);
    for (std::int32_t i = 0; i < 85; ++i) {
        EXPECT_EQ(mesh.colours[4 * i] + mesh.colours[4 * i + 1] + mesh.colours[4 * i + 2], 0);
        EXPECT_EQ(mesh.colours[4 * i + 3], 255);
    }
    EXPECT_LT(*std::max_element(mesh.quadIndices, mesh.quadIndices + 160), 85u);
}

TEST(RealFem, WithoutShellsHasNodesAndNoQuad) {
    const std::string path = RealFile("fem/ATS4-out.stp");
    if (path.empty()) { GTEST_SKIP() << "the real files aren't here"; }
    const LoadedFile load(path, 1);
    ASSERT_NE(load.session.loaded.resultMesh, nullptr);
    EXPECT_EQ(load.session.loaded.resultMesh->nodeCount, 255);
    EXPECT_EQ(load.session.loaded.resultMesh->quadCount, 0);
    EXPECT_EQ(load.session.loaded.drawnTriangles, 0);
    EXPECT_EQ(load.session.loaded.hasBox, 1);
}

TEST(RealFem, WithBrokenLinesIsLoadedWithoutTrouble) {
    for (const char* const name : {"fem/ATS3-out.stp", "fem/ATS3Mod0-outresult.stp"}) {
        const std::string path = RealFile(name);
        if (path.empty()) { GTEST_SKIP() << "the real files aren't here"; }
        const LoadedFile load(path, 1);
        EXPECT_EQ(load.result, 0);
        EXPECT_EQ(load.session.isAssembly, 0);
        if (load.session.loaded.resultMesh != nullptr) {
            EXPECT_EQ(load.session.loaded.drawnTriangles, 2 * load.session.loaded.resultMesh->quadCount);
        }
    }
}

} // namespace
} // namespace tarnwick::test
