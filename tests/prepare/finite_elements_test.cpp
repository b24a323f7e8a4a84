#include "prepare/elements/finite_elements.h"

#include "exchange/padded.h"
#include "exchange/strict_check.h"
#include "support/loaded_file.h"
#include "support/real_files.h"
#include "support/temp_folder.h"
#include "tools/make/fem.h"
#include "write/byte_sink.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tarnwick::prepare {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace test;

constexpr const char* kContext =
    "#1=(GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNIT_ASSIGNED_CONTEXT((#2,#3))REPRESENTATION_CONTEXT('',''"
    "));"
    "#2=(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.));"
    "#3=(CONVERSION_BASED_UNIT('DEGREE',#4)NAMED_UNIT(*)PLANE_ANGLE_UNIT());"
    "#4=PLANE_ANGLE_MEASURE_WITH_UNIT(PLANE_ANGLE_MEASURE(0.017453292519943295),#5);"
    "#5=(NAMED_UNIT(*)PLANE_ANGLE_UNIT()SI_UNIT($,.RADIAN.));"
    "#6=FEA_AXIS2_PLACEMENT_3D('',#7,$,$,.CARTESIAN.,'');#7=CARTESIAN_POINT('',(0.,0.,0.));"
    "#8=FEA_MODEL_3D('',(#6),#1,'',(''),'');"
    "#9=SURFACE_ELEMENT_PROPERTY('','',$);";

std::string FileOf(const std::string& data) {
    return "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('AP209'));\nENDSEC;\nDATA;\n" + data +
           "ENDSEC;\nEND-ISO-10303-21;\n";
}
// A unit cube's eight corners as nodes #101 to #108, in the order of a hexahedron; #109 a dummy.
std::string CubeNodes() {
    std::string text;
    const char* const points[] = {"0.,0.,0.", "1.,0.,0.", "1.,1.,0.", "0.,1.,0.",
                                  "0.,0.,1.", "1.,0.,1.", "1.,1.,1.", "0.,1.,1."};
    for (int i = 0; i < 8; ++i) {
        const std::string number = std::to_string(i + 1);
        text += "#20" + number + "=CARTESIAN_POINT('',(" + points[i] + "));#10" + number + "=NODE('',(#20" +
                number + "),#1,#8);";
    }
    return text + "#209=CARTESIAN_POINT('',(9.,9.,9.));#109=DUMMY_NODE('',(#209),#1,#8);";
}
std::string Shell(int number, const std::string& nodes, const std::string& property = "#9") {
    return "#" + std::to_string(number) + "=SURFACE_3D_ELEMENT_REPRESENTATION('',(#6),#1,(" + nodes +
           "),#8,$," + property + ",$);";
}
std::string Volume(int number, const std::string& nodes, const std::string& descriptor = "$") {
    return "#" + std::to_string(number) + "=VOLUME_3D_ELEMENT_REPRESENTATION('',(#6),#1,(" + nodes + "),#8," +
           descriptor + ",$);";
}

ElementMesh Read(const std::string& text) {
    const Padded padded(text);
    const ExchangeFile file(padded.Text());
    return ReadElements(file);
}
ElementMesh ReadData(const std::string& data) {
    return Read(FileOf(kContext + data));
}
std::string WriteText(const ElementMesh& mesh) {
    std::string text;
    StringSink sink(&text);
    P21Writer writer(&sink);
    WriteElementFile(mesh, "mesh", &writer);
    return text;
}
std::vector<std::string> UndrawnOf(const ElementMesh& mesh) {
    std::vector<std::string> lines;
    for (const UndrawnElements& kind : mesh.undrawn) {
        lines.push_back(std::to_string(kind.count) + " " + kind.kind + (kind.isShape ? "!" : ""));
    }
    return lines;
}

TEST(FiniteElements, ShellsAreDrawnByTheirCorners) {
    const ElementMesh mesh = ReadData(
        CubeNodes() + Shell(301, "#101,#102,#103,#104") + Shell(302, "#101,#102,#105") +
        Shell(303, "#102,#103,#107,#109,#109,#109") + Shell(304, "#105,#106,#107,#108,#109,#109,#109,#109") +
        Shell(305, "#101,#102,#106,#105,#109,#109,#109,#109,#109"));
    EXPECT_THAT(mesh.quads, ElementsAre(std::array{0u, 1u, 2u, 3u}, std::array{0u, 1u, 4u, 4u},
                                        std::array{1u, 2u, 5u, 5u}, std::array{4u, 6u, 5u, 7u},
                                        std::array{0u, 1u, 6u, 4u}));
    EXPECT_EQ(mesh.nodes.size(), 8u);
    EXPECT_EQ(mesh.nodes[4], (Vec3{0, 0, 1}));
    EXPECT_THAT(mesh.values, IsEmpty());
    EXPECT_THAT(mesh.undrawn, IsEmpty());
}

TEST(FiniteElements, OfVolumesTheSkinIsDrawn) {
    EXPECT_EQ(ReadData(CubeNodes() + Volume(301, "#101,#102,#103,#104,#105,#106,#107,#108")).quads.size(),
              6u);
    EXPECT_EQ(ReadData(CubeNodes() + Volume(301, "#101,#102,#103,#105,#106,#107") +
                       Volume(302, "#101,#103,#104,#105,#107,#108"))
                  .quads.size(),
              8u);
    EXPECT_EQ(ReadData(CubeNodes() + Volume(301, "#101,#102,#103,#104,#105")).quads.size(), 5u);
    EXPECT_EQ(ReadData(CubeNodes() + Volume(301, "#101,#102,#103,#105")).quads.size(), 4u);
    EXPECT_EQ(
        ReadData(CubeNodes() + Volume(301, "#101,#102,#103,#105,#109,#109,#109,#109,#109,#109")).quads.size(),
        4u);
}

TEST(FiniteElements, TheDescriptorTellsTheShape) {
    const std::string descriptor = "#300=VOLUME_3D_ELEMENT_DESCRIPTOR(.QUADRATIC_ORDER.,'',(ENUMERATED_"
                                   "VOLUME_ELEMENT_PURPOSE(.X.)),.WEDGE.);";
    EXPECT_EQ(ReadData(CubeNodes() + descriptor +
                       Volume(301, "#101,#102,#103,#105,#106,#107,#109,#109,#109,#109", "#300"))
                  .quads.size(),
              5u);
}

TEST(FiniteElements, ComplexInstancesAreReadToo) {
    const ElementMesh mesh = ReadData(
        "#201=CARTESIAN_POINT('',(0.,0.,0.));#202=CARTESIAN_POINT('',(1.,0.,0.));#203=CARTESIAN_POINT('',(0.,"
        "1.,0.));"
        "#101=(NODE()NODE_REPRESENTATION(#8)REPRESENTATION('',(#201),#1));#102=NODE('',(#202),#1,#8);"
        "#103=NODE('',(#203),#1,#8);#301=(ELEMENT_REPRESENTATION((#101,#102,#103))REPRESENTATION('',(#6),#1)"
        "SURFACE_3D_ELEMENT_REPRESENTATION(#8,$,#9,$));");
    EXPECT_THAT(mesh.quads, ElementsAre(std::array{0u, 1u, 2u, 2u}));
}

TEST(FiniteElements, WhatHasNoSurfaceIsCountedByKind) {
    const ElementMesh mesh = ReadData(CubeNodes() +
                                      "#301=CURVE_3D_ELEMENT_REPRESENTATION('',(#6),#1,(#101,#102),#8,$,$,$);"
                                      "#302=CURVE_3D_ELEMENT_REPRESENTATION('',(#6),#1,(#102,#103),#8,$,$,$);"
                                      "#303=POINT_ELEMENT_REPRESENTATION('',(#6),#1,(#101),#8,$,$);" +
                                      Shell(304, "#101,#102") + Shell(305, "#101,#109,#102") +
                                      Shell(306, "#101,#101,#102") + Shell(307, "#101,#999,#102"));
    EXPECT_THAT(UndrawnOf(mesh), testing::UnorderedElementsAre(
                                     "2 CURVE_3D_ELEMENT_REPRESENTATION", "1 POINT_ELEMENT_REPRESENTATION",
                                     "1 SURFACE_3D_ELEMENT_REPRESENTATION of an unknown form!",
                                     "2 SURFACE_3D_ELEMENT_REPRESENTATION without one of its nodes!",
                                     "1 SURFACE_3D_ELEMENT_REPRESENTATION without an extent!"));
    EXPECT_THAT(mesh.quads, IsEmpty());
    EXPECT_THAT(mesh.nodes, IsEmpty());
}

std::string Section(int number, const std::string& thickness) {
    return "#" + std::to_string(number) + "=UNIFORM_SURFACE_SECTION($,$,$," + thickness + ",$,$);";
}

TEST(FiniteElements, SectionsThatDifferAreTheValuesOfTheCorners) {
    const std::string sections =
        Section(401, "1.") + Section(402, "2.") + Section(403, "UNSPECIFIED_VALUE(.UNSPECIFIED.)") +
        "#411=SURFACE_SECTION_FIELD_VARYING((#401,#402,#401,#403),.F.);#412=SURFACE_SECTION_FIELD_CONSTANT(#"
        "402);"
        "#421=SURFACE_ELEMENT_PROPERTY('','',#411);#422=SURFACE_ELEMENT_PROPERTY('','',#412);";
    const ElementMesh mesh = ReadData(CubeNodes() + sections + Shell(301, "#101,#102,#103,#104", "#421") +
                                      Shell(302, "#101,#102,#105", "#422") + Shell(303, "#101,#102,#106"));
    EXPECT_THAT(mesh.values, ElementsAre(std::array{1.f, 2.f, 1.f, 7.9f}, std::array{2.f, 2.f, 2.f, 2.f},
                                         std::array{7.9f, 7.9f, 7.9f, 7.9f}));
    EXPECT_THAT(ReadData(CubeNodes() + sections + Shell(302, "#101,#102,#105", "#422")).values, IsEmpty());
    const Padded written(WriteText(mesh));
    EXPECT_THAT(CheckStrictly(written.Text(), 10), IsEmpty());
    const ElementMesh again = Read(WriteText(mesh));
    EXPECT_EQ(again.values, mesh.values);
    EXPECT_EQ(again.quads, mesh.quads);
    EXPECT_EQ(again.nodes, mesh.nodes);
}

TEST(FiniteElements, NodesAreInMillimetres) {
    std::string text = FileOf(kContext + CubeNodes() + Shell(301, "#101,#102,#103"));
    const auto lengthWith = [&](const std::string& unit) {
        const std::string old = "(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.))";
        std::string changed = text;
        changed.replace(changed.find(old), old.size(), unit);
        return Read(changed).nodes[1].x;
    };
    EXPECT_EQ(lengthWith("(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT($,.METRE.))"), 1000);
    EXPECT_EQ(lengthWith("SI_UNIT(*,.CENTI.,.METRE.)"), 10);
    EXPECT_DOUBLE_EQ(lengthWith("SI_UNIT(*,.PICO.,.METRE.)"), 1e-9);
    EXPECT_NEAR(lengthWith("(CONVERSION_BASED_UNIT('INCH',#999)LENGTH_UNIT()NAMED_UNIT(#1));"
                           "#999=LENGTH_MEASURE_WITH_UNIT(LENGTH_MEASURE(25.4),#998);"
                           "#998=(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.))"),
                25.4, 1e-12);
    EXPECT_EQ(lengthWith("(CONVERSION_BASED_UNIT('X',#2)LENGTH_UNIT())"), 1);
}

TEST(FiniteElements, NodesBeyondWhatCanBeShownAreNowhere) {
    const auto facesOf = [](const std::string& x) {
        std::string nodes = CubeNodes();
        const std::string first = "#201=CARTESIAN_POINT('',(0.";
        nodes.replace(nodes.find(first), first.size(), "#201=CARTESIAN_POINT('',(" + x);
        return ReadData(nodes + Shell(300, "#101,#102,#103,#104")).quads.size();
    };
    EXPECT_EQ(facesOf("3.4E38"), 1u);
    EXPECT_EQ(facesOf("3.5E38"), 0u);
    EXPECT_EQ(facesOf("-3.5E38"), 0u);
    EXPECT_EQ(facesOf("4.E128"), 0u);
}

TEST(FiniteElements, NodesStandInTheSystemOfTheirSet) {
    const auto nodeWith = [](const std::string& kind, const std::string& point) {
        const ElementMesh mesh = ReadData(
            "#50=CARTESIAN_POINT('',(10.,0.,0.));#51=DIRECTION('',(1.,0.,0.));#52=DIRECTION('',(0.,1.,0.));"
            "#53=FEA_AXIS2_PLACEMENT_3D('1',#50,#51,#52," +
            kind +
            ",'');#54=NODE_SET('',(#101,#102,#103));#55=POINT_REPRESENTATION('',(#54,#53),#1);"
            "#201=" +
            point +
            ";#202=CARTESIAN_POINT('',(1.,0.,0.));#203=CARTESIAN_POINT('',(2.,90.,0.));"
            "#101=NODE('',(#201),#1,#8);#102=NODE('',(#202),#1,#8);#103=NODE('',(#203),#1,#8);" +
            Shell(301, "#101,#102,#103"));
        return mesh.nodes.at(0);
    };
    // Its z axis is x, its x axis y, so that its y axis is z.
    const auto isAt = [](Vec3 p, Vec3 wanted) { return Length(p - wanted) < 1e-9; };
    EXPECT_TRUE(isAt(nodeWith(".CARTESIAN.", "CARTESIAN_POINT('',(1.,2.,3.))"), {13, 1, 2}));
    EXPECT_TRUE(isAt(nodeWith(".CYLINDRICAL.", "CARTESIAN_POINT('',(2.,90.,3.))"), {13, 0, 2}));
    EXPECT_TRUE(isAt(nodeWith(".SPHERICAL.", "CARTESIAN_POINT('',(2.,90.,0.))"), {10, 2, 0}));
    EXPECT_TRUE(isAt(nodeWith(".CARTESIAN.", "CYLINDRICAL_POINT('',*,2.,180.,3.)"), {13, -2, 0}));
    EXPECT_TRUE(isAt(nodeWith(".CARTESIAN.", "SPHERICAL_POINT('',*,2.,0.,0.)"), {12, 0, 0}));
}

TEST(FiniteElements, EveryCutOfAFileIsHarmless) {
    const std::string text = FileOf(
        kContext + CubeNodes() + Section(401, "1.") + "#411=SURFACE_SECTION_FIELD_VARYING((#401,#401),.F.);" +
        "#421=SURFACE_ELEMENT_PROPERTY('','',#411);" + Shell(301, "#101,#102,#103,#104", "#421") +
        Volume(302, "#101,#102,#103,#104,#105,#106,#107,#108"));
    for (std::size_t length = 0; length < text.size(); ++length) { Read(text.substr(0, length)); }
}

TEST(FiniteElements, EveryWrongReferenceIsHarmless) {
    const std::string text = FileOf(kContext + CubeNodes() + Section(401, "1.") +
                                    "#411=SURFACE_SECTION_FIELD_VARYING((#401,#401),.F.);" +
                                    "#421=SURFACE_ELEMENT_PROPERTY('','',#411);#54=NODE_SET('',(#101));"
                                    "#55=POINT_REPRESENTATION('',(#54,#6),#1);" +
                                    Shell(301, "#101,#102,#103,#104", "#421"));
    for (std::size_t at = text.find('#'); at != std::string::npos; at = text.find('#', at + 1)) {
        for (const char* const number : {"#301", "#1  ", "#101", "#55 ", "#421"}) {
            std::string changed = text;
            const std::size_t end = changed.find_first_not_of("0123456789", at + 1);
            changed.replace(at, end - at, number);
            Read(changed);
        }
    }
}

// Position and colour at the corners of each quad; the reader has its own order of quads.
std::vector<std::array<float, 24>> CornersOf(const ResultMesh& mesh) {
    std::vector<std::array<float, 24>> quads(static_cast<std::size_t>(mesh.quadCount));
    for (std::size_t corner = 0; corner < 4 * quads.size(); ++corner) {
        const std::size_t node = mesh.quadIndices[corner];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            quads[corner / 4][6 * (corner % 4) + axis] = mesh.vertices[3 * node + axis];
            quads[corner / 4][6 * (corner % 4) + axis + 3] = mesh.colours[4 * node + axis];
        }
    }
    std::sort(quads.begin(), quads.end());
    return quads;
}

TEST(FiniteElements, AFileOfOurOwnComesBackAsItIs) {
    std::string text;
    StringSink sink(&text);
    P21Writer writer(&sink);
    make::FemOptions options;
    options.quads = 100;
    make::WriteFem(options, &writer);
    const ElementMesh mesh = Read(text);
    EXPECT_EQ(mesh.quads.size(), 100u);
    EXPECT_EQ(mesh.values.size(), 100u);
    EXPECT_THAT(mesh.undrawn, IsEmpty());
    const TempFolder folder;
    const LoadedFile made(folder.Write("made.stp", text), false);
    const LoadedFile prepared(folder.Write("prepared.stp", WriteText(mesh)), false);
    ASSERT_NE(made.session.loaded.resultMesh, nullptr);
    ASSERT_NE(prepared.session.loaded.resultMesh, nullptr);
    const ResultMesh& a = *made.session.loaded.resultMesh;
    const ResultMesh& b = *prepared.session.loaded.resultMesh;
    EXPECT_EQ(CornersOf(a), CornersOf(b));
}

// Each edge runs as often in the one direction as in the other.
bool IsClosed(const ElementMesh& mesh) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    for (const auto& q : mesh.quads) {
        for (std::size_t i = 0; i < 4; ++i) {
            const std::uint32_t from = q[i];
            const std::uint32_t to = q[(i + 1) % 4];
            if (from != to) { edges[std::minmax(from, to)] += from < to ? 1 : -1; }
        }
    }
    return std::all_of(edges.begin(), edges.end(), [](const auto& edge) { return edge.second == 0; });
}
double VolumeIn(const ElementMesh& mesh) {
    double volume = 0;
    for (const auto& q : mesh.quads) {
        const Vec3 a = mesh.nodes[q[0]];
        volume += Dot(a, Cross(mesh.nodes[q[1]], mesh.nodes[q[2]])) / 6;
        volume += Dot(a, Cross(mesh.nodes[q[2]], mesh.nodes[q[3]])) / 6;
    }
    return volume;
}

struct RealMesh {
    const char* name;
    std::size_t quads;
    std::ptrdiff_t triangles; // of the quads
    std::size_t nodes;
    double volume; // in cubic metres, 0 for shells
};

TEST(FiniteElements, RealFilesAreShownWhole) {
    for (const RealMesh& wanted :
         {RealMesh{"fem/ATS3-out.stp", 88, 48, 85, 0}, RealMesh{"fem/ATS3Mod0-outresult.stp", 88, 48, 85, 0},
          RealMesh{"world/fem/ATS7-out.stp", 88, 48, 85, 0}, RealMesh{"fem/ATS4-out.stp", 376, 272, 216, 128},
          RealMesh{"world/fem/ATS8-out.stp", 376, 272, 216, 128},
          RealMesh{"world/fem/ATS10-out.stp", 376, 272, 246, 128}}) {
        const std::string path = RealFile(wanted.name);
        if (path.empty()) { GTEST_SKIP() << "the files aren't here"; }
        SCOPED_TRACE(wanted.name);
        const ElementMesh mesh = Read(ReadWholeFile(path));
        EXPECT_THAT(mesh.undrawn, IsEmpty());
        EXPECT_EQ(mesh.quads.size(), wanted.quads);
        EXPECT_EQ(mesh.nodes.size(), wanted.nodes);
        EXPECT_EQ(std::count_if(mesh.quads.begin(), mesh.quads.end(),
                                [](const auto& quad) { return quad[2] == quad[3]; }),
                  wanted.triangles);
        if (wanted.volume != 0) {
            EXPECT_TRUE(IsClosed(mesh));
            EXPECT_NEAR(VolumeIn(mesh) / 1e9, wanted.volume, 1e-3);
        }
        const TempFolder folder;
        const LoadedFile load(folder.Write("mesh.stp", WriteText(mesh)), false);
        ASSERT_NE(load.session.loaded.resultMesh, nullptr);
        const ResultMesh& shown = *load.session.loaded.resultMesh;
        EXPECT_EQ(static_cast<std::size_t>(shown.quadCount), wanted.quads);
        EXPECT_EQ(static_cast<std::size_t>(shown.nodeCount), wanted.nodes);
        for (std::int32_t i = 0; i < shown.nodeCount; ++i) {
            EXPECT_EQ(shown.colours[4 * i], 127); // light blue
            EXPECT_EQ(shown.colours[4 * i + 2], 255);
        }
    }
}

TEST(FiniteElements, OfARealFileOfRodsNothingIsDrawn) {
    const std::string path = RealFile("world/fem/ATS1-out.stp");
    if (path.empty()) { GTEST_SKIP() << "the file isn't here"; }
    const ElementMesh mesh = Read(ReadWholeFile(path));
    EXPECT_THAT(mesh.quads, IsEmpty());
    EXPECT_THAT(UndrawnOf(mesh), ElementsAre("16 CURVE_3D_ELEMENT_REPRESENTATION"));
}

} // namespace
} // namespace tarnwick::prepare
