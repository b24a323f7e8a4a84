// Parts and lines of a size that nobody meant: each loads, in time and memory that grow as the file does.

#include "support/loaded_view.h"
#include "support/p21_text.h"
#include "support/sanitized.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tarnwick::test {
namespace {

constexpr int kMany = kSanitized ? 20000 : 200000;
const char* const kPoints = "COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)));\n";

std::string Number(int n) {
    return "#" + std::to_string(n);
}

// A part of one shell; its lines are numbered from 1, 2, 3 and 4.
std::string Shell(const std::string& faceIds, const std::string& lines) {
    return P21Header() + "#1=PRODUCT('P','','',());\n#2=" + kPoints + "#3=TESSELLATED_SHELL('',(" + faceIds +
           "),$);\n#4=TESSELLATED_SHAPE_REPRESENTATION('',(#3),#9);\n" + lines +
           "ENDSEC;\nEND-ISO-10303-21;\n";
}

TEST(LargePart, MayHaveAnyNumberOfFaces) {
    std::string ids;
    std::string lines;
    for (int i = 0; i < kMany; ++i) {
        if (i > 0) { ids += ','; }
        ids += Number(10 + i);
        lines += Number(10 + i) + "=TRIANGULATED_FACE('',#2,3,$,$,$,((1,2,3)));\n";
    }
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("x.stp", Shell(ids, lines)));
    EXPECT_EQ(view.loaded.drawnTriangles, kMany);
    EXPECT_EQ(view.Faces().size(), static_cast<std::size_t>(kMany));
}

TEST(LargePart, MayHaveAFaceOfAnyLength) {
    std::string lines = "#10=TRIANGULATED_FACE('',#2,3,$,$,$,(";
    for (int i = 0; i < 10 * kMany; ++i) { lines += i == 0 ? "(1,2,3)" : ",(1,2,3)"; }
    lines += "));\n";
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("x.stp", Shell("#10", lines)));
    EXPECT_EQ(view.loaded.drawnTriangles, 10 * kMany);
}

TEST(LargePart, MayHaveALineOfAnyLengthThatNobodyReads) {
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("x.stp", Shell("#10", "#10=TRIANGULATED_FACE('',#2,3,$,$,$,((1,2,3)));\n#11=X('" +
                                                     std::string(std::size_t{100} * kMany, 'x') + "');\n")));
    EXPECT_EQ(view.loaded.drawnTriangles, 1);
}

// In a table of this many lines the numbers k * 2^bits and 1 all belong to one bucket.
TEST(LargePart, MayHaveManyLinesOfOneNumberAheadOfThoseThatItNeeds) {
    constexpr int kLines = kMany / 2;
    std::int32_t bits = 2;
    for (std::int32_t n = 2 * kLines + 6; n > 5; n /= 2) { ++bits; }
    const std::string points = Number(1 << bits);
    std::string ids;
    std::string lines;
    for (int i = 0; i < kLines; ++i) {
        if (i > 0) { ids += ','; }
        ids += Number(10 + i);
        lines += "#1=A;\n";
        lines += Number(10 + i) + "=TRIANGULATED_FACE('',";
        lines += points;
        lines += ",3,$,$,$,((1,2,3)));\n";
    }
    lines += points + "=" + kPoints;
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("x.stp", Shell(ids, lines)));
    EXPECT_EQ(view.loaded.drawnTriangles, kLines);
    EXPECT_STREQ(view.loaded.root->name, "P") << "the first of them counts";
}

// A shell of as many faces as there may be, each with a style of its own: an opacity, and the name of its
// SURFACE_SIDE_STYLE.
std::string StyledShell(int count, std::string_view sideStyleName, int opacityStep) {
    std::string ids;
    std::string styled;
    std::string lines = "#5=COLOUR_RGB('',0.1,0.2,0.3);\n";
    for (int i = 0; i < count; ++i) {
        const int n = 100 + 10 * i;
        if (i > 0) {
            ids += ',';
            styled += ',';
        }
        ids += Number(n);
        styled += Number(n + 6);
        lines += Number(n) + "=TRIANGULATED_FACE('',#2,3,$,$,$,((1,2,3)));\n";
        lines += Number(n + 1) + "=SURFACE_STYLE_TRANSPARENT(" + std::to_string(i * opacityStep) + ".);\n";
        lines += Number(n + 2) + "=SURFACE_STYLE_RENDERING_WITH_PROPERTIES($,#5,(" + Number(n + 1) + "));\n";
        lines += Number(n + 3) + "=SURFACE_SIDE_STYLE('" + std::string(sideStyleName) + "',(" +
                 Number(n + 2) + "));\n";
        lines += Number(n + 4) + "=SURFACE_STYLE_USAGE(.BOTH.," + Number(n + 3) + ");\n";
        lines += Number(n + 5) + "=PRESENTATION_STYLE_ASSIGNMENT((" + Number(n + 4) + "));\n";
        lines += Number(n + 6) + "=STYLED_ITEM('',(" + Number(n + 5) + ")," + Number(n) + ");\n";
    }
    lines += "#6=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(" + styled + "),#9);\n";
    return Shell(ids, lines);
}

TEST(LargePart, MayHaveAnyNumberOfTransparenciesOfOneColour) {
    constexpr int kStyles = kMany / 5;
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("x.stp", StyledShell(kStyles, "", 1)));
    const auto faces = view.Faces();
    ASSERT_EQ(faces.size(), static_cast<std::size_t>(kStyles));
    for (int i = 0; i < kStyles; ++i) {
        ASSERT_EQ(faces[static_cast<std::size_t>(i)]->colour[3], static_cast<float>(i));
        ASSERT_EQ(faces[static_cast<std::size_t>(i)]->colour[0], 0.1f);
    }
}

// The walk past such a name finds no comma outside the parentheses up to the end of the file.
TEST(LargePart, MayHaveAnyNumberOfStylesWithAnOpenParenthesisInTheirName) {
    constexpr int kStyles = kMany / 5;
    const TempFolder folder;
    CountingView view;
    view.Load(folder.Write("x.stp", StyledShell(kStyles, "(", 0)));
    EXPECT_EQ(view.Faces().size(), static_cast<std::size_t>(kStyles));
    EXPECT_NE(view.Faces()[0]->colour[0], 0.1f) << "such a style is left out";
}

} // namespace
} // namespace tarnwick::test
