// Bodies that the geometry kernel makes, through its program and the client.

#include "exchange/exchange_file.h"
#include "exchange/padded.h"
#include "mesher/kernel_text.h"
#include "mesher/mesher.h"
#include "mesher/solid_text.h"
#include "support/sanitized.h"

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

namespace tarnwick::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

MesherOptions Options() {
    MesherOptions options;
    options.program = TARNWICK_MESH;
    return options;
}

MeshResult MeshOf(const std::string& instances, const std::vector<std::uint64_t>& bodies,
                  const MesherOptions& options = Options(), std::uint64_t context = kContext) {
    const Padded text(ExchangeText(instances));
    const ExchangeFile file(text.Text());
    Mesher mesher(options);
    return mesher.Mesh(file, bodies, context);
}

// Six times the volume that closed triangles enclose; negative where they are turned inside out.
double VolumeOf(const MeshBody& body) {
    double six = 0;
    for (const MeshFace& face : body.faces) {
        for (const Triangle& t : face.triangles) {
            six += Dot(face.points[t[0]], Cross(face.points[t[1]], face.points[t[2]]));
        }
    }
    return six / 6;
}

std::vector<std::uint64_t> EntitiesOf(const MeshBody& body) {
    std::vector<std::uint64_t> entities;
    for (const MeshFace& face : body.faces) { entities.push_back(face.entity); }
    return entities;
}

// The least cosine between the normal of a triangle and those at its points.
double WorstNormal(const MeshBody& body) {
    double worst = 1;
    for (const MeshFace& face : body.faces) {
        if (face.normals.size() != face.points.size()) { return -2; }
        for (const Triangle& t : face.triangles) {
            const Vec3 normal =
                Unit(Cross(face.points[t[1]] - face.points[t[0]], face.points[t[2]] - face.points[t[0]]));
            for (const Index i : t) { worst = std::min(worst, Dot(normal, face.normals[i])); }
        }
    }
    return worst;
}

class Units : public testing::TestWithParam<std::tuple<LengthUnit, AngleUnit>> {};

TEST_P(Units, AreThoseOfTheContext) {
    const auto [length, angle] = GetParam();
    SolidText solids(100);
    const std::uint64_t cube = solids.AddCube(3);
    const std::vector<std::uint64_t> cubeFaces = solids.Faces();
    const std::uint64_t cone = solids.AddCone(angle);
    const std::vector<std::uint64_t> coneFaces = solids.Faces();
    const MeshResult result = MeshOf(ContextText(length, angle) + solids.Text(), {cube, cone});
    EXPECT_THAT(result.losses, IsEmpty());
    ASSERT_THAT(result.bodies, SizeIs(2));
    EXPECT_THAT(EntitiesOf(result.bodies[0]), ElementsAreArray(cubeFaces));
    EXPECT_NEAR(VolumeOf(result.bodies[0]), 27, 1e-9);
    EXPECT_NEAR(WorstNormal(result.bodies[0]), 1, 1e-12);
    EXPECT_THAT(EntitiesOf(result.bodies[1]), ElementsAreArray(coneFaces));
    EXPECT_NEAR(VolumeOf(result.bodies[1]), std::numbers::pi * 7 / 3, 0.05);
    EXPECT_GT(WorstNormal(result.bodies[1]), 0.97);
}

INSTANTIATE_TEST_SUITE_P(Kernel, Units,
                         testing::Values(std::tuple{LengthUnit::kMillimetre, AngleUnit::kRadian},
                                         std::tuple{LengthUnit::kInch, AngleUnit::kRadian},
                                         std::tuple{LengthUnit::kMetre, AngleUnit::kRadian},
                                         std::tuple{LengthUnit::kMillimetre, AngleUnit::kDegree},
                                         std::tuple{LengthUnit::kInch, AngleUnit::kDegree}));

TEST(Kernel, MakesBodiesOfAllKinds) {
    SolidText solids(100);
    const auto add = [&](const std::string& before, std::uint64_t number, const std::string& after) {
        return solids.Add(before + std::to_string(number) + after);
    };
    solids.AddCube(2);
    const std::uint64_t shell = solids.Shell();
    const std::uint64_t face = solids.Faces()[0];
    const std::uint64_t faceted = add("FACETED_BREP('',#", shell, ")");
    const std::uint64_t shells = add("SHELL_BASED_SURFACE_MODEL('',(#", shell, "))");
    const std::uint64_t set = add("CONNECTED_FACE_SET('',(#", face, "))");
    const std::uint64_t sets = add("FACE_BASED_SURFACE_MODEL('',(#", set, "))");
    const std::uint64_t open = add("OPEN_SHELL('',(#", face, "))");
    const std::uint64_t outer = add("BREP_WITH_VOIDS('',#", shell, ",())");
    const std::uint64_t axes = solids.Add("AXIS2_PLACEMENT_3D('',#100,$,$)");
    const std::uint64_t plane = add("PLANE('',#", axes, ")");
    const std::uint64_t trimmed = add("RECTANGULAR_TRIMMED_SURFACE('',#", plane, ",0.,1.,0.,1.,.T.,.T.)");
    const std::uint64_t surfaces = add("GEOMETRIC_SET('',(#", trimmed, "))");
    const std::vector<std::uint64_t> bodies{faceted, shells, sets, open, outer, surfaces, shell, face, set};
    const MeshResult result = MeshOf(ContextText() + solids.Text(), bodies);
    EXPECT_THAT(result.losses, IsEmpty());
    std::vector<std::size_t> faces;
    for (const MeshBody& body : result.bodies) { faces.push_back(body.faces.size()); }
    EXPECT_THAT(faces, ElementsAre(6, 6, 1, 1, 6, 1, 6, 1, 1));
    EXPECT_THAT(EntitiesOf(result.bodies[5]), ElementsAre(trimmed));
    EXPECT_THAT(EntitiesOf(result.bodies[7]), ElementsAre(face));
}

TEST(Kernel, MakesBodiesWithNumbersThatItCannotHold) {
    SolidText solids(std::uint64_t{1} << 40);
    const std::uint64_t cube = solids.AddCube(1);
    const std::vector<std::uint64_t> faces = solids.Faces();
    const MeshResult result = MeshOf(ContextText() + solids.Text(), {cube});
    EXPECT_THAT(result.losses, IsEmpty());
    ASSERT_THAT(result.bodies, SizeIs(1));
    EXPECT_EQ(result.bodies[0].entity, cube);
    EXPECT_THAT(EntitiesOf(result.bodies[0]), ElementsAreArray(faces));
}

TEST(Kernel, NamesTheFacesThatGetNoTriangles) {
    SolidText solids(100);
    const std::uint64_t cube = solids.AddCube(1);
    const std::uint64_t face = solids.Faces()[3];
    std::string text = ContextText() + solids.Text();
    const std::string wanted = "#" + std::to_string(face) + "=ADVANCED_FACE('side',(#";
    const std::size_t place = text.find(wanted);
    ASSERT_NE(place, std::string::npos);
    // Its bound isn't there.
    text.replace(place + wanted.size(), 1, "9999");
    const MeshResult result = MeshOf(text, {cube});
    ASSERT_THAT(result.bodies, SizeIs(1));
    EXPECT_THAT(result.bodies[0].faces, SizeIs(5));
    EXPECT_THAT(result.bodies[0].lostFaces, ElementsAre(face));
    ASSERT_FALSE(result.losses.empty());
    EXPECT_THAT(result.losses[0], HasSubstr("lacks 1 of 6 faces (#" + std::to_string(face) + ")"));
}

TEST(Kernel, MakesTheOthersWhereOneBodyIsBad) {
    SolidText solids(100);
    const std::uint64_t cube = solids.AddCube(1);
    const std::uint64_t face = solids.Add("ADVANCED_FACE('',(#9999),#8888,.T.)");
    const std::uint64_t shell = solids.Add("CLOSED_SHELL('',(#" + std::to_string(face) + "))");
    const std::uint64_t bad = solids.Add("MANIFOLD_SOLID_BREP('',#" + std::to_string(shell) + ")");
    const MeshResult result = MeshOf(ContextText() + solids.Text(), {bad, cube});
    ASSERT_THAT(result.bodies, SizeIs(2));
    EXPECT_THAT(result.bodies[0].faces, IsEmpty());
    EXPECT_THAT(result.bodies[1].faces, SizeIs(6));
    EXPECT_THAT(result.losses, SizeIs(1));
}

// The solid's shell is a face.
TEST(Kernel, MakesFacesWhereItMakesNoBody) {
    SolidText solids(100);
    solids.AddCube(1);
    const std::uint64_t face = solids.Faces()[0];
    const std::uint64_t bad = solids.Add("MANIFOLD_SOLID_BREP('',#" + std::to_string(face) + ")");
    const MeshResult result = MeshOf(ContextText() + solids.Text(), {bad});
    ASSERT_THAT(result.bodies, SizeIs(1));
    EXPECT_THAT(EntitiesOf(result.bodies[0]), ElementsAre(face));
    EXPECT_THAT(result.losses, IsEmpty());
    ASSERT_THAT(result.notes, SizeIs(1));
    EXPECT_THAT(result.notes[0], HasSubstr("could only be made face by face"));
}

// Any number of a solid, one after the other, becomes one beyond reason.
TEST(Kernel, ComesBackFromDamagedNumbers) {
    SolidText solids(100);
    const std::uint64_t cone = solids.AddCone(AngleUnit::kRadian);
    const std::string instances = ContextText() + solids.Text();
    MesherOptions options = Options();
    options.timeLimit = 0.5;
    Mesher mesher(options);
    const std::vector<std::uint64_t> bodies{cone};
    std::size_t number = 0;
    for (std::size_t at = instances.find('.', instances.find("#100=")); at != std::string::npos;
         at = instances.find('.', at + 1)) {
        const std::size_t begin = instances.find_last_not_of("-0123456789", at - 1) + 1;
        const std::size_t end = instances.find_first_not_of("0123456789", at + 1);
        // Not an enumeration.
        if (begin == at) { continue; }
        const char* const other = ++number % 2 == 0 ? "1.E300" : "99999999.";
        const Padded text(ExchangeText(instances.substr(0, begin) + other + instances.substr(end)));
        const ExchangeFile file(text.Text());
        const MeshResult result = mesher.Mesh(file, bodies, kContext);
        ASSERT_THAT(result.bodies, SizeIs(1));
        EXPECT_TRUE(result.bodies[0].lostFaces.empty() || !result.losses.empty()) << number;
    }
    EXPECT_GT(number, 30U);
}

TEST(Kernel, IsFinerWhereThatIsAsked) {
    SolidText solids(100);
    const std::uint64_t cone = solids.AddCone(AngleUnit::kRadian);
    std::vector<std::size_t> counts;
    for (const double deflection : {0.1, 0.001, 0.0001}) {
        MesherOptions options = Options();
        options.deflection = deflection;
        options.angle = 40;
        const MeshResult result = MeshOf(ContextText() + solids.Text(), {cone}, options);
        ASSERT_THAT(result.losses, IsEmpty());
        counts.push_back(result.bodies[0].faces[0].triangles.size());
    }
    EXPECT_LT(counts[0], counts[1]);
    EXPECT_LT(counts[1], counts[2]);
}

TEST(Kernel, AnswersOneFileAfterTheOther) {
    Mesher mesher(Options());
    for (int i = 1; i <= 5; ++i) {
        SolidText solids(100);
        const std::vector<std::uint64_t> bodies{solids.AddCube(i)};
        const Padded text(ExchangeText(ContextText() + solids.Text()));
        const ExchangeFile file(text.Text());
        const MeshResult result = mesher.Mesh(file, bodies, kContext);
        EXPECT_THAT(result.losses, IsEmpty());
        EXPECT_NEAR(VolumeOf(result.bodies[0]), i * i * i, 1e-9);
    }
}

TEST(Kernel, ForgetsTheUnitsOfTheFileBefore) {
    Mesher mesher(Options());
    SolidText solids(100);
    const std::vector<std::uint64_t> bodies{solids.AddCone(AngleUnit::kRadian)};
    const std::string contexts[] = {ContextText(LengthUnit::kInch, AngleUnit::kDegree),
                                    "#10=REPRESENTATION_CONTEXT('','');\n",
                                    "#10=GEOMETRIC_REPRESENTATION_CONTEXT('','',3);\n", ""};
    for (const std::string& context : contexts) {
        const Padded text(ExchangeText(context + solids.Text()));
        const ExchangeFile file(text.Text());
        const MeshResult result = mesher.Mesh(file, bodies, kContext);
        if (&context == &contexts[0]) { continue; }
        EXPECT_THAT(result.losses, IsEmpty());
        EXPECT_NEAR(VolumeOf(result.bodies[0]), std::numbers::pi * 7 / 3, 0.05);
    }
}

TEST(Kernel, WithoutMemoryIsToldAndNotWaitedFor) {
    if (kSanitized) { GTEST_SKIP() << "its memory isn't limited with a sanitizer"; }
    MesherOptions options = Options();
    options.memoryLimit = std::size_t{1} << 20;
    SolidText solids(100);
    const std::uint64_t cube = solids.AddCube(1);
    const MeshResult result = MeshOf(ContextText() + solids.Text(), {cube}, options);
    EXPECT_THAT(result.bodies[0].faces, IsEmpty());
    EXPECT_THAT(result.losses, SizeIs(1));
}

} // namespace
} // namespace tarnwick::test
