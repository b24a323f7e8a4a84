#include "tools/make/part.h"

#include "make_files.h"
#include "support/packed.h"
#include "tools/make/palette.h"
#include "written.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace tarnwick::make {
namespace {

constexpr FaceKind kAllKinds[] = {FaceKind::kFaces, FaceKind::kStrips, FaceKind::kFans, FaceKind::kSets};

using Point = std::vector<double>;
using PlacedTriangle = std::array<Point, 3>;

struct ReadFace {
    std::size_t normals = 0;
    std::size_t points = 0;
    std::vector<PlacedTriangle> triangles;
};

void AppendStrip(const std::vector<double>& s, std::vector<std::array<double, 3>>* out) {
    for (std::size_t i = 0; i + 2 < s.size(); ++i) {
        if (i % 2 == 0)
            out->push_back({s[i], s[i + 1], s[i + 2]});
        else
            out->push_back({s[i + 2], s[i + 1], s[i]});
    }
}

// The point that each of the face's own points is.
std::vector<Point> PointsOf(const std::vector<Point>& list, const std::vector<double>& pnindex) {
    if (pnindex.empty()) { return list; }
    std::vector<Point> picked;
    for (const double k : pnindex) { picked.push_back(list.at(static_cast<std::size_t>(k) - 1)); }
    return picked;
}

ReadFace ReadBack(const P21File& file, int id) {
    const std::string_view keyword = KeywordOf(file, id);
    const std::vector<P21Value>& arguments = ArgumentsOf(file, id);
    const std::size_t index = keyword == "COMPLEX_TRIANGULATED_SURFACE_SET" ? 4 : 5;
    const std::vector<P21Value>& list = ArgumentsOf(file, ReferencesIn(arguments[1])[0]);
    EXPECT_EQ(std::to_string(list[2].items.size()), list[1].text);
    const std::vector<Point> points = PointsOf(Rows(list[2]), Numbers(arguments[index]));
    EXPECT_EQ(std::to_string(points.size()), arguments[2].text);
    std::vector<std::array<double, 3>> triangles;
    if (keyword == "TRIANGULATED_FACE") {
        for (const auto& t : Rows(arguments[index + 1])) { triangles.push_back({t.at(0), t.at(1), t.at(2)}); }
    } else {
        for (const auto& strip : Rows(arguments[index + 1])) { AppendStrip(strip, &triangles); }
        for (const auto& f : Rows(arguments[index + 2])) {
            for (std::size_t i = 1; i + 1 < f.size(); ++i) { triangles.push_back({f[0], f[i], f[i + 1]}); }
        }
    }
    ReadFace face{arguments[3].items.size(), points.size(), {}};
    for (const auto& t : triangles) {
        PlacedTriangle placed;
        for (std::size_t i = 0; i < 3; ++i) { placed[i] = points.at(static_cast<std::size_t>(t[i]) - 1); }
        // Started at its least corner, so that equal triangles compare equal.
        std::rotate(placed.begin(), std::min_element(placed.begin(), placed.end()), placed.end());
        face.triangles.push_back(placed);
    }
    return face;
}

std::vector<int> FacesOf(const P21File& file) {
    std::vector<int> faces;
    for (const char* keyword :
         {"TRIANGULATED_FACE", "COMPLEX_TRIANGULATED_FACE", "COMPLEX_TRIANGULATED_SURFACE_SET"})
        for (const int id : IdsOf(file, keyword)) faces.push_back(id);
    return faces;
}

std::multiset<PlacedTriangle> TrianglesOf(const P21File& file) {
    std::multiset<PlacedTriangle> all;
    for (const int id : FacesOf(file)) {
        const ReadFace face = ReadBack(file, id);
        all.insert(face.triangles.begin(), face.triangles.end());
    }
    return all;
}

std::string PartText(PartOptions o, PartCounts* counts = nullptr) {
    EXPECT_EQ(CheckPartOptions(o), "");
    if (o.colours != 0) { o.style.colours = o.colours; }
    PartCounts made;
    const std::string text = Written([&](P21Writer* out) { made = WritePart(PlanPart(o), o.style, out); });
    if (counts != nullptr) { *counts = made; }
    return text;
}

TEST(MakePart, SolidsOfASheetStandApart) {
    PartOptions o;
    o.triangles = 40000;
    o.solids = 40;
    const PartPlan plan = PlanPart(o);
    std::vector<std::array<double, 4>> boxes;
    for (const PartPlan::Item& item : plan.items) {
        Solid solid = MakeSolid(item.dims, 1000);
        PlaceMesh(item.placement, &solid);
        std::array<double, 4> box{1e9, -1e9, 1e9, -1e9};
        for (const Face& face : solid.faces) {
            for (Vec3 p : face.points) {
                box = {std::min(box[0], p.x), std::max(box[1], p.x), std::min(box[2], p.y),
                       std::max(box[3], p.y)};
                EXPECT_GT(p.z, -1e-9);
            }
        }
        for (const auto& other : boxes) {
            const bool apart =
                box[0] > other[1] || box[1] < other[0] || box[2] > other[3] || box[3] < other[2];
            EXPECT_TRUE(apart);
        }
        boxes.push_back(box);
    }
}

PartOptions PartOf(std::size_t triangles, std::size_t solids) {
    PartOptions o;
    o.triangles = triangles;
    o.solids = solids;
    return o;
}

TEST(MakePart, SameOptionsGiveTheSameBytes) {
    for (const FaceKind kind : kAllKinds) {
        PartOptions o = PartOf(6000, 5);
        o.style.kind = kind;
        o.style.pnindex = true;
        EXPECT_EQ(PartText(o), PartText(o));
    }
}

TEST(MakePart, AnotherSeedGivesAnotherSheet) {
    const PartOptions one = PartOf(6000, 5);
    PartOptions two = one;
    two.style.seed = 2;
    EXPECT_NE(PartText(one), PartText(two));
}

TEST(MakePart, AllWaysOfWritingGiveTheSameTriangles) {
    PartOptions o = PartOf(4000, 7);
    const std::multiset<PlacedTriangle> plain = TrianglesOf(Parse(PartText(o)));
    EXPECT_GT(plain.size(), 3800u);
    for (const FaceKind kind : kAllKinds) {
        for (int way = 0; way < 3; ++way) {
            o.style.kind = kind;
            o.style.pnindex = way == 1;
            o.style.sharedCoordinates = way == 2;
            EXPECT_EQ(TrianglesOf(Parse(PartText(o))), plain);
        }
    }
}

TEST(MakePart, HasTheTrianglesFacesAndSolidsAskedFor) {
    for (const std::size_t solids : {1u, 3u, 14u}) {
        for (const std::size_t faces : {14u, 100u, 1001u}) {
            PartOptions o = PartOf(14000, solids);
            o.faces = faces;
            PartCounts counts;
            const P21File file = Parse(PartText(o, &counts));
            EXPECT_NEAR(static_cast<double>(counts.triangles), 14000, 14000 * 0.05);
            EXPECT_EQ(TrianglesOf(file).size(), counts.triangles);
            EXPECT_EQ(FacesOf(file).size(), faces);
            EXPECT_EQ(counts.faces, faces);
            EXPECT_EQ(IdsOf(file, "TESSELLATED_SOLID").size(), solids);
        }
    }
}

TEST(MakePart, SmallSolidsOfASheetBecomeBlocks) {
    PartCounts counts;
    PartText(PartOf(120, 10), &counts);
    EXPECT_EQ(counts.triangles, 120u);
    EXPECT_EQ(counts.solids, 10u);
}

TEST(MakePart, SetsStandDirectlyInTheRepresentation) {
    PartOptions o = PartOf(4000, 4);
    o.style.kind = FaceKind::kSets;
    const P21File file = Parse(PartText(o));
    EXPECT_TRUE(IdsOf(file, "TESSELLATED_SOLID").empty());
    const int representation = IdsOf(file, "TESSELLATED_SHAPE_REPRESENTATION").at(0);
    EXPECT_EQ(ReferencesIn(ArgumentsOf(file, representation)[1]), FacesOf(file));
}

TEST(MakePart, NormalsAreNoneOneForFlatFacesOrOneForEachPoint) {
    PartOptions o = PartOf(4000, 7);
    for (const NormalKind normals : {NormalKind::kNone, NormalKind::kOne, NormalKind::kAll}) {
        o.style.normals = normals;
        const P21File file = Parse(PartText(o));
        int single = 0;
        for (const int id : FacesOf(file)) {
            const ReadFace face = ReadBack(file, id);
            const bool isOne = face.normals == 1;
            const bool all = face.normals == face.points;
            EXPECT_TRUE(normals == NormalKind::kNone  ? face.normals == 0
                        : normals == NormalKind::kAll ? all
                                                      : isOne || all);
            single += isOne ? 1 : 0;
        }
        EXPECT_EQ(single > 0, normals == NormalKind::kOne);
    }
}

TEST(MakePart, SharedCoordinatesHaveOneListForEachSolidWithEveryPointOnce) {
    PartOptions o = PartOf(7000, 7);
    o.style.sharedCoordinates = true;
    const P21File file = Parse(PartText(o));
    const std::vector<int> lists = IdsOf(file, "COORDINATES_LIST");
    EXPECT_EQ(lists.size(), 7u);
    for (const int id : lists) {
        const std::vector<Point> points = Rows(ArgumentsOf(file, id)[2]);
        EXPECT_EQ(std::set<Point>(points.begin(), points.end()).size(), points.size());
    }
}

TEST(MakePart, HasAsManyColoursAsAskedAndUsesThemAll) {
    for (const int colours : {1, 3, 7, 20, 50}) {
        PartOptions o = PartOf(7000, 7);
        o.colours = colours;
        const P21File file = Parse(PartText(o));
        EXPECT_EQ(IdsOf(file, "COLOUR_RGB").size(), static_cast<std::size_t>(colours));
        std::set<int> used;
        for (const char* keyword : {"STYLED_ITEM", "OVER_RIDING_STYLED_ITEM"})
            for (const int id : IdsOf(file, keyword)) used.insert(ReferencesIn(ArgumentsOf(file, id)[1])[0]);
        EXPECT_EQ(used.size(), static_cast<std::size_t>(colours));
    }
}

TEST(MakePart, ColoursOfThePaletteDiffer) {
    std::set<std::array<double, 3>> seen;
    for (int i = 0; i < 1000; ++i) {
        const Colour c = PaletteColour(i);
        for (const double v : {c.red, c.green, c.blue}) EXPECT_TRUE(v >= 0 && v <= 1);
        seen.insert({c.red, c.green, c.blue});
    }
    EXPECT_EQ(seen.size(), 1000u);
}

TEST(MakePart, EveryOtherStyleIsSeeThroughOrTheOnlyOne) {
    PartOptions o = PartOf(7000, 7);
    EXPECT_TRUE(IdsOf(Parse(PartText(o)), "SURFACE_STYLE_TRANSPARENT").empty());
    o.style.transparent = true;
    for (auto [colours, expected] : {std::pair{1, 1}, {2, 1}, {5, 2}}) {
        o.colours = colours;
        const P21File file = Parse(PartText(o));
        const std::vector<int> transparent = IdsOf(file, "SURFACE_STYLE_TRANSPARENT");
        EXPECT_EQ(transparent.size(), static_cast<std::size_t>(expected));
        EXPECT_EQ(IdsOf(file, "SURFACE_STYLE_RENDERING_WITH_PROPERTIES").size(), transparent.size());
        for (const int id : transparent) {
            const double alpha = Numbers({{}, {}, ArgumentsOf(file, id)})[0];
            EXPECT_TRUE(alpha > 0.3 && alpha < 0.7);
        }
    }
}

TEST(MakePart, EverySolidIsMadeOfExactlyOneMaterial) {
    PartOptions o = PartOf(7000, 7);
    o.style.material = true;
    const P21File file = Parse(PartText(o));
    std::multiset<int> made;
    for (const int id : IdsOf(file, "SHAPE_DEFINITION_REPRESENTATION")) {
        const std::vector<int> ends = ReferencesIn(ArgumentsOf(file, id));
        const int definition = ReferencesIn(ArgumentsOf(file, ends[0])[2])[0];
        if (KeywordOf(file, definition) != "MAKE_FROM_USAGE_OPTION") continue;
        EXPECT_EQ(ArgumentsOf(file, definition).size(), 8u);
        for (const int item : ReferencesIn(ArgumentsOf(file, ends[1])[1])) made.insert(item);
    }
    std::multiset<int> solids;
    for (const int id : IdsOf(file, "TESSELLATED_SOLID")) {
        const std::vector<int> exact = ReferencesIn(ArgumentsOf(file, id)[2]);
        solids.insert(exact.empty() ? id : exact[0]);
    }
    EXPECT_EQ(made, solids);
    EXPECT_EQ(IdsOf(file, "MAKE_FROM_USAGE_OPTION").size(), 3u);
}

TEST(MakePart, ExactSolidsOfTurnedShapesAreClosed) {
    for (const Shape shape : {Shape::kShaft, Shape::kWasher}) {
        PartOptions o = PartOf(2000, 2);
        o.shape = shape;
        const P21File file = Parse(PartText(o));
        EXPECT_EQ(IdsOf(file, "MANIFOLD_SOLID_BREP").size(), 2u);
        std::map<std::pair<int, std::string>, int> uses;
        for (const int id : IdsOf(file, "ORIENTED_EDGE")) {
            const std::vector<P21Value>& arguments = ArgumentsOf(file, id);
            ++uses[{ReferencesIn(arguments[3])[0], std::string(arguments[4].text)}];
        }
        for (const int id : IdsOf(file, "EDGE_CURVE")) {
            EXPECT_EQ((uses[{id, ".T."}]), 1);
            EXPECT_EQ((uses[{id, ".F."}]), 1);
        }
    }
}

TEST(MakePart, FacesLinkToFacesAndSurfacesOrToNothing) {
    const P21File file = Parse(PartText(PartOf(7000, 7)));
    std::set<std::string> kinds;
    for (const int id : FacesOf(file)) {
        const std::vector<int> link = ReferencesIn(ArgumentsOf(file, id)[4]);
        kinds.insert(link.empty() ? "$" : std::string(KeywordOf(file, link[0])));
    }
    EXPECT_EQ(kinds, (std::set<std::string>{"$", "ADVANCED_FACE", "CONICAL_SURFACE", "CYLINDRICAL_SURFACE",
                                            "PLANE"}));
}

TEST(MakePart, OptionsThatDontGoTogetherAreRefused) {
    EXPECT_EQ(CheckPartOptions({}), "");
    EXPECT_NE(CheckPartOptions(PartOf(100, 20)), "");
    PartOptions faces = PartOf(1000, 10);
    faces.faces = 9;
    EXPECT_NE(CheckPartOptions(faces), "");
    faces.faces = 251;
    EXPECT_NE(CheckPartOptions(faces), "");
    faces.faces = 250;
    EXPECT_EQ(CheckPartOptions(faces), "");
    PartOptions material;
    material.style.material = true;
    EXPECT_EQ(CheckPartOptions(material), "");
    material.style.kind = FaceKind::kSets;
    EXPECT_NE(CheckPartOptions(material), "");
}

TEST_F(MakeFiles, CompressedPartInflatesToThePlainOne) {
    ASSERT_EQ(Run({"part", Path("a.stp"), "--triangles", "5000"}), 0);
    ASSERT_EQ(Run({"part", Path("a.stpz"), "--triangles", "5000", "--compress"}), 0);
    EXPECT_EQ(test::Unpacked(ReadFile(Path("a.stpz"))), ReadFile(Path("a.stp")));
}

} // namespace
} // namespace tarnwick::make
