// Documents that other programs wrote, where they are at hand, and those of the samples.

#include "prepare/xml/xml_structure.h"

#include "support/formats.h"
#include "support/real_files.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace tarnwick::prepare {
namespace {

using namespace test;

FileStructure ReadFile(const std::string& path) {
    FileStructure structure;
    std::string error;
    EXPECT_TRUE(ReadXmlStructure(ReadWholeFile(path), &structure, &error)) << error;
    return structure;
}

// The name of each product that has a file, and where it is placed, by columns.
using Placed = std::pair<std::string, std::array<double, 16>>;

void AppendPlaced(const FileStructure& structure, std::size_t product, const Transform& at,
                  std::vector<Placed>* placed) {
    const FileProduct& p = structure.products[product];
    if (!p.files.empty()) {
        const auto& m = at.linear;
        placed->push_back({p.name,
                           {m[0], m[3], m[6], 0, m[1], m[4], m[7], 0, m[2], m[5], m[8], 0, at.move.x,
                            at.move.y, at.move.z, 1}});
    }
    for (const FileUse& use : p.uses) { AppendPlaced(structure, use.child, at * use.at, placed); }
}

void ExpectWhatTheViewerPlaces(const FileStructure& structure, const nlohmann::json& report) {
    std::vector<Placed> placed;
    for (const std::size_t root : structure.roots) { AppendPlaced(structure, root, {}, &placed); }
    ASSERT_EQ(placed.size(), report["drawList"].size());
    for (std::size_t i = 0; i < placed.size(); ++i) {
        const nlohmann::json& drawn = report["drawList"][i];
        EXPECT_EQ(report["products"][drawn["product"].get<std::size_t>()]["name"], placed[i].first);
        for (std::size_t k = 0; k < 16; ++k) {
            EXPECT_NEAR(drawn["matrix"][k].get<double>(), placed[i].second[k], 1e-4) << i << " " << k;
        }
    }
}

TEST(XmlRealFiles, PartsStandWhereTheViewerHasThem) {
    const std::string path = RealFile("xml/as1-oc-214-stpx/as1-oc-214.stpx");
    if (path.empty()) { GTEST_SKIP() << "the file isn't here"; }
    const FileStructure structure = ReadFile(path);
    EXPECT_EQ(structure.products.size(), 9u);
    EXPECT_TRUE(structure.losses.empty());
    ASSERT_EQ(structure.roots.size(), 1u);
    EXPECT_EQ(structure.products[structure.roots[0]].name, "MASTER");
    ExpectWhatTheViewerPlaces(structure, LoadReport(path, nullptr, false));
}

TEST(XmlRealFiles, ForeignNamesOfFilesStayAsTheyAre) {
    const std::string path = RealFile("xml/as1-oc-214-original.stpx");
    if (path.empty()) { GTEST_SKIP() << "the file isn't here"; }
    const FileStructure structure = ReadFile(path);
    std::vector<std::string> files;
    for (const FileProduct& product : structure.products) {
        if (!product.files.empty()) { files.push_back(product.files[0]); }
    }
    EXPECT_THAT(files,
                testing::UnorderedElementsAre("nut.jt", "rod.jt", "bolt.jt", "l-bracket.jt", "plate.jt"));
}

TEST(XmlRealFiles, SmallDocumentsAreRead) {
    const std::string empty = RealFile("world/xml/bm01_ap242_bo_model_ed2.stpx");
    const std::string part = RealFile("world/xml/bm02_bo_model_resource.stpx");
    if (empty.empty() || part.empty()) { GTEST_SKIP() << "the files aren't here"; }
    EXPECT_TRUE(ReadFile(empty).products.empty());
    const FileStructure structure = ReadFile(part);
    ASSERT_EQ(structure.products.size(), 1u);
    EXPECT_EQ(structure.products[0].name, "XML value");
    EXPECT_EQ(structure.products[0].id, "P21_PRODUCT");
}

} // namespace
} // namespace tarnwick::prepare
