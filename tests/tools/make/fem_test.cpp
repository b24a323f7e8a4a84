#include "tools/make/fem.h"

#include "tools/make/panel.h"
#include "written.h"

#include <gtest/gtest.h>

#include <set>

namespace tarnwick::make {
namespace {

std::string FemText(const FemOptions& o) {
    return Written([&](P21Writer* out) { WriteFem(o, out); });
}

TEST(MakeFem, HasExactlyTheQuadsAskedFor) {
    for (const int quads : {1, 2, 7, 97, 400, 1009}) {
        FemOptions o;
        o.quads = quads;
        const std::string text = FemText(o);
        EXPECT_EQ(text, FemText(o));
        const P21File file = Parse(text);
        const std::vector<int> elements = IdsOf(file, "SURFACE_3D_ELEMENT_REPRESENTATION");
        EXPECT_EQ(elements.size(), static_cast<std::size_t>(quads));
        for (const int id : elements) {
            const std::vector<P21Value>& arguments = ArgumentsOf(file, id);
            const std::vector<int> nodes = ReferencesIn(arguments.at(3));
            EXPECT_EQ(std::set<int>(nodes.begin(), nodes.end()).size(), 4u);
            for (const int node : nodes) { EXPECT_EQ(KeywordOf(file, node), "NODE"); }
            const int property = ReferencesIn(arguments.at(6))[0];
            const int field = ReferencesIn(ArgumentsOf(file, property))[0];
            EXPECT_EQ(KeywordOf(file, field), "SURFACE_SECTION_FIELD_VARYING");
            EXPECT_EQ(ReferencesIn(ArgumentsOf(file, field)).size(), 4u);
        }
    }
}

TEST(MakeFem, IsOfTheAnalysisSchema) {
    EXPECT_NE(FemText({}).find("\nFILE_SCHEMA(('AP209_"), std::string::npos);
}

TEST(MakeFem, ThicknessReachesBelowBetweenAndAboveTheColourLimits) {
    const Panel panel(2000, 1);
    int least = 0;
    int below = 0;
    int between = 0;
    int above = 0;
    for (int row = 0; row <= panel.Rows(); ++row) {
        for (int column = 0; column <= panel.Columns(); ++column) {
            int t = panel.Thickness(column, row);
            ++(t == 500 ? least : t <= 780 ? below : t <= 800 ? between : above);
        }
    }
    for (const int count : {least, below, between, above}) EXPECT_GT(count, 50);
}

} // namespace
} // namespace tarnwick::make
