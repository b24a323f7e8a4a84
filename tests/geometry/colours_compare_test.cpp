// The table of colours and the index of styled items against the plain search through the whole table.

#include "geometry/part_file.h"
#include "support/p21_text.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

struct Row {
    int colour;
    double red;
    float alpha;
};

// What stands in a file: colours by number with a red value, styles with a colour and an alpha, styled items.
struct Style {
    int colour;
    float alpha;
};
struct Case {
    std::vector<std::pair<int, int>> colours; // number, red
    std::vector<Style> styles;
    std::vector<std::pair<int, int>> styled; // style, item
};

constexpr int kFirstFace = 30;
constexpr int kFaces = 12;

std::string TextOf(const Case& made) {
    Lines lines{kSquare};
    std::string solid = "#20=TESSELLATED_SOLID('',(";
    for (int face = 0; face < kFaces; ++face) {
        lines.push_back(FaceLine(kFirstFace + face));
        solid += (face > 0 ? ",#" : "#") + std::to_string(kFirstFace + face);
    }
    lines.push_back(solid + "),$);");
    for (const auto& [number, red] : made.colours) {
        lines.push_back("#" + std::to_string(number) + "=COLOUR_RGB(''," + std::to_string(red) + ".,0.,0.);");
    }
    std::string list;
    for (std::size_t i = 0; i < made.styles.size(); ++i) {
        const auto id = [i](int n) { return "#" + std::to_string(1000 + 10 * static_cast<int>(i) + n); };
        lines.push_back(id(0) + "=PRESENTATION_STYLE_ASSIGNMENT((" + id(1) + "));");
        lines.push_back(id(1) + "=SURFACE_STYLE_USAGE(.BOTH.," + id(2) + ");");
        lines.push_back(id(2) + "=SURFACE_SIDE_STYLE('',(" + id(3) + "));");
        lines.push_back(id(3) + "=SURFACE_STYLE_RENDERING_WITH_PROPERTIES(.NORMAL.,#" +
                        std::to_string(made.styles[i].colour) + ",(" + id(4) + "));");
        lines.push_back(id(4) + "=SURFACE_STYLE_TRANSPARENT(" + std::to_string(made.styles[i].alpha) + ");");
    }
    for (std::size_t i = 0; i < made.styled.size(); ++i) {
        const std::string id = "#" + std::to_string(5000 + static_cast<int>(i));
        list += (i > 0 ? "," : "") + id;
        lines.push_back(id + "=STYLED_ITEM('',(#" + std::to_string(1000 + 10 * made.styled[i].first) + "),#" +
                        std::to_string(made.styled[i].second) + ");");
    }
    lines.push_back("#900=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(" + list + "),#9);");
    return PartText("(#20)", lines);
}

// The colour that each face gets, by number; those without are not in it.
std::map<int, std::pair<double, float>> PlainColours(const Case& made) {
    std::vector<Row> rows;
    for (const auto& [number, red] : made.colours) {
        // A look-up by number finds the first line of that number.
        int first = red;
        for (const auto& other : made.colours) {
            if (other.first == number) {
                first = other.second;
                break;
            }
        }
        rows.push_back({number, static_cast<double>(first), -1.0f});
    }
    std::map<int, std::size_t> rowOfStyle;
    std::map<int, std::size_t> rowOfItem;
    for (const auto& [style, item] : made.styled) {
        if (rowOfStyle.count(style) == 0) {
            const Style& wanted = made.styles[static_cast<std::size_t>(style)];
            std::size_t candidate = rows.size();
            for (std::size_t i = 0; i < rows.size(); ++i) {
                if (rows[i].colour != wanted.colour) { continue; }
                candidate = i;
                if (rows[i].alpha == -1.0f || rows[i].alpha == wanted.alpha) { break; }
            }
            if (candidate == rows.size()) { continue; }
            if (rows[candidate].alpha != -1.0f && rows[candidate].alpha != wanted.alpha) {
                rows.push_back(rows[candidate]);
                candidate = rows.size() - 1;
            }
            rows[candidate].alpha = wanted.alpha;
            rowOfStyle[style] = candidate;
        }
        rowOfItem.emplace(item, rowOfStyle[style]);
    }
    std::map<int, std::pair<double, float>> colours;
    for (const auto& [item, row] : rowOfItem) { colours[item] = {rows[row].red, rows[row].alpha}; }
    return colours;
}

TEST(ColoursEqualTheirPlainForm, OnStylesThatShareColoursAndAlphas) {
    std::mt19937 random(6);
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<std::uint32_t>(limit));
    };
    constexpr float kAlphas[] = {0.0f, 0.25f, 0.5f, 1.0f, -1.0f, 2.0f};
    for (int n = 0; n < 1000; ++n) {
        Case made;
        for (int i = below(8); i > 0; --i) { made.colours.emplace_back(100 + below(5), 1 + below(1000)); }
        for (int i = 1 + below(10); i > 0; --i) {
            made.styles.push_back({100 + below(6), kAlphas[below(6)]});
        }
        for (int i = below(20); i > 0; --i) {
            made.styled.emplace_back(below(static_cast<int>(made.styles.size())),
                                     kFirstFace - 1 + below(kFaces));
        }
        const std::string text = TextOf(made);
        const PartFile part(text);
        const auto expected = PlainColours(made);
        ASSERT_EQ(part.scratch.faces.size(), static_cast<std::size_t>(kFaces));
        for (const StepFaceB* const face : part.scratch.faces) {
            const auto found = expected.find(face->faceId);
            if (found == expected.end()) {
                ASSERT_EQ(ColourOf(*face), kDefaultColour) << text;
            } else {
                ASSERT_EQ(static_cast<double>(face->colour[0]), found->second.first) << text;
                ASSERT_EQ(face->colour[3], found->second.second) << text;
            }
        }
    }
}

} // namespace
} // namespace tarnwick::test
