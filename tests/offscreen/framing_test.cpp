#include "offscreen/framing.h"

#include "offscreen/drawn_scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAreArray;
using testing::Pointwise;

// 40 degrees high, 25 from the eye, 4 to 3: as the drawing window sees.
const Lens kLens{4.0 / 3 * std::tan(M_PI / 9), std::tan(M_PI / 9), 25};

// Where a point is seen, from -1 to 1 in the picture.
std::array<double, 2> Seen(const Framing& framing, const Rotation& rotation, const float point[3]) {
    double turned[3] = {};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t k = 0; k < 3; ++k) {
            turned[row] +=
                rotation[3 * row + k] * (static_cast<double>(point[k]) - framing.centre[k]) * framing.scale;
        }
    }
    const double distance = kLens.distance - turned[2];
    return {(turned[0] + framing.across) / distance / kLens.across,
            (turned[1] + framing.up) / distance / kLens.up};
}

struct Extremes {
    double left = 9, right = -9, bottom = 9, top = -9;

    void Add(std::array<double, 2> seen) {
        left = std::min(left, seen[0]);
        right = std::max(right, seen[0]);
        bottom = std::min(bottom, seen[1]);
        top = std::max(top, seen[1]);
    }
};

const std::vector<float> kPoints{100, 100, 100, 130, 100, 100, 130, 140, 100, 100, 140, 170, 110, 90, 105};
const std::vector<std::uint32_t> kTriangles{0, 1, 2, 0, 2, 3, 0, 3, 4};

TEST(Framing, FillsThePictureAcrossOrUpInEachView) {
    DrawnScene scene;
    scene.AddPart(kPoints, kTriangles);
    scene.view.loaded.box[1] = 1e6; // whatever the box says
    for (const NamedView& named : kNamedViews) {
        const auto framing = FitDrawn(scene.view, {named.rotation}, kLens);
        ASSERT_TRUE(framing);
        Extremes seen;
        for (std::size_t i = 0; i < kPoints.size(); i += 3) {
            seen.Add(Seen(*framing, named.rotation, &kPoints[i]));
        }
        EXPECT_NEAR(std::max(seen.right - seen.left, seen.top - seen.bottom), 2 * 0.94, 1e-6) << named.name;
        EXPECT_NEAR(seen.right, -seen.left, 0.03) << named.name;
        EXPECT_NEAR(seen.top, -seen.bottom, 0.03) << named.name;
        EXPECT_LE(seen.right, 0.94 + 1e-6) << named.name;
        EXPECT_GE(seen.left, -0.94 - 1e-6) << named.name;
        EXPECT_LE(seen.top, 0.94 + 1e-6) << named.name;
        EXPECT_GE(seen.bottom, -0.94 - 1e-6) << named.name;
    }
}

TEST(Framing, OfATurntableFitsAllOfItsFrames) {
    DrawnScene scene;
    scene.AddPart(kPoints, kTriangles);
    std::vector<Rotation> rotations;
    for (int i = 0; i < 8; ++i) {
        rotations.push_back(Combined(FindView("iso")->rotation, About(2, 45.0 * i)));
    }
    const auto framing = FitDrawn(scene.view, rotations, kLens);
    ASSERT_TRUE(framing);
    Extremes seen;
    for (const Rotation& rotation : rotations) {
        for (std::size_t i = 0; i < kPoints.size(); i += 3) {
            seen.Add(Seen(*framing, rotation, &kPoints[i]));
        }
    }
    EXPECT_LE(std::max(seen.right, seen.top), 0.94 + 1e-6);
    EXPECT_GE(std::min(seen.left, seen.bottom), -0.94 - 1e-6);
    EXPECT_GE(std::max(seen.right - seen.left, seen.top - seen.bottom), 2 * 0.94 - 1e-6);
}

TEST(Framing, KeepsANeedleThatPointsAtTheEyeAwayFromIt) {
    DrawnScene scene;
    scene.AddPart({0, 0, 0, 0.01f, 0, 0, 0, 0, 1000}, {0, 1, 2});
    const auto framing = FitDrawn(scene.view, {kNoRotation}, kLens);
    ASSERT_TRUE(framing);
    EXPECT_LE(framing->scale * 500, kLens.distance / 2 + 1e-6);
}

TEST(Framing, TakesAPointForWhatItIs) {
    DrawnScene scene;
    scene.AddPart({5, 5, 5, 5, 5, 5, 5, 5, 5}, {0, 1, 2});
    const auto framing = FitDrawn(scene.view, {kNoRotation}, kLens);
    ASSERT_TRUE(framing);
    EXPECT_EQ(framing->scale, 1);
}

TEST(Framing, IsNothingWhereNothingIsDrawn) {
    EXPECT_FALSE(FitDrawn(SceneView(), {kNoRotation}, kLens));
}

TEST(Views, AreRotations) {
    for (const NamedView& named : kNamedViews) {
        Rotation transposed{};
        for (std::size_t r = 0; r < 3; ++r) {
            for (std::size_t c = 0; c < 3; ++c) { transposed[3 * c + r] = named.rotation[3 * r + c]; }
        }
        EXPECT_THAT(Combined(named.rotation, transposed), Pointwise(testing::DoubleNear(1e-12), kNoRotation))
            << named.name;
        const Rotation& m = named.rotation;
        const double determinant = m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
                                   m[2] * (m[3] * m[7] - m[4] * m[6]);
        EXPECT_NEAR(determinant, 1, 1e-12) << named.name;
    }
}

TEST(Views, AreWhatTurnsAboutTheAxesOfThePictureMake) {
    EXPECT_THAT(About(0, -90), ElementsAreArray(FindView("front")->rotation));
    EXPECT_THAT(Combined(About(0, -90), About(2, -90)), ElementsAreArray(FindView("right")->rotation));
    EXPECT_THAT(About(0, 180), ElementsAreArray(FindView("bottom")->rotation));
}

TEST(Views, HaveNoOtherNames) {
    EXPECT_EQ(FindView("side"), nullptr);
    EXPECT_EQ(FindView(""), nullptr);
}

} // namespace
} // namespace tarnwick::test
