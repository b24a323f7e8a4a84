// Files that other programs wrote. They are no part of this project, so a machine may lack them.

#include "formats/load_commands.h"
#include "support/formats.h"
#include "support/real_files.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick {
namespace {

using namespace test;

TEST(RealFiles, AnAssemblyOf9ProductsHas18PlacedParts) {
    const std::string path = RealFile("xml/as1-oc-214-stpx/as1-oc-214.stpx");
    if (path.empty()) { GTEST_SKIP() << "the file isn't here"; }
    const nlohmann::json report = LoadReport(path, nullptr, 1);
    EXPECT_EQ(report["triangles"], 5180);
    EXPECT_EQ(report["drawList"].size(), 18u);
    EXPECT_EQ(report["products"].size(), 9u);
    EXPECT_EQ(report["products"][0]["name"], "MASTER");
    EXPECT_EQ(report, LoadReport(path, nullptr, 0));
}

TEST(RealFiles, AnAssemblyOfForeignPartsHasATreeAndFiveUnreadFiles) {
    const std::string path = RealFile("xml/as1-oc-214-original.stpx");
    if (path.empty()) { GTEST_SKIP() << "the file isn't here"; }
    SceneView view;
    LoadStpxFile(view, path.c_str(), nullptr, 1);
    EXPECT_EQ(Report(view)["products"].size(), 9u);
    EXPECT_EQ(view.loaded.drawnTriangles, 0);
    EXPECT_EQ(view.loaded.unreadFiles.size(), 5u);
}

} // namespace
} // namespace tarnwick
