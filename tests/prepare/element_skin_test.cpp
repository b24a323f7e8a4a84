#include "prepare/elements/element_skin.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>
#include <vector>

namespace tarnwick::prepare {
namespace {

std::vector<Vec3> PointsOf(ElementShape shape) {
    switch (shape) {
    case ElementShape::kTetrahedron:
        return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    case ElementShape::kPyramid:
        return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}};
    case ElementShape::kWedge:
        return {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}};
    default:
        return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
    }
}

double VolumeIn(const std::vector<Quad>& quads, const std::vector<Vec3>& nodes) {
    double volume = 0;
    for (const Quad& q : quads) {
        volume += Dot(nodes[q[0]], Cross(nodes[q[1]], nodes[q[2]])) / 6;
        volume += Dot(nodes[q[0]], Cross(nodes[q[2]], nodes[q[3]])) / 6;
    }
    return volume;
}

// Each edge runs once in either direction.
bool IsClosed(const std::vector<Quad>& quads) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    for (const Quad& q : quads) {
        for (std::size_t i = 0; i < 4; ++i) {
            const std::uint32_t a = q[i];
            const std::uint32_t b = q[(i + 1) % 4];
            if (a != b) { edges[std::minmax(a, b)] += a < b ? 1 : -1; }
        }
    }
    return std::all_of(edges.begin(), edges.end(), [](const auto& edge) { return edge.second == 0; });
}

constexpr std::pair<ElementShape, double> kVolumes[] = {{ElementShape::kTetrahedron, 1.0 / 6},
                                                        {ElementShape::kPyramid, 1.0 / 3},
                                                        {ElementShape::kWedge, 0.5},
                                                        {ElementShape::kHexahedron, 1}};

TEST(ElementSkin, FacesOfEveryShapeEncloseItSeenFromOutside) {
    for (const auto& [shape, volume] : kVolumes) {
        const std::vector<Vec3> points = PointsOf(shape);
        std::vector<std::uint32_t> corners(points.size());
        std::iota(corners.begin(), corners.end(), 0u);
        std::vector<Quad> faces;
        AppendFaces(shape, corners, points, &faces);
        EXPECT_TRUE(IsClosed(faces));
        EXPECT_NEAR(VolumeIn(faces, points), volume, 1e-12);
        EXPECT_EQ(SkinOf(faces), faces);
    }
}

TEST(ElementSkin, MirroredNodesAreTurnedAround) {
    for (const auto& [shape, volume] : kVolumes) {
        std::vector<Vec3> points = PointsOf(shape);
        for (Vec3& point : points) { point.x = -point.x; }
        std::vector<std::uint32_t> corners(points.size());
        std::iota(corners.begin(), corners.end(), 0u);
        std::vector<Quad> faces;
        AppendFaces(shape, corners, points, &faces);
        EXPECT_TRUE(IsClosed(faces));
        EXPECT_NEAR(VolumeIn(faces, points), volume, 1e-12);
    }
}

TEST(ElementSkin, FacesBetweenVolumesArentInIt) {
    std::vector<Vec3> points;
    for (int i = 0; i < 3; ++i) {
        for (const Vec3 corner : {Vec3{0, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 1, 1}, Vec3{0, 0, 1}}) {
            points.push_back(corner + Vec3{static_cast<double>(i), 0, 0});
        }
    }
    const std::vector<std::uint32_t> first{0, 1, 2, 3, 4, 5, 6, 7};
    const std::vector<std::uint32_t> second{4, 5, 6, 7, 8, 9, 10, 11};
    std::vector<Quad> faces;
    AppendFaces(ElementShape::kHexahedron, first, points, &faces);
    AppendFaces(ElementShape::kHexahedron, second, points, &faces);
    const std::vector<Quad> skin = SkinOf(faces);
    EXPECT_EQ(skin.size(), 10u);
    EXPECT_TRUE(IsClosed(skin));
    EXPECT_NEAR(VolumeIn(skin, points), 2, 1e-12);
    // The same volume twice doesn't take itself away.
    AppendFaces(ElementShape::kHexahedron, first, points, &faces);
    EXPECT_EQ(SkinOf(faces).size(), 10u);
}

TEST(ElementSkin, AHexahedronWithAFoldedFaceIsAWedge) {
    const std::vector<Vec3> points = PointsOf(ElementShape::kHexahedron);
    const std::vector<std::uint32_t> corners{0, 1, 2, 2, 4, 5, 6, 6};
    std::vector<Quad> faces;
    AppendFaces(ElementShape::kHexahedron, corners, points, &faces);
    EXPECT_EQ(faces.size(), 5u);
    EXPECT_TRUE(IsClosed(faces));
    EXPECT_NEAR(VolumeIn(faces, points), 0.5, 1e-12);
}

} // namespace
} // namespace tarnwick::prepare
