#include "tools/make/shapes/mesh.h"

#include "tools/make/shapes/mix.h"
#include "tools/make/shapes/shapes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <tuple>

namespace tarnwick::make {
namespace {

constexpr Shape kAllShapes[] = {Shape::kPlate, Shape::kGear,   Shape::kBolt,   Shape::kFlange,
                                Shape::kShaft, Shape::kWasher, Shape::kBracket};

ShapeDims DimsFor(Shape shape, std::size_t triangles, std::uint64_t seed) {
    Prng prng(seed);
    return RandomDims(shape, triangles, &prng);
}

using Edge = std::array<double, 6>;

void ExpectClosed(const Solid& solid) {
    std::map<Edge, int> edges;
    for (const Face& face : solid.faces) {
        std::vector<Triangle> triangles;
        AppendTriangles(face, &triangles);
        for (const Triangle& t : triangles) {
            for (std::size_t i = 0; i < 3; ++i) {
                const Vec3 a = face.points[t[i]];
                const Vec3 b = face.points[t[(i + 1) % 3]];
                ++edges[{a.x, a.y, a.z, b.x, b.y, b.z}];
            }
        }
    }
    std::size_t open = 0;
    for (const auto& [e, count] : edges) {
        const auto back = edges.find({e[3], e[4], e[5], e[0], e[1], e[2]});
        if (count != 1 || back == edges.end() || back->second != 1) ++open;
    }
    EXPECT_EQ(open, 0u);
}

double Volume(const Solid& solid) {
    double volume = 0;
    for (const Face& face : solid.faces) {
        std::vector<Triangle> triangles;
        AppendTriangles(face, &triangles);
        for (const Triangle& t : triangles)
            volume += Dot(face.points[t[0]], Cross(face.points[t[1]], face.points[t[2]])) / 6;
    }
    return volume;
}

void ExpectUnitNormalsOutward(const Solid& solid) {
    for (const Face& face : solid.faces) {
        ASSERT_EQ(face.normals.size(), face.points.size());
        for (const Vec3 n : face.normals) ASSERT_NEAR(Length(n), 1, 1e-9);
        std::vector<Triangle> triangles;
        AppendTriangles(face, &triangles);
        for (const Triangle& t : triangles) {
            const Vec3 a = face.points[t[0]];
            const Vec3 b = face.points[t[1]];
            const Vec3 c = face.points[t[2]];
            const Vec3 outward = Cross(b - a, c - a);
            ASSERT_GT(Length(outward), 0);
            for (const Index v : t) ASSERT_GT(Dot(face.normals[v], outward) / Length(outward), 0.5);
        }
    }
}

using Corners = std::array<Vec3, 3>;

std::vector<Corners> CornersOf(const Face& face) {
    std::vector<Triangle> triangles;
    AppendTriangles(face, &triangles);
    std::vector<Corners> all;
    const auto less = [](Vec3 a, Vec3 b) { return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z); };
    for (const Triangle& t : triangles) {
        Corners c{face.points[t[0]], face.points[t[1]], face.points[t[2]]};
        std::rotate(c.begin(), std::min_element(c.begin(), c.end(), less), c.end());
        all.push_back(c);
    }
    std::sort(all.begin(), all.end(), [&](const Corners& a, const Corners& b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), less);
    });
    return all;
}

struct MeshCase {
    Shape shape;
    std::size_t triangles;
};

class MakeMesh : public testing::TestWithParam<MeshCase> {
protected:
    Solid Make(std::uint64_t seed) const {
        return MakeSolid(DimsFor(GetParam().shape, GetParam().triangles, seed), GetParam().triangles);
    }
};

std::vector<MeshCase> MeshCases() {
    std::vector<MeshCase> cases;
    for (const Shape shape : kAllShapes)
        for (const std::size_t triangles : {1u, 700u, 1000u, 3500u, 20000u})
            cases.push_back({shape, triangles});
    return cases;
}
std::string NameOf(const MeshCase& c) {
    constexpr const char* kNames[] = {"Plate", "Gear", "Bolt", "Flange", "Shaft", "Washer", "Bracket"};
    return kNames[static_cast<std::size_t>(c.shape)] + ("Of" + std::to_string(c.triangles));
}
void PrintTo(const MeshCase& c, std::ostream* out) {
    *out << NameOf(c);
}
std::string MeshCaseName(const testing::TestParamInfo<MeshCase>& info) {
    return NameOf(info.param);
}
INSTANTIATE_TEST_SUITE_P(AllShapes, MakeMesh, testing::ValuesIn(MeshCases()), MeshCaseName);

TEST_P(MakeMesh, UsesEveryEdgeOnceInEachDirection) {
    for (const std::uint64_t seed : {1u, 2u, 3u}) ExpectClosed(Make(seed));
}

TEST_P(MakeMesh, StaysClosedWhereverItStands) {
    Solid solid = Make(4);
    Placement at{{123.4, -56.7, 8.9}, Unit({1, 2, 3}), Unit({3, 0, -1})};
    PlaceMesh(at, &solid);
    ExpectClosed(solid);
    ExpectUnitNormalsOutward(solid);
}

TEST_P(MakeMesh, HasUnitNormalsThatPointOutward) {
    for (const std::uint64_t seed : {1u, 2u, 3u}) {
        const Solid solid = Make(seed);
        ExpectUnitNormalsOutward(solid);
        EXPECT_GT(Volume(solid), 0);
    }
}

TEST(MakeShapes, HaveTheTrianglesAskedForWithinFivePercentFromAThousandOn) {
    for (const Shape shape : kAllShapes) {
        for (const std::size_t asked : {1000u, 1300u, 3500u, 9000u, 20000u, 77777u}) {
            for (const std::uint64_t seed : {1u, 2u, 3u, 4u, 5u}) {
                auto count =
                    static_cast<double>(TriangleCount(MakeSolid(DimsFor(shape, asked, seed), asked)));
                EXPECT_NEAR(count, static_cast<double>(asked), 0.05 * static_cast<double>(asked))
                    << "shape " << static_cast<int>(shape) << " seed " << seed;
            }
        }
    }
}

TEST_P(MakeMesh, HasNoFewerTrianglesThanItsCoarsestForm) {
    const ShapeDims dims = DimsFor(GetParam().shape, GetParam().triangles, 1);
    EXPECT_GE(TriangleCount(MakeSolid(dims, GetParam().triangles)), FewestTriangles(dims));
    EXPECT_EQ(TriangleCount(MakeSolid(dims, 1)), FewestTriangles(dims));
}

TEST_P(MakeMesh, CanBeCutAndJoinedToAnyNumberOfFaces) {
    const Solid whole = Make(1);
    const std::size_t triangles = TriangleCount(whole);
    for (const std::size_t faces : {std::size_t{1}, std::size_t{2}, whole.faces.size() - 1,
                                    whole.faces.size(), whole.faces.size() + 1, triangles / 4}) {
        Solid solid = whole;
        SetFaceCount(&solid, faces);
        EXPECT_EQ(solid.faces.size(), std::max(faces, std::min(faces, whole.faces.size())));
        EXPECT_EQ(TriangleCount(solid), triangles);
        ExpectClosed(solid);
        ExpectUnitNormalsOutward(solid);
        for (const Face& face : solid.faces) EXPECT_GT(TriangleCount(face), 0u);
    }
}

TEST_P(MakeMesh, HasTheSameTrianglesAsStripsAndAsFans) {
    for (Face& face : Make(1).faces) {
        const std::vector<Corners> plain = CornersOf(face);
        Face strips = face;
        Face fans = face;
        strips.strips = AsStrips(face);
        strips.fans = {};
        fans.fans = AsFans(face);
        fans.strips = {};
        EXPECT_EQ(CornersOf(strips), plain);
        EXPECT_EQ(CornersOf(fans), plain);
    }
}

TEST(MakeShapes, BlockOfTwelveTrianglesIsTheSmallestSolid) {
    const PlateDims block{1, 1, 10, 20, 30, 0, 0};
    const Solid solid = MakeSolid(block, 12);
    EXPECT_EQ(TriangleCount(solid), 12u);
    EXPECT_NEAR(Volume(solid), 6000, 1e-6);
    ExpectClosed(solid);
}

TEST(MakeShapes, MixIsSymmetricAndExactAtItsEnds) {
    for (const int n : {1, 2, 3, 7, 49}) {
        for (int i = 0; i <= n; ++i) EXPECT_EQ(Mix(0.1, 17.3, i, n), Mix(17.3, 0.1, n - i, n));
        EXPECT_EQ(Mix(0.1, 17.3, 0, n), 0.1);
        EXPECT_EQ(Mix(0.1, 17.3, n, n), 17.3);
    }
}

} // namespace
} // namespace tarnwick::make
