#include "p21/keyword_codes.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <string_view>

namespace tarnwick::test {
namespace {

struct Keyword {
    std::string_view literal;
    std::size_t compared;
    std::int32_t code;
    std::size_t shorterCompared = 0; // what is left when the whole prefix doesn't match: a shorter keyword
    std::int32_t shorterCode = 0;
};

constexpr Keyword kKeywords[] = {
    {"COMPLEX_TRIANGULATED_FACE", 25, 18},
    {"COORDINATES_LI", 14, 16},
    {"COMPLEX_TRIANGULATED_SURFACE_SET", 32, 20},
    {"CARTESIAN_PO", 12, 10},
    {"CLOSED_SHELL", 12, 4},
    {"COLOUR_RGB", 10, 23},
    {"CONTEXT_DEPENDENT_SHAPE_REP", 27, 25},
    {"DRAUGHTING_PRE_DEFINED_COLOUR", 29, 24},
    {"TESSELLATED_SHAPE_REPRESENTATION", 32, 12},
    {"TESSELLATED_SOLID", 17, 13},
    {"TESSELLATED_SHELL", 17, 14},
    {"TESSELLATED_WIRE", 16, 15},
    {"TRIANGULATED_FACE", 17, 17},
    {"TRIANGULATED_SURFACE_SET", 17, 19},
    {"MANIFOLD_SOL", 12, 1},
    {"MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION", 34, 22},
    {"MAKE_FROM_USAGE_OPTION", 21, 42},
    {"NEXT_ASS", 8, 26},
    {"NODE(", 5, 39},
    {"BREP_WITH_VO", 12, 2},
    {"B_SPLINE_SURF", 13, 31, 8, 30},
    {"B_SPLINE_CURV", 13, 32, 8, 30},
    {"B_SPLINE", 8, 30},
    {"OPEN_SHELL", 10, 5},
    {"ADVANCED_FAC", 12, 6},
    {"APPLIED_DOCUMENT_REF", 20, 29},
    {"EDGE_CURVE", 10, 9},
    {"EDGE_LOOP", 9, 7},
    {"VERTEX_POINT", 12, 11},
    {"FACETED_BREP", 12, 3},
    {"SURFACE_STYLE_FILL", 18, 33},
    {"SURFACE_STYLE_REND", 18, 34},
    {"SURFACE_3D_ELEMENT_REPRESENTATION", 33, 37},
    {"SURFACE_SECTION_FIELD_VARYING", 29, 38},
    {"SHAPE_DEFINITION_REPRESENTATION", 31, 41},
    {"PRODUCT(", 8, 27},
    {"PRODUCT_RELATED_PRODUCT_CAT", 27, 28},
    {"UNIFORM_SURFACE_SEC", 19, 40},
};
static_assert(std::size(kKeywords) == 38);

// The code of a text that has enough readable characters after it.
std::int32_t CodeOf(std::string text) {
    text.append(64, '\0');
    return ClassifyEntity(text.data());
}

class ClassifyKeyword : public testing::TestWithParam<Keyword> {
protected:
    std::string Prefix() const { return std::string(GetParam().literal.substr(0, GetParam().compared)); }
    // The code of a text that agrees with the keyword in its first `same` characters only.
    std::int32_t CodeWhenCutAt(std::size_t same) const {
        const Keyword& keyword = GetParam();
        return keyword.shorterCompared != 0 && same >= keyword.shorterCompared ? keyword.shorterCode : 0;
    }
};

TEST_P(ClassifyKeyword, MatchesByItsExactPrefix) {
    EXPECT_EQ(CodeOf(Prefix()), GetParam().code);
}

TEST_P(ClassifyKeyword, MatchesWithAnythingBehindThePrefix) {
    for (const char after : {'(', ' ', '~', 'X', '\t', '\n', '_', '9', '\xE9'}) {
        EXPECT_EQ(CodeOf(Prefix() + after), GetParam().code) << "after the prefix: " << after;
    }
}

TEST_P(ClassifyKeyword, MatchesAsTheWholeLiteral) {
    EXPECT_EQ(CodeOf(std::string(GetParam().literal) + "('',#1);"), GetParam().code);
}

TEST_P(ClassifyKeyword, DoesNotMatchWithOneCharacterLess) {
    const std::string shorter = Prefix().substr(0, GetParam().compared - 1);
    EXPECT_EQ(CodeOf(shorter), CodeWhenCutAt(GetParam().compared - 1));
    EXPECT_EQ(CodeOf(shorter + "~"), CodeWhenCutAt(GetParam().compared - 1));
    EXPECT_EQ(CodeOf(shorter + " ("), CodeWhenCutAt(GetParam().compared - 1));
}

TEST_P(ClassifyKeyword, DoesNotMatchWithAnyCharacterChanged) {
    for (std::size_t i = 0; i < GetParam().compared; ++i) {
        std::string changed = Prefix();
        changed[i] = '~';
        EXPECT_EQ(CodeOf(changed + "("), CodeWhenCutAt(i)) << "at character " << i;
    }
}

TEST_P(ClassifyKeyword, DoesNotMatchInSmallLetters) {
    for (std::size_t i = 0; i < GetParam().compared; ++i) {
        std::string changed = Prefix();
        const char small = static_cast<char>(std::tolower(static_cast<unsigned char>(changed[i])));
        if (small == changed[i]) { continue; }
        changed[i] = small;
        EXPECT_EQ(CodeOf(changed + "("), CodeWhenCutAt(i)) << "at character " << i;
    }
}

TEST_P(ClassifyKeyword, DoesNotMatchBehindABlank) {
    EXPECT_EQ(CodeOf(" " + Prefix()), 0);
    EXPECT_EQ(CodeOf("\t" + Prefix()), 0);
}

INSTANTIATE_TEST_SUITE_P(Table, ClassifyKeyword, testing::ValuesIn(kKeywords), [](const auto& row) {
    std::string name;
    for (const char c : row.param.literal) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
});

TEST(ClassifyEntity, TakesAnyLongerNameWithAShortPrefix) {
    EXPECT_EQ(CodeOf("TRIANGULATED_SURFING("), 19);
    EXPECT_EQ(CodeOf("MECHANICAL_DESIGN_GEOMETRIC_PRESENTERS("), 22);
    EXPECT_EQ(CodeOf("MAKE_FROM_USAGE_OPTIONS("), 42);
    EXPECT_EQ(CodeOf("MAKE_FROM_USAGE_OPTIO("), 42);
    EXPECT_EQ(CodeOf("SURFACE_STYLE_RENDERING("), 34);
    EXPECT_EQ(CodeOf("B_SPLINE_VOLUME("), 30);
    EXPECT_EQ(CodeOf("B_SPLINE_SURFACE_WITH_KNOTS("), 31);
    EXPECT_EQ(CodeOf("B_SPLINE_CURVE_WITH_KNOTS("), 32);
}

TEST(ClassifyEntity, WantsTheParenthesisOfAProductAtOnce) {
    EXPECT_EQ(CodeOf("PRODUCT ("), 0);
    EXPECT_EQ(CodeOf("PRODUCT_DEFINITION("), 0);
    EXPECT_EQ(CodeOf("PRODUCT_RELATED_PRODUCT_CATEGORY ("), 28);
    EXPECT_EQ(CodeOf("NODE ("), 0);
    EXPECT_EQ(CodeOf("NODE_SET("), 0);
}

TEST(ClassifyEntity, GivesZeroToAllElse) {
    EXPECT_EQ(CodeOf(""), 0);
    EXPECT_EQ(CodeOf("("), 0);
    EXPECT_EQ(CodeOf("(NAMED_UNIT(*)SI_UNIT($,.RADIAN.)PLANE_ANGLE_UNIT())"), 0);
    EXPECT_EQ(CodeOf("SHAPE_REPRESENTATION("), 0);
    EXPECT_EQ(CodeOf("COMPLEX_TRIANGULATED_SURFACE_SE("), 0);
    for (int first = 0; first < 256; ++first) {
        EXPECT_EQ(CodeOf(std::string(1, static_cast<char>(first))), 0);
    }
}

TEST(ClassifyEntity, NeverGivesAnUnusedCode) {
    for (const Keyword& keyword : kKeywords) {
        EXPECT_TRUE(keyword.code != 8 && keyword.code != 21 && keyword.code != 35 && keyword.code != 36);
    }
}

} // namespace
} // namespace tarnwick::test
