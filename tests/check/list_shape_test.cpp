#include "check/entity_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

namespace tarnwick {
namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsInNumber(char c) {
    return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+' || c == 'E' || c == 'e';
}

bool MayStand(char c, bool starts, ValueKind values) {
    if (values == ValueKind::kReferences) { return starts ? c == '#' : c >= '0' && c <= '9'; }
    return IsInNumber(c);
}

// What ShapeOf gives, one character after the other.
ListShape PlainShape(std::string_view list, ValueKind values) {
    ListShape shape;
    const std::string_view text = Trimmed(list);
    if (text == "$") { return shape; }
    int depth = 0;
    std::int64_t valuesBefore = 0;
    char before = '\0';
    bool blankBefore = false;
    bool hasOuterValue = false;
    for (const char c : text) {
        if (IsBlank(c)) {
            blankBefore = true;
            if (depth == 1 && shape.inner > 0 && (c == ' ' || c == '\t')) { shape.blankAtEnd = true; }
            continue;
        }
        if (shape.blankAtEnd && depth == 1 && c != ')') {
            shape.blankBetween = true;
            shape.blankAtEnd = false;
        }
        if (c == '(') {
            if (before != '(' && before != ',' && before != '\0') { shape.sound = false; }
            if (++depth == 2) {
                ++shape.inner;
                valuesBefore = shape.values;
            }
        } else if (c == ')') {
            if (before == ',' || depth <= 0) { shape.sound = false; }
            if (depth-- == 2 && shape.values - valuesBefore != 3) { shape.triples = false; }
        } else if (c == ',') {
            if ((before != '1' && before != ')') || depth <= 0) { shape.sound = false; }
        } else {
            const bool starts = before != '1' || blankBefore;
            if (starts) {
                ++shape.values;
                if (depth == 1) { hasOuterValue = true; }
            }
            if (depth <= 0 || before == ')' || !MayStand(c, starts, values) || (starts && before == '1')) {
                shape.sound = false;
            }
        }
        before = c == '(' || c == ')' || c == ',' ? c : '1';
        blankBefore = false;
    }
    if (depth != 0 || before != ')' || (hasOuterValue && shape.inner > 0)) { shape.sound = false; }
    return shape;
}

void ExpectThePlainShape(const std::string& list, ValueKind values) {
    const ListShape shape = ShapeOf(list, values);
    const ListShape plain = PlainShape(list, values);
    EXPECT_EQ(shape.sound, plain.sound) << list;
    EXPECT_EQ(shape.values, plain.values) << list;
    EXPECT_EQ(shape.inner, plain.inner) << list;
    EXPECT_EQ(shape.triples, plain.triples) << list;
    EXPECT_EQ(shape.blankBetween, plain.blankBetween) << list;
    EXPECT_EQ(shape.blankAtEnd, plain.blankAtEnd) << list;
}

TEST(ListShape, IsThatOfOneCharacterAfterTheOther) {
    constexpr std::string_view kPieces[] = {
        "(1,2,3)", "(1.5,-2.E3,0.)", "(1,2)", "(",  ")", ",", "1", "-2.5", "#12", " ", "\t", "\n", "E", "'",
        "$",       "(1,2,3),",       "((",    "))", "#"};
    std::mt19937 random(7);
    std::uniform_int_distribution<std::size_t> any(0, std::size(kPieces) - 1);
    std::uniform_int_distribution<int> length(0, 12);
    for (int i = 0; i < 200000 && !HasFailure(); ++i) {
        std::string list = i % 3 == 0 ? "" : "(";
        for (int n = length(random); n > 0; --n) { list += kPieces[any(random)]; }
        if (i % 2 == 0) { list += ")"; }
        ExpectThePlainShape(list, ValueKind::kNumbers);
        ExpectThePlainShape(list, ValueKind::kReferences);
    }
}

TEST(ListShape, CountsTheValuesAndListsOfAList) {
    const ListShape shape = ShapeOf("((1,2,3),(4,5,6))");
    EXPECT_TRUE(shape.sound);
    EXPECT_TRUE(shape.triples);
    EXPECT_EQ(shape.values, 6);
    EXPECT_EQ(shape.inner, 2);
}

} // namespace
} // namespace tarnwick
