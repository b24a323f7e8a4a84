// Rotation and translation of an occurrence from two AXIS2_PLACEMENT_3D.

#include "product/structure_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

constexpr std::array<double, 9> kIdentity{1, 0, 0, 0, 1, 0, 0, 0, 1};

struct Placed {
    std::array<double, 9> rotation;
    std::array<double, 3> translation;
    std::string console;
};

// The one occurrence of a text.
Placed PlacedBy(const std::string& text) {
    StructureRun run;
    run.ReadTop(text);
    Placed placed{};
    const ProductNode* const top = run.Find("top");
    EXPECT_NE(top, nullptr);
    EXPECT_EQ(top->occurrenceCount, 1);
    std::copy_n(top->occurrences[0]->rotation, 9, placed.rotation.begin());
    std::copy_n(top->occurrences[0]->translation, 3, placed.translation.begin());
    placed.console = run.console;
    return placed;
}

Placed PlacedBy(const Frame& source, const Frame& target) {
    AssemblyText text;
    const int top = text.Product("top");
    text.Use(top, text.Product("leaf"), target, source);
    return PlacedBy(text.Text());
}

// The rows X, W, Z of a frame, where W is the cross product Z by X with the sign of its y turned over.
std::array<double, 9> RowsOf(const Frame& frame) {
    const auto& x = frame.reference;
    const auto& z = frame.axis;
    const double crossX = z[1] * x[2] - z[2] * x[1];
    const double crossY = z[2] * x[0] - z[0] * x[2];
    const double crossZ = z[0] * x[1] - z[1] * x[0];
    return {x[0], x[1], x[2], crossX, -crossY, crossZ, z[0], z[1], z[2]};
}

TEST(Placement, OnAWorldAlignedSourceIsTheTargetsRowsWithTheMiddleTurnedOver) {
    Frame target;
    target.reference = {0, 1, 0};
    const Placed placed = PlacedBy({}, target);
    EXPECT_THAT(placed.rotation, ElementsAre(0, 1, 0, 1, 0, 0, 0, 0, 1));
    EXPECT_THAT(placed.translation, ElementsAre(0, 0, 0));
}

TEST(Placement, OnEqualFramesIsTheIdentity) {
    EXPECT_THAT(PlacedBy({}, {}).rotation, ElementsAreArray(kIdentity));
}

TEST(Placement, MovesByTheDifferenceOfTheOriginsWhateverTheFrames) {
    Frame source = At(1, 2, 3);
    source.reference = {0, 1, 0};
    Frame target = At(11, 22, 33);
    target.axis = {0, 1, 0};
    EXPECT_THAT(PlacedBy(source, target).translation, ElementsAre(10, 20, 30));
    EXPECT_THAT(PlacedBy(target, source).translation, ElementsAre(-10, -20, -30));
}

TEST(Placement, KeepsAllDigitsOfF64) {
    const double x = 1234567.8901234567;
    EXPECT_THAT(PlacedBy({}, At(x, 0, 0)).translation[0], ::testing::DoubleNear(x, 1e-8));
    EXPECT_NE(PlacedBy({}, At(x, 0, 0)).translation[0], static_cast<double>(static_cast<float>(x)));
}

TEST(Placement, SolvesSourceTimesRotationIsTarget) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> value(-2, 2);
    for (int round = 0; round < 50; ++round) {
        Frame source;
        Frame target;
        for (auto* const frame : {&source, &target}) {
            for (auto* const triple : {&frame->axis, &frame->reference}) {
                for (double& v : *triple) { v = std::round(value(random) * 1000) / 1000; }
            }
        }
        const std::array<double, 9> a = RowsOf(source);
        const std::array<double, 9> b = RowsOf(target);
        const std::array<double, 9> r = PlacedBy(source, target).rotation;
        const double determinant = a[0] * (a[4] * a[8] - a[5] * a[7]) - a[1] * (a[3] * a[8] - a[5] * a[6]) +
                                   a[2] * (a[3] * a[7] - a[4] * a[6]);
        if (std::fabs(determinant) < 0.01) { continue; }
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t j = 0; j < 3; ++j) {
                const double product = a[3 * i] * r[j] + a[3 * i + 1] * r[3 + j] + a[3 * i + 2] * r[6 + j];
                EXPECT_NEAR(product, b[3 * i + j], 1e-9 / std::fabs(determinant));
            }
        }
    }
}

TEST(Placement, DoesNotNormaliseDirections) {
    Frame target;
    target.reference = {2, 0, 0};
    target.axis = {0, 0, 3};
    // X, W (2 times 3, turned over, against the source's -1), Z.
    EXPECT_THAT(PlacedBy({}, target).rotation, ElementsAre(2, 0, 0, 0, 6, 0, 0, 0, 3));
    EXPECT_THAT(PlacedBy(target, {}).rotation, ElementsAre(0.5, 0, 0, 0, ::testing::DoubleEq(1.0 / 6), 0, 0,
                                                           0, ::testing::DoubleEq(1.0 / 3)));
}

TEST(Placement, OfATurnedSourceIsNotARotation) {
    Frame source;
    source.reference = {0, 1, 0};
    // inverse of ((0,1,0),(-1,0,0),(0,0,1)) times ((1,0,0),(0,-1,0),(0,0,1)); the first has W turned over
    // nowhere, since its y is 0.
    EXPECT_THAT(PlacedBy(source, {}).rotation, ElementsAre(0, 1, 0, 1, 0, 0, 0, 0, 1));
}

TEST(Placement, OfASingularSourceIsTheIdentityAndTheTranslation) {
    Frame source = At(1, 1, 1);
    source.axis = {1, 0, 0}; // along the reference direction
    const Placed placed = PlacedBy(source, At(5, 6, 7));
    EXPECT_THAT(placed.rotation, ElementsAreArray(kIdentity));
    EXPECT_THAT(placed.translation, ElementsAre(4, 5, 6));
    EXPECT_EQ(placed.console, "");
}

TEST(Placement, OfASingularTargetIsAllThatIsLeftOfIt) {
    Frame target;
    target.axis = {1, 0, 0};
    EXPECT_THAT(PlacedBy({}, target).rotation, ElementsAre(1, 0, 0, 0, 0, 0, 1, 0, 0));
}

TEST(Placement, CountsASourceThatIsMissingAsZeros) {
    Chain chain;
    chain.lines.erase(Chain::kSource);
    const Placed placed = PlacedBy(chain.Text());
    EXPECT_THAT(placed.rotation, ElementsAreArray(kIdentity));
    EXPECT_THAT(placed.translation, ElementsAre(1, 2, 3));
    EXPECT_EQ(placed.console, "");
}

TEST(Placement, CountsATargetThatIsMissingAsZeros) {
    Chain chain;
    chain.lines[Chain::kOrigin] = "CARTESIAN_POINT('',(10.,20.,30.))";
    chain.lines.erase(Chain::kTarget);
    const Placed placed = PlacedBy(chain.Text());
    EXPECT_THAT(placed.rotation, ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(placed.translation, ElementsAre(-10, -20, -30));
}

TEST(Placement, KeepsWhatWasReadBeforeAMissingDirection) {
    Chain chain;
    chain.lines[Chain::kOrigin] = "CARTESIAN_POINT('',(10.,20.,30.))";
    chain.lines[Chain::kSource] = "AXIS2_PLACEMENT_3D('',#7,#50,#9)";
    const Placed placed = PlacedBy(chain.Text());
    // The location stands, the axis doesn't, and the reference direction after it isn't read.
    EXPECT_THAT(placed.rotation, ElementsAreArray(kIdentity));
    EXPECT_THAT(placed.translation, ElementsAre(-9, -18, -27));
}

TEST(Placement, ReadsACoordinateBehindABlankAsZero) {
    const Placed placed = PlacedBy(Chain().With(Chain::kPlace, "CARTESIAN_POINT('', (1.,2.,3.))"));
    EXPECT_THAT(placed.translation, ElementsAre(0, 2, 3));
}

TEST(Placement, ReadsNumbersBehindBlanks) {
    const Placed placed =
        PlacedBy(Chain().With(Chain::kPlace, "CARTESIAN_POINT('',( 1.5 ,\t-2.5E0 , 3.E1 ))"));
    EXPECT_THAT(placed.translation, ElementsAre(1.5, -2.5, 30));
}

TEST(Placement, LosesTheListToACommaInTheName) {
    // Behind the first comma of the line stands " b'", of which one character is stepped over.
    const Placed placed = PlacedBy(Chain().With(Chain::kPlace, "CARTESIAN_POINT('a, b',(1.,2.,3.))"));
    EXPECT_THAT(placed.translation, ElementsAre(0, 0, 2));
}

TEST(Placement, ReadsADollarAsWhateverReferenceComesNext) {
    // The axis is taken to be #13, the transformation after, whose list begins with "''"; the reference is
    // its #10, whose list is taken to begin with the digit of "#7".
    const Placed placed = PlacedBy(Chain().With(Chain::kTarget, "AXIS2_PLACEMENT_3D('',#11,$,$)"));
    EXPECT_THAT(placed.rotation, ElementsAre(7, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(placed.translation, ElementsAre(1, 2, 3));
    EXPECT_EQ(placed.console, "");
}

TEST(Placement, TakesItsPlacementsFromTheThirdAttributeOn) {
    const Placed placed =
        PlacedBy(Chain().With(Chain::kTransform, "ITEM_DEFINED_TRANSFORMATION('a','b',#12,#10)"));
    EXPECT_THAT(placed.translation, ElementsAre(-1, -2, -3));
}

TEST(Placement, LeavesTheTextAsItWas) {
    // Two occurrences by the same lines come out equal.
    AssemblyText text;
    const int top = text.Product("top");
    const int leaf = text.Product("leaf");
    Frame frame = At(1.5, -2.5, 3.5);
    frame.reference = {0.6, 0.8, 0};
    const int from = text.Placement({});
    const int to = text.Placement(frame);
    const int transform = text.Line("ITEM_DEFINED_TRANSFORMATION('','',#" + std::to_string(from) + ",#" +
                                    std::to_string(to) + ")");
    text.UseWith(top, leaf, transform);
    text.UseWith(top, leaf, transform);
    StructureRun run;
    run.ReadTop(text.Text());
    const ProductNode& product = *run.Find("top");
    ASSERT_EQ(product.occurrenceCount, 2);
    EXPECT_THAT(product.occurrences[1]->rotation, ElementsAreArray(product.occurrences[0]->rotation));
    EXPECT_THAT(product.occurrences[1]->translation, ElementsAre(1.5, -2.5, 3.5));
}

} // namespace
} // namespace tarnwick::test
