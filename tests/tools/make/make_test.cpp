// The sample writer: its meshes, its files and its command line.
#include "make_files.h"
#include "tools/make/assembly.h"
#include "tools/make/command_line.h"
#include "tools/make/fem.h"
#include "tools/make/part.h"
#include "tools/make/shapes/mesh.h"
#include "write/byte_sink.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace tarnwick::make {
namespace {

constexpr Shape kAllShapes[] = {Shape::kPlate, Shape::kGear,   Shape::kBolt,   Shape::kFlange,
                                Shape::kShaft, Shape::kWasher, Shape::kBracket};
constexpr FaceKind kAllKinds[] = {FaceKind::kFaces, FaceKind::kStrips, FaceKind::kFans, FaceKind::kSets};

ShapeDims DimsFor(Shape shape, std::size_t triangles, std::uint64_t seed) {
    Prng prng(seed);
    return RandomDims(shape, triangles, &prng);
}

// --- reading back what was written ---

struct Entity {
    std::string keyword; // empty for a complex one
    std::string arguments;
};
using Entities = std::map<int, Entity>;

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

// Fails the test for a line of the data section that isn't one whole entity.
Entities Parse(const std::string& text) {
    Entities entities;
    bool data = false;
    for (const std::string& line : SplitLines(text)) {
        if (line == "ENDSEC;") data = false;
        if (data) {
            std::size_t equals = line.find('=');
            std::size_t open = line.find('(');
            bool whole = line[0] == '#' && equals < open && open != line.npos && line.ends_with(");");
            EXPECT_TRUE(whole) << line;
            if (!whole) continue;
            int number = std::atoi(line.c_str() + 1);
            Entity entity{line.substr(equals + 1, open - equals - 1),
                          line.substr(open + 1, line.size() - open - 3)};
            EXPECT_TRUE(entities.emplace(number, entity).second) << line;
        }
        if (line == "DATA;") data = true;
    }
    return entities;
}

std::vector<std::string> SplitArguments(const std::string& arguments) {
    std::vector<std::string> parts(1);
    int depth = 0;
    for (char c : arguments) {
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (c == ',' && depth == 0)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

std::vector<int> References(const std::string& text) {
    std::vector<int> ids;
    for (std::size_t i = text.find('#'); i != text.npos; i = text.find('#', i + 1))
        ids.push_back(std::atoi(text.c_str() + i + 1));
    return ids;
}

// The numbers in a list of lists, or in a list.
std::vector<std::vector<double>> Numbers(const std::string& list) {
    std::vector<std::vector<double>> rows;
    for (std::size_t i = 0; i < list.size();) {
        if (list[i] == '(') rows.emplace_back();
        if (list[i] == '(' || list[i] == ')' || list[i] == ',') {
            ++i;
            continue;
        }
        char* end = nullptr;
        rows.back().push_back(std::strtod(list.c_str() + i, &end));
        i = static_cast<std::size_t>(end - list.c_str());
    }
    std::erase_if(rows, [](const auto& row) { return row.empty(); });
    return rows;
}

std::vector<int> IdsOf(const Entities& entities, const std::string& keyword) {
    std::vector<int> ids;
    for (const auto& [id, entity] : entities)
        if (entity.keyword == keyword) ids.push_back(id);
    return ids;
}

std::vector<std::string> ArgumentsOf(const Entities& entities, int id) {
    return SplitArguments(entities.at(id).arguments);
}

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

ReadFace ReadBack(const Entities& entities, int id) {
    const std::string& keyword = entities.at(id).keyword;
    std::vector<std::string> arguments = ArgumentsOf(entities, id);
    std::size_t index = keyword == "COMPLEX_TRIANGULATED_SURFACE_SET" ? 4 : 5;
    std::vector<std::string> list = ArgumentsOf(entities, References(arguments[1])[0]);
    std::vector<Point> points = Numbers(list[2]);
    EXPECT_EQ(std::to_string(points.size()), list[1]);
    auto pnindex = Numbers(arguments[index]);
    if (!pnindex.empty()) {
        std::vector<Point> picked;
        for (double k : pnindex[0]) picked.push_back(points.at(static_cast<std::size_t>(k) - 1));
        points = picked;
    }
    EXPECT_EQ(std::to_string(points.size()), arguments[2]);
    std::vector<std::array<double, 3>> triangles;
    if (keyword == "TRIANGULATED_FACE") {
        for (const auto& t : Numbers(arguments[index + 1])) triangles.push_back({t.at(0), t.at(1), t.at(2)});
    } else {
        for (const auto& strip : Numbers(arguments[index + 1])) AppendStrip(strip, &triangles);
        for (const auto& f : Numbers(arguments[index + 2]))
            for (std::size_t i = 1; i + 1 < f.size(); ++i) triangles.push_back({f[0], f[i], f[i + 1]});
    }
    ReadFace face{Numbers(arguments[3]).size(), points.size(), {}};
    for (const auto& t : triangles) {
        PlacedTriangle placed;
        for (std::size_t i = 0; i < 3; ++i) placed[i] = points.at(static_cast<std::size_t>(t[i]) - 1);
        // Started at its least corner, so that equal triangles compare equal.
        std::rotate(placed.begin(), std::min_element(placed.begin(), placed.end()), placed.end());
        face.triangles.push_back(placed);
    }
    return face;
}

std::vector<int> FacesOf(const Entities& entities) {
    std::vector<int> faces;
    for (const char* keyword :
         {"TRIANGULATED_FACE", "COMPLEX_TRIANGULATED_FACE", "COMPLEX_TRIANGULATED_SURFACE_SET"})
        for (int id : IdsOf(entities, keyword)) faces.push_back(id);
    return faces;
}

std::multiset<PlacedTriangle> TrianglesOf(const Entities& entities) {
    std::multiset<PlacedTriangle> all;
    for (int id : FacesOf(entities)) {
        ReadFace face = ReadBack(entities, id);
        all.insert(face.triangles.begin(), face.triangles.end());
    }
    return all;
}

void ExpectAllReferencesDefined(const Entities& entities) {
    for (const auto& [id, entity] : entities)
        for (int reference : References(entity.arguments))
            ASSERT_TRUE(entities.contains(reference)) << '#' << id << " refers to #" << reference;
}

std::string PartText(PartOptions o, PartCounts* counts = nullptr) {
    EXPECT_EQ(CheckPartOptions(o), "");
    if (o.colours != 0) o.style.colours = o.colours;
    std::string text;
    StringSink sink(&text);
    P21Writer writer(&sink);
    PartCounts made = WritePart(PlanPart(o), o.style, &writer);
    if (counts != nullptr) *counts = made;
    return text;
}

std::string StructureText(const Machine& machine, int node) {
    std::string text;
    StringSink sink(&text);
    P21Writer writer(&sink);
    WriteStructure(machine, node, &writer);
    return text;
}

std::string FemText(const FemOptions& o) {
    std::string text;
    StringSink sink(&text);
    P21Writer writer(&sink);
    WriteFem(o, &writer);
    return text;
}

std::string Written(void (*write)(P21Writer*)) {
    std::string text;
    StringSink sink(&text);
    P21Writer writer(&sink);
    write(&writer);
    writer.Footer();
    return text.substr(0, text.find("ENDSEC;"));
}

// --- meshes ---

using Edge = std::array<double, 6>;

void ExpectClosed(const Solid& solid) {
    std::map<Edge, int> edges;
    for (const Face& face : solid.faces) {
        std::vector<Triangle> triangles;
        AppendTriangles(face, &triangles);
        for (const Triangle& t : triangles) {
            for (std::size_t i = 0; i < 3; ++i) {
                Vec3 a = face.points[t[i]];
                Vec3 b = face.points[t[(i + 1) % 3]];
                ++edges[{a.x, a.y, a.z, b.x, b.y, b.z}];
            }
        }
    }
    std::size_t open = 0;
    for (const auto& [e, count] : edges) {
        auto back = edges.find({e[3], e[4], e[5], e[0], e[1], e[2]});
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
        for (Vec3 n : face.normals) ASSERT_NEAR(Length(n), 1, 1e-9);
        std::vector<Triangle> triangles;
        AppendTriangles(face, &triangles);
        for (const Triangle& t : triangles) {
            Vec3 a = face.points[t[0]];
            Vec3 b = face.points[t[1]];
            Vec3 c = face.points[t[2]];
            Vec3 outward = Cross(b - a, c - a);
            ASSERT_GT(Length(outward), 0);
            for (Index v : t) ASSERT_GT(Dot(face.normals[v], outward) / Length(outward), 0.5);
        }
    }
}

using Corners = std::array<Vec3, 3>;

std::vector<Corners> CornersOf(const Face& face) {
    std::vector<Triangle> triangles;
    AppendTriangles(face, &triangles);
    std::vector<Corners> all;
    auto less = [](Vec3 a, Vec3 b) { return std::tie(a.x, a.y, a.z) < std::tie(b.x, b.y, b.z); };
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
    for (Shape shape : kAllShapes)
        for (std::size_t triangles : {1u, 700u, 1000u, 3500u, 20000u}) cases.push_back({shape, triangles});
    return cases;
}
std::string NameOf(const MeshCase& c) {
    constexpr const char* names[] = {"Plate", "Gear", "Bolt", "Flange", "Shaft", "Washer", "Bracket"};
    return names[static_cast<std::size_t>(c.shape)] + ("Of" + std::to_string(c.triangles));
}
void PrintTo(const MeshCase& c, std::ostream* out) {
    *out << NameOf(c);
}
std::string MeshCaseName(const testing::TestParamInfo<MeshCase>& info) {
    return NameOf(info.param);
}
INSTANTIATE_TEST_SUITE_P(AllShapes, MakeMesh, testing::ValuesIn(MeshCases()), MeshCaseName);

TEST_P(MakeMesh, UsesEveryEdgeOnceInEachDirection) {
    for (std::uint64_t seed : {1u, 2u, 3u}) ExpectClosed(Make(seed));
}

TEST_P(MakeMesh, StaysClosedWhereverItStands) {
    Solid solid = Make(4);
    Placement at{{123.4, -56.7, 8.9}, Unit({1, 2, 3}), Unit({3, 0, -1})};
    PlaceMesh(at, &solid);
    ExpectClosed(solid);
    ExpectUnitNormalsOutward(solid);
}

TEST_P(MakeMesh, HasUnitNormalsThatPointOutward) {
    for (std::uint64_t seed : {1u, 2u, 3u}) {
        Solid solid = Make(seed);
        ExpectUnitNormalsOutward(solid);
        EXPECT_GT(Volume(solid), 0);
    }
}

TEST(MakeShapes, HaveTheTrianglesAskedForWithinFivePercentFromAThousandOn) {
    for (Shape shape : kAllShapes) {
        for (std::size_t asked : {1000u, 1300u, 3500u, 9000u, 20000u, 77777u}) {
            for (std::uint64_t seed : {1u, 2u, 3u, 4u, 5u}) {
                auto count =
                    static_cast<double>(TriangleCount(MakeSolid(DimsFor(shape, asked, seed), asked)));
                EXPECT_NEAR(count, static_cast<double>(asked), 0.05 * static_cast<double>(asked))
                    << "shape " << static_cast<int>(shape) << " seed " << seed;
            }
        }
    }
}

TEST_P(MakeMesh, HasNoFewerTrianglesThanItsCoarsestForm) {
    ShapeDims dims = DimsFor(GetParam().shape, GetParam().triangles, 1);
    EXPECT_GE(TriangleCount(MakeSolid(dims, GetParam().triangles)), FewestTriangles(dims));
    EXPECT_EQ(TriangleCount(MakeSolid(dims, 1)), FewestTriangles(dims));
}

TEST_P(MakeMesh, CanBeCutAndJoinedToAnyNumberOfFaces) {
    Solid whole = Make(1);
    std::size_t triangles = TriangleCount(whole);
    for (std::size_t faces : {std::size_t{1}, std::size_t{2}, whole.faces.size() - 1, whole.faces.size(),
                              whole.faces.size() + 1, triangles / 4}) {
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
        std::vector<Corners> plain = CornersOf(face);
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
    PlateDims block{1, 1, 10, 20, 30, 0, 0};
    Solid solid = MakeSolid(block, 12);
    EXPECT_EQ(TriangleCount(solid), 12u);
    EXPECT_NEAR(Volume(solid), 6000, 1e-6);
    ExpectClosed(solid);
}

TEST(MakeShapes, MixIsSymmetricAndExactAtItsEnds) {
    for (int n : {1, 2, 3, 7, 49}) {
        for (int i = 0; i <= n; ++i) EXPECT_EQ(Mix(0.1, 17.3, i, n), Mix(17.3, 0.1, n - i, n));
        EXPECT_EQ(Mix(0.1, 17.3, 0, n), 0.1);
        EXPECT_EQ(Mix(0.1, 17.3, n, n), 17.3);
    }
}

TEST(MakeShapes, SolidsOfASheetStandApart) {
    PartOptions o;
    o.triangles = 40000;
    o.solids = 40;
    PartPlan plan = PlanPart(o);
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
            bool apart = box[0] > other[1] || box[1] < other[0] || box[2] > other[3] || box[3] < other[2];
            EXPECT_TRUE(apart);
        }
        boxes.push_back(box);
    }
}

// --- text ---

TEST(MakeWriter, RealsHaveAPointAndNoExponent) {
    std::string text = Written([](P21Writer* out) {
        for (double v : {0.0, 1.0, -2.5, 1e-9, 1e-5, 123456.0, 0.1}) {
            out->Put(v);
            out->Put(' ');
        }
    });
    EXPECT_EQ(text, "0. 1. -2.5 0. 0.00001 123456. 0.1 ");
}

TEST(MakeWriter, StringsAreEscaped) {
    EXPECT_EQ(EncodeString("plain (text), #1"), "'plain (text), #1'");
    EXPECT_EQ(EncodeString("it's a \\"), "'it''s a \\\\'");
    EXPECT_EQ(EncodeString("\xC3\xA9\xE2\x82\xAC"), "'\\X2\\00E9\\X0\\\\X2\\20AC\\X0\\'");
    EXPECT_EQ(EncodeString("\xF0\x9F\x94\xA9"), "'\\X4\\0001F529\\X0\\'");
    EXPECT_EQ(EncodeString("a\nb\xFF."), "'a?b?.'");
}

TEST(MakeWriter, ReferenceToNothingIsADollar) {
    std::string text = Written([](P21Writer* out) {
        out->Add("X", Id{}, Id{7}, std::vector{Id{1}, Id{2}}, 3, "a");
    });
    EXPECT_EQ(text, "#1=X($,#7,(#1,#2),3,'a');\n");
}

// --- part ---

PartOptions PartOf(std::size_t triangles, std::size_t solids) {
    PartOptions o;
    o.triangles = triangles;
    o.solids = solids;
    return o;
}

TEST(MakePart, SameOptionsGiveTheSameBytes) {
    for (FaceKind kind : kAllKinds) {
        PartOptions o = PartOf(6000, 5);
        o.style.kind = kind;
        o.style.pnindex = true;
        EXPECT_EQ(PartText(o), PartText(o));
    }
}

TEST(MakePart, AnotherSeedGivesAnotherSheet) {
    PartOptions one = PartOf(6000, 5);
    PartOptions two = one;
    two.style.seed = 2;
    EXPECT_NE(PartText(one), PartText(two));
}

TEST(MakePart, EveryEntityStandsOnOneLineAndEveryReferenceIsDefined) {
    for (FaceKind kind : kAllKinds) {
        for (NormalKind normals : {NormalKind::kNone, NormalKind::kOne, NormalKind::kAll}) {
            for (int way = 0; way < 3; ++way) {
                PartOptions o = PartOf(4000, 7);
                o.style.kind = kind;
                o.style.normals = normals;
                o.style.pnindex = way == 1;
                o.style.sharedCoordinates = way == 2;
                o.style.transparent = true;
                o.style.material = kind != FaceKind::kSets;
                o.colours = 9;
                ExpectAllReferencesDefined(Parse(PartText(o)));
            }
        }
    }
}

TEST(MakePart, AllWaysOfWritingGiveTheSameTriangles) {
    PartOptions o = PartOf(4000, 7);
    std::multiset<PlacedTriangle> plain = TrianglesOf(Parse(PartText(o)));
    EXPECT_GT(plain.size(), 3800u);
    for (FaceKind kind : kAllKinds) {
        for (int way = 0; way < 3; ++way) {
            o.style.kind = kind;
            o.style.pnindex = way == 1;
            o.style.sharedCoordinates = way == 2;
            EXPECT_EQ(TrianglesOf(Parse(PartText(o))), plain);
        }
    }
}

TEST(MakePart, HasTheTrianglesFacesAndSolidsAskedFor) {
    for (std::size_t solids : {1u, 3u, 14u}) {
        for (std::size_t faces : {14u, 100u, 1001u}) {
            PartOptions o = PartOf(14000, solids);
            o.faces = faces;
            PartCounts counts;
            Entities entities = Parse(PartText(o, &counts));
            EXPECT_NEAR(static_cast<double>(counts.triangles), 14000, 14000 * 0.05);
            EXPECT_EQ(TrianglesOf(entities).size(), counts.triangles);
            EXPECT_EQ(FacesOf(entities).size(), faces);
            EXPECT_EQ(counts.faces, faces);
            EXPECT_EQ(IdsOf(entities, "TESSELLATED_SOLID").size(), solids);
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
    Entities entities = Parse(PartText(o));
    EXPECT_TRUE(IdsOf(entities, "TESSELLATED_SOLID").empty());
    int representation = IdsOf(entities, "TESSELLATED_SHAPE_REPRESENTATION").at(0);
    EXPECT_EQ(References(ArgumentsOf(entities, representation)[1]), FacesOf(entities));
}

TEST(MakePart, NormalsAreNoneOneForFlatFacesOrOneForEachPoint) {
    PartOptions o = PartOf(4000, 7);
    std::set<std::string> seen;
    for (NormalKind normals : {NormalKind::kNone, NormalKind::kOne, NormalKind::kAll}) {
        o.style.normals = normals;
        Entities entities = Parse(PartText(o));
        int single = 0;
        for (int id : FacesOf(entities)) {
            ReadFace face = ReadBack(entities, id);
            bool isOne = face.normals == 1;
            bool all = face.normals == face.points;
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
    Entities entities = Parse(PartText(o));
    std::vector<int> lists = IdsOf(entities, "COORDINATES_LIST");
    EXPECT_EQ(lists.size(), 7u);
    for (int id : lists) {
        std::vector<Point> points = Numbers(ArgumentsOf(entities, id)[2]);
        EXPECT_EQ(std::set<Point>(points.begin(), points.end()).size(), points.size());
    }
}

TEST(MakePart, HasAsManyColoursAsAskedAndUsesThemAll) {
    for (int colours : {1, 3, 7, 20, 50}) {
        PartOptions o = PartOf(7000, 7);
        o.colours = colours;
        Entities entities = Parse(PartText(o));
        EXPECT_EQ(IdsOf(entities, "COLOUR_RGB").size(), static_cast<std::size_t>(colours));
        std::set<int> used;
        for (const char* keyword : {"STYLED_ITEM", "OVER_RIDING_STYLED_ITEM"})
            for (int id : IdsOf(entities, keyword)) used.insert(References(ArgumentsOf(entities, id)[1])[0]);
        EXPECT_EQ(used.size(), static_cast<std::size_t>(colours));
    }
}

TEST(MakePart, ColoursOfThePaletteDiffer) {
    std::set<std::array<double, 3>> seen;
    for (int i = 0; i < 1000; ++i) {
        Colour c = PaletteColour(i);
        for (double v : {c.red, c.green, c.blue}) EXPECT_TRUE(v >= 0 && v <= 1);
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
        Entities entities = Parse(PartText(o));
        std::vector<int> transparent = IdsOf(entities, "SURFACE_STYLE_TRANSPARENT");
        EXPECT_EQ(transparent.size(), static_cast<std::size_t>(expected));
        EXPECT_EQ(IdsOf(entities, "SURFACE_STYLE_RENDERING_WITH_PROPERTIES").size(), transparent.size());
        for (int id : transparent) {
            double alpha = std::strtod(entities.at(id).arguments.c_str(), nullptr);
            EXPECT_TRUE(alpha > 0.3 && alpha < 0.7);
        }
    }
}

TEST(MakePart, EverySolidIsMadeOfExactlyOneMaterial) {
    PartOptions o = PartOf(7000, 7);
    o.style.material = true;
    Entities entities = Parse(PartText(o));
    std::multiset<int> made;
    for (int id : IdsOf(entities, "SHAPE_DEFINITION_REPRESENTATION")) {
        std::vector<int> ends = References(entities.at(id).arguments);
        int definition = References(ArgumentsOf(entities, ends[0])[2])[0];
        if (entities.at(definition).keyword != "MAKE_FROM_USAGE_OPTION") continue;
        EXPECT_EQ(ArgumentsOf(entities, definition).size(), 8u);
        for (int item : References(ArgumentsOf(entities, ends[1])[1])) made.insert(item);
    }
    std::multiset<int> solids;
    for (int id : IdsOf(entities, "TESSELLATED_SOLID")) {
        std::vector<int> exact = References(ArgumentsOf(entities, id)[2]);
        solids.insert(exact.empty() ? id : exact[0]);
    }
    EXPECT_EQ(made, solids);
    EXPECT_EQ(IdsOf(entities, "MAKE_FROM_USAGE_OPTION").size(), 3u);
}

TEST(MakePart, ExactSolidsOfTurnedShapesAreClosed) {
    for (Shape shape : {Shape::kShaft, Shape::kWasher}) {
        PartOptions o = PartOf(2000, 2);
        o.shape = shape;
        Entities entities = Parse(PartText(o));
        EXPECT_EQ(IdsOf(entities, "MANIFOLD_SOLID_BREP").size(), 2u);
        std::map<std::pair<int, std::string>, int> uses;
        for (int id : IdsOf(entities, "ORIENTED_EDGE")) {
            std::vector<std::string> arguments = ArgumentsOf(entities, id);
            ++uses[{References(arguments[3])[0], arguments[4]}];
        }
        for (int id : IdsOf(entities, "EDGE_CURVE")) {
            EXPECT_EQ((uses[{id, ".T."}]), 1);
            EXPECT_EQ((uses[{id, ".F."}]), 1);
        }
    }
}

TEST(MakePart, FacesLinkToFacesAndSurfacesOrToNothing) {
    Entities entities = Parse(PartText(PartOf(7000, 7)));
    std::set<std::string> kinds;
    for (int id : FacesOf(entities)) {
        std::vector<int> link = References(ArgumentsOf(entities, id)[4]);
        kinds.insert(link.empty() ? "$" : entities.at(link[0]).keyword);
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

// --- assembly ---

std::map<int, int> UsesOfParts(const Machine& machine) {
    std::map<int, int> uses;
    for (const Machine::Node& node : machine.nodes)
        for (const Machine::Use& use : node.uses)
            if (use.ofPart) ++uses[use.number];
    return uses;
}

TEST(MakeAssembly, DealsEveryPartItsNumberOfUses) {
    for (MachineOptions o : {MachineOptions{1, 7, 0, 1}, {18, 4, 1, 1}, {40, 9, 3, 2}, {5, 1, 2, 3}}) {
        std::map<int, int> uses = UsesOfParts(MakeMachine(o));
        EXPECT_EQ(uses.size(), static_cast<std::size_t>(o.parts));
        for (const auto& [part, count] : uses) EXPECT_EQ(count, o.uses);
    }
}

TEST(MakeAssembly, UsesEveryNodeButTheTopOnceAndAfterIt) {
    Machine machine = MakeMachine({40, 9, 3, 1});
    std::vector<int> uses(machine.nodes.size());
    for (std::size_t n = 0; n < machine.nodes.size(); ++n) {
        for (const Machine::Use& use : machine.nodes[n].uses) {
            if (use.ofPart) continue;
            EXPECT_GT(use.number, static_cast<int>(n));
            ++uses[static_cast<std::size_t>(use.number)];
        }
    }
    EXPECT_EQ(uses[0], 0);
    EXPECT_TRUE(std::all_of(uses.begin() + 1, uses.end(), [](int count) { return count == 1; }));
}

int FileLevelsBelow(const Machine& machine, int node) {
    int levels = 0;
    for (const Machine::Use& use : machine.nodes[static_cast<std::size_t>(node)].uses) {
        if (use.ofPart) continue;
        bool ownFile = !machine.nodes[static_cast<std::size_t>(use.number)].stem.empty();
        levels = std::max(levels, FileLevelsBelow(machine, use.number) + (ownFile ? 1 : 0));
    }
    return levels;
}

TEST(MakeAssembly, NestsItsFilesAsDeepAsAsked) {
    for (int depth = 0; depth < 6; ++depth)
        EXPECT_EQ(FileLevelsBelow(MakeMachine({40, 9, depth, 1}), 0), depth);
}

void ForEachPlacedUnit(const Machine& machine, int node, const Placement& at, std::vector<Vec3>* units) {
    for (const Machine::Use& use : machine.nodes[static_cast<std::size_t>(node)].uses) {
        EXPECT_NEAR(Length(use.at.x), 1, 1e-12);
        EXPECT_NEAR(Length(use.at.z), 1, 1e-12);
        EXPECT_NEAR(Dot(use.at.x, use.at.z), 0, 1e-12);
        if (use.ofPart)
            continue;
        else if (machine.nodes[static_cast<std::size_t>(use.number)].id.starts_with("UNIT"))
            units->push_back(Place(at, use.at).origin);
        ForEachPlacedUnit(machine, use.number, Place(at, use.at), units);
    }
}

TEST(MakeAssembly, UnitsStandApartAndAllPlacementsAreRotations) {
    std::vector<Vec3> units;
    ForEachPlacedUnit(MakeMachine({40, 9, 3, 1}), 0, {}, &units);
    EXPECT_EQ(units.size(), 27u);
    for (std::size_t i = 0; i < units.size(); ++i)
        for (std::size_t k = 0; k < i; ++k)
            EXPECT_TRUE(std::abs(units[i].x - units[k].x) > 300 || std::abs(units[i].y - units[k].y) > 200);
}

TEST(MakeAssembly, EveryStructureFileIsWhole) {
    Machine machine = MakeMachine({20, 3, 2, 1});
    for (std::size_t n = 0; n < machine.nodes.size(); ++n) {
        if (n != 0 && machine.nodes[n].stem.empty()) continue;
        std::string text = StructureText(machine, static_cast<int>(n));
        EXPECT_EQ(text, StructureText(machine, static_cast<int>(n)));
        Entities entities = Parse(text);
        ExpectAllReferencesDefined(entities);
        std::size_t uses = IdsOf(entities, "NEXT_ASSEMBLY_USAGE_OCCURRENCE").size();
        EXPECT_GT(uses, 0u);
        EXPECT_EQ(IdsOf(entities, "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION").size(), uses);
        EXPECT_EQ(IdsOf(entities, "ITEM_DEFINED_TRANSFORMATION").size(), uses);
        EXPECT_EQ(IdsOf(entities, "APPLIED_DOCUMENT_REFERENCE").size(),
                  IdsOf(entities, "DOCUMENT_FILE").size());
    }
}

TEST(MakeAssembly, TransformationsStartFromTheOriginOnTheWorldAxes) {
    Machine machine = MakeMachine({20, 3, 0, 1});
    Entities entities = Parse(StructureText(machine, 0));
    std::vector<int> transformations = IdsOf(entities, "ITEM_DEFINED_TRANSFORMATION");
    EXPECT_FALSE(transformations.empty());
    for (int id : transformations) {
        std::vector<int> source = References(entities.at(References(entities.at(id).arguments)[0]).arguments);
        EXPECT_EQ(entities.at(source[0]).arguments, "'',(0.,0.,0.)");
        EXPECT_EQ(entities.at(source[1]).arguments, "'',(0.,0.,1.)");
        EXPECT_EQ(entities.at(source[2]).arguments, "'',(1.,0.,0.)");
    }
}

TEST_F(MakeFiles, ProductIdsJoinReferencesAndFiles) {
    ASSERT_EQ(
        Run({"assembly", Path("top.stp"), "--parts", "20", "--depth", "2", "--triangles-per-part", "100"}),
        0);
    std::size_t references = 0;
    for (const auto& file : fs::directory_iterator(folder)) {
        Entities entities = Parse(ReadFile(file.path()));
        for (int id : IdsOf(entities, "APPLIED_DOCUMENT_REFERENCE")) {
            std::vector<int> ends = References(entities.at(id).arguments);
            std::string name = ArgumentsOf(entities, ends[0])[0];
            int formation = References(entities.at(ends[1]).arguments)[0];
            int product = References(entities.at(formation).arguments)[0];
            Entities other = Parse(ReadFile(folder / name.substr(1, name.size() - 2)));
            bool found = false;
            for (int p : IdsOf(other, "PRODUCT"))
                found = found || ArgumentsOf(other, p)[0] == ArgumentsOf(entities, product)[0];
            EXPECT_TRUE(found) << name;
            ++references;
        }
    }
    EXPECT_GE(references, 20u);
}

TEST_F(MakeFiles, CompressedAssemblyRefersToPlainNames) {
    ASSERT_EQ(
        Run({"assembly", Path("top.stpz"), "--compress", "--depth", "0", "--triangles-per-part", "100"}), 0);
    EXPECT_EQ(FileCount(), 19u);
    for (const auto& file : fs::directory_iterator(folder)) EXPECT_EQ(file.path().extension(), ".stpz");
    EXPECT_TRUE(fs::exists(folder / "gear-0004.stpz"));
    MachineOptions o;
    o.depth = 0;
    EXPECT_NE(StructureText(MakeMachine(o), 0).find("DOCUMENT_FILE('gear-0004.stp',"), std::string::npos);
}

TEST_F(MakeFiles, OneMissingLeavesOutTheLastPart) {
    ASSERT_EQ(
        Run({"assembly", Path("top.stp"), "--one-missing", "--depth", "0", "--triangles-per-part", "100"}),
        0);
    EXPECT_EQ(FileCount(), 18u);
    EXPECT_FALSE(fs::exists(folder / "bolt-0018.stp"));
    EXPECT_NE(ReadFile(Path("top.stp")).find("'bolt-0018.stp'"), std::string::npos);
}

// --- finite elements ---

TEST(MakeFem, HasExactlyTheQuadsAskedFor) {
    for (int quads : {1, 2, 7, 97, 400, 1009}) {
        FemOptions o;
        o.quads = quads;
        std::string text = FemText(o);
        EXPECT_EQ(text, FemText(o));
        Entities entities = Parse(text);
        ExpectAllReferencesDefined(entities);
        std::vector<int> elements = IdsOf(entities, "SURFACE_3D_ELEMENT_REPRESENTATION");
        EXPECT_EQ(elements.size(), static_cast<std::size_t>(quads));
        for (int id : elements) {
            std::vector<std::string> arguments = ArgumentsOf(entities, id);
            std::vector<int> nodes = References(arguments.at(3));
            EXPECT_EQ(std::set<int>(nodes.begin(), nodes.end()).size(), 4u);
            for (int node : nodes) EXPECT_EQ(entities.at(node).keyword, "NODE");
            int field = References(entities.at(References(arguments.at(6))[0]).arguments)[0];
            EXPECT_EQ(entities.at(field).keyword, "SURFACE_SECTION_FIELD_VARYING");
            EXPECT_EQ(References(entities.at(field).arguments).size(), 4u);
        }
    }
}

TEST(MakeFem, IsOfTheAnalysisSchema) {
    EXPECT_NE(FemText({}).find("\nFILE_SCHEMA(('AP209_"), std::string::npos);
}

TEST(MakeFem, ThicknessReachesBelowBetweenAndAboveTheColourLimits) {
    FemOptions o;
    Panel panel(o);
    int least = 0;
    int below = 0;
    int between = 0;
    int above = 0;
    for (int row = 0; row <= panel.Rows(); ++row) {
        for (int column = 0; column <= panel.Columns(); ++column) {
            int t = panel.Thickness(column, row);
            ++(t == 500 ? least : t <= 780 ? below : t <= 800 ? between : above);
        }
    }
    for (int count : {least, below, between, above}) EXPECT_GT(count, 50);
}

// --- command line ---

TEST_F(MakeFiles, CompressedPartInflatesToThePlainOne) {
    ASSERT_EQ(Run({"part", Path("a.stp"), "--triangles", "5000"}), 0);
    ASSERT_EQ(Run({"part", Path("a.stpz"), "--triangles", "5000", "--compress"}), 0);
    std::string plain = ReadFile(Path("a.stp"));
    std::string packed = ReadFile(Path("a.stpz"));
    std::string inflated(plain.size() + 1, '\0');
    uLongf size = static_cast<uLongf>(inflated.size());
    ASSERT_EQ(uncompress(reinterpret_cast<Bytef*>(inflated.data()), &size,
                         reinterpret_cast<const Bytef*>(packed.data()), static_cast<uLong>(packed.size())),
              Z_OK);
    inflated.resize(size);
    EXPECT_EQ(inflated, plain);
}

TEST_F(MakeFiles, WrongCommandLinesGiveTwoAndWriteNothing) {
    const std::vector<std::vector<std::string>> wrong{
        {},
        {"part"},
        {"house", Path("x")},
        {"part", Path("x"), "--triangles", "-3"},
        {"part", Path("x"), "--triangles", "11"},
        {"part", Path("x"), "--triangles", "many"},
        {"part", Path("x"), "--kind", "1"},
        {"part", Path("x"), "--kind", "cubes"},
        {"part", Path("x"), "--shape", "teapot"},
        {"part", Path("x"), "--normals", "two"},
        {"part", Path("x"), "--colours", "0"},
        {"part", Path("x"), "--colours", "1001"},
        {"part", Path("x"), "--faces", "0"},
        {"part", Path("x"), "--faces", "20000"},
        {"part", Path("x"), "--kind", "sets", "--material"},
        {"part", Path("x"), "--loud"},
        {"assembly", Path("x"), "--parts", "0"},
        {"assembly", Path("x"), "--depth", "-1"},
        {"assembly", Path("x"), "--parts", "9999", "--uses", "9999"},
        {"assembly", Path("gear-0004.stp")},
        {"assembly", Path("group-0001.stpz")},
        {"fem", Path("x"), "--quads", "0"},
        {"stpx", Path("gear-0004.stpx")},
        {"stpx", Path("unit-0001.stpx")},
        {"stpx", Path("x"), "--route", "round"},
        {"stpx", Path("x"), "--documents", "6"},
        {"stpx", Path("x"), "--stored-documents"},
        {"stpx", Path("x"), "--parts", "9999", "--uses", "9999"},
        {"stpa", Path("x"), "--compress"},
        {"stpa", Path("x"), "--documents", "-1"},
        {"stpj", Path("x"), "--occurrences", "0"},
        {"stpj", Path("x"), "--occurrences", "5", "--uses", "2"},
    };
    for (const auto& arguments : wrong) EXPECT_EQ(Run(arguments), 2) << testing::PrintToString(arguments);
    EXPECT_EQ(FileCount(), 0u);
}

TEST_F(MakeFiles, UnwritableOutputGivesOne) {
    for (const char* kind : {"part", "assembly", "fem", "stpx", "stpa", "stpj"})
        EXPECT_EQ(Run({kind, Path("no/such/folder/x.stp")}), 1);
    if (fs::exists("/dev/full")) {
        EXPECT_EQ(Run({"part", "/dev/full"}), 1);
        EXPECT_EQ(Run({"part", "/dev/full", "--compress"}), 1);
        EXPECT_EQ(Run({"stpa", "/dev/full", "--triangles-per-part", "100"}), 1);
        EXPECT_EQ(Run({"stpj", "/dev/full"}), 1);
    }
}

TEST_F(MakeFiles, HelpAndVersionGiveZero) {
    EXPECT_EQ(Run({"--help"}), 0);
    EXPECT_EQ(Run({"--version"}), 0);
    EXPECT_EQ(Run({"part", "--help"}), 0);
}

} // namespace
} // namespace tarnwick::make
