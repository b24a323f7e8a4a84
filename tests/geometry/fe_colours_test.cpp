// The colour of a node from its section value.

#include "geometry/fe_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;

std::vector<int> ColourOf(double value, double low, double high) {
    FeNode node{};
    node.value = value;
    node.red = node.green = -7;
    node.blue = 64;
    ColourNode(&node, low, high);
    return {node.red, node.green, node.blue};
}

TEST(FeColour, IsBlackAtTheMinimumAndBelow) {
    EXPECT_THAT(ColourOf(5, 5, 5), ElementsAre(0, 0, 0));
    EXPECT_THAT(ColourOf(-1, 2, 9), ElementsAre(0, 0, 0));
    EXPECT_THAT(ColourOf(2, 2, 9), ElementsAre(0, 0, 0));
    EXPECT_THAT(ColourOf(-1, -1, 0), ElementsAre(0, 0, 0));
}

TEST(FeColour, RunsFromGreenToBlueUpTo7Point8) {
    EXPECT_THAT(ColourOf(std::nextafter(2.0, 3.0), 2, 9), ElementsAre(0, 254, 0)); // 255 less a little
    EXPECT_THAT(ColourOf(3.9, 0, 9), ElementsAre(0, 127, 127));
    EXPECT_THAT(ColourOf(7.8, 0, 9), ElementsAre(0, 0, 255));
    EXPECT_THAT(ColourOf(7.8, 1, 9), ElementsAre(0, 0, 255));
    EXPECT_THAT(ColourOf(7.8, 2, 7.8), ElementsAre(0, 0, 255));
}

TEST(FeColour, TruncatesTheDifferenceAndNotWhatIsTakenAway) {
    // c is 127.5 in each row.
    EXPECT_THAT(ColourOf(3.9, 0, 9), ElementsAre(0, 127, 127));
    EXPECT_THAT(ColourOf(9, 0, 10), ElementsAre(255, 127, 127));
}

TEST(FeColour, RunsFromBlueToWhiteUpTo8) {
    EXPECT_THAT(ColourOf(std::nextafter(7.8, 8.0), 0, 9), ElementsAre(0, 0, 255));
    EXPECT_THAT(ColourOf(7.9, 0, 9), ElementsAre(127, 127, 255));
    EXPECT_THAT(ColourOf(8, 0, 9), ElementsAre(255, 255, 255));
    EXPECT_THAT(ColourOf(8, 0, 8), ElementsAre(255, 255, 255));
    EXPECT_THAT(ColourOf(8, 8, 8), ElementsAre(255, 255, 255)); // whatever the minimum
}

TEST(FeColour, RunsFromWhiteToRedAbove8) {
    EXPECT_THAT(ColourOf(std::nextafter(8.0, 9.0), 0, 10), ElementsAre(255, 254, 254));
    EXPECT_THAT(ColourOf(9, 0, 10), ElementsAre(255, 127, 127));
    EXPECT_THAT(ColourOf(10, 0, 10), ElementsAre(255, 0, 0));
    EXPECT_THAT(ColourOf(8.5, 8.5, 8.5), ElementsAre(255, 0, 0)); // also at the minimum
}

TEST(FeColour, IsThatOfTheTableForEveryValue) {
    for (const double low : {-1.0, 0.0, 0.37, 3.0, 7.79}) {
        for (const double high : {8.3, 12.0, 1e6}) {
            for (int i = -100; i <= 1300; ++i) {
                const double v = i / 100.0;
                if (v > high) { continue; }
                std::vector<int> expected{0, 0, 0};
                if (v > 8.0) {
                    const int c = static_cast<int>(255.0 - (v - 8.0) * 255.0 / (high - 8.0));
                    expected = {255, c, c};
                } else if (v > 7.8) {
                    const int c = static_cast<int>((v - 7.8) * 255.0 / 0.20000000000000018);
                    expected = {c, c, 255};
                } else if (v > low) {
                    const double c = (v - low) * 255.0 / (7.8 - low);
                    expected = {0, static_cast<int>(255.0 - c), static_cast<int>(c)};
                }
                ASSERT_EQ(ColourOf(v, low, high), expected) << v << " of " << low << " to " << high;
                for (const int part : expected) {
                    ASSERT_GE(part, 0);
                    ASSERT_LE(part, 255);
                }
            }
        }
    }
}

TEST(FeColour, OfAValueThatIsNoNumberIsDefined) {
    const double infinite = std::numeric_limits<double>::infinity();
    for (const int part : ColourOf(infinite, 0, infinite)) {
        EXPECT_GE(part, 0);
        EXPECT_LE(part, 255);
    }
    EXPECT_THAT(ColourOf(9, 0, infinite), ElementsAre(255, 255, 255));
    ColourOf(std::numeric_limits<double>::quiet_NaN(), 0, 9);
}

TEST(FeColour, OfAModelWithOneValueIsBlack) {
    FeText text;
    text.Quad({5, 5, 5, 5});
    const FeModel run(text.Text());
    for (const FeNode& node : run.reader->nodes) {
        EXPECT_EQ(node.red + node.green + node.blue, 0);
        EXPECT_EQ(node.value, 5);
    }
}

TEST(FeColour, IsMadeWithTheLimitsOfTheWholeModel) {
    // The first quad is read before the limits are known.
    FeText text;
    text.Quad({2, 3, 9, 8.5});
    text.Quad({1, 10, 1, 1});
    const FeModel run(text.Text());
    for (const FeNode& node : run.reader->nodes) {
        EXPECT_EQ((std::vector<int>{node.red, node.green, node.blue}), ColourOf(node.value, 1, 10));
    }
}

} // namespace
} // namespace tarnwick::test
