// One machine as a P21 assembly, as STEP XML and as an archive: the same placed triangles.

#include "support/formats.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick {
namespace {

using namespace test;
using nlohmann::json;

// top holds the wheel twice, and the cart, which holds it once more.
std::string Assembly() {
    const auto product = [](int id, const std::string& name) {
        const std::string n = std::to_string(id);
        return "#" + n + "=PRODUCT('" + name + "','" + name + "','',(#1));\n#" + std::to_string(id + 1) +
               "=PRODUCT_DEFINITION_FORMATION('','',#" + n + ");\n#" + std::to_string(id + 2) +
               "=PRODUCT_DEFINITION('d','',#" + std::to_string(id + 1) + ",#2);\n#" + std::to_string(id + 3) +
               "=PRODUCT_DEFINITION_SHAPE('','',#" + std::to_string(id + 2) + ");\n#" +
               std::to_string(id + 4) + "=SHAPE_DEFINITION_REPRESENTATION(#" + std::to_string(id + 3) + ",#" +
               std::to_string(id + 5) + ");\n#" + std::to_string(id + 5) +
               "=SHAPE_REPRESENTATION('',(#3),#4);\n";
    };
    const auto use = [](int id, int parent, int child, const std::string& place) {
        const auto n = [id](int k) { return "#" + std::to_string(id + k); };
        const auto of = [](int base, int k) { return "#" + std::to_string(base + k); };
        return n(0) + "=NEXT_ASSEMBLY_USAGE_OCCURRENCE('u','','u'," + of(parent, 2) + "," + of(child, 2) +
               ",$);\n" + n(1) + "=PRODUCT_DEFINITION_SHAPE('',''," + n(0) + ");\n" + n(2) +
               "=CARTESIAN_POINT('',(" + place + "));\n" + n(3) + "=AXIS2_PLACEMENT_3D(''," + n(2) +
               ",#6,#7);\n" + n(4) + "=ITEM_DEFINED_TRANSFORMATION('',''," + "#3," + n(3) + ");\n" + n(5) +
               "=(REPRESENTATION_RELATIONSHIP('',''," + of(child, 5) + "," + of(parent, 5) +
               ")REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(" + n(4) +
               ")SHAPE_REPRESENTATION_RELATIONSHIP());\n" + n(6) +
               "=CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(" + n(5) + "," + n(1) + ");\n";
    };
    return "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF'));"
           "\nENDSEC;\n"
           "DATA;\n#3=AXIS2_PLACEMENT_3D('',#5,#6,#7);\n#5=CARTESIAN_POINT('',(0.,0.,0.));\n"
           "#6=DIRECTION('',(0.,0.,1.));\n#7=DIRECTION('',(1.,0.,0.));\n" +
           product(10, "top") + product(20, "cart") + product(30, "wheel") + use(100, 10, 30, "1.,0.,0.") +
           use(110, 10, 30, "2.,0.,0.") + use(120, 10, 20, "0.,5.,0.") + use(130, 20, 30, "0.,0.,7.") +
           "#200=DOCUMENT_FILE('wheel.stp','','',#8,'','');\n"
           "#201=APPLIED_DOCUMENT_REFERENCE(#200,'',(#32));\nENDSEC;\nEND-ISO-10303-21;\n";
}

std::string Xml() {
    return Document(Part("wheel", UsedAs("1") + UsedAs("2") + UsedAs("3") + Assigned("f")) +
                    File("f", "wheel.stp") + Part("cart", UsedAs("4") + Use("3", "0 0 7")) +
                    Part("top", Use("1", "1 0 0") + Use("2", "2 0 0") + Use("4", "0 5 0")));
}

json Placed(const json& report) {
    json placed = json::array();
    for (const json& item : report["drawList"]) {
        json vertices = json::array();
        for (const json& mesh : item["meshes"]) {
            vertices.push_back(report["meshes"][mesh.get<std::size_t>()]["verticesCrc"]);
        }
        placed.push_back({{"matrix", item["matrix"]},
                          {"product", report["products"][item["product"].get<std::size_t>()]["name"]},
                          {"vertices", vertices}});
    }
    return placed;
}

TEST(SameMachine, HasTheSamePlacedTrianglesInEveryFormat) {
    const TestFolder folder;
    folder.Write("wheel.stp", PartFile("wheel"));
    const json p21 = LoadReport(folder.Write("top.stp", Assembly()), nullptr, 1);
    const json xml = LoadReport(folder.Write("top.stpx", Xml()), nullptr, 1);
    WriteArchive(folder.Path("top.stpa"),
                 {{"stpa.ini", "\"top.stpx\""}, {"top.stpx", Xml()}, {"wheel.stp", PartFile("wheel")}});
    const json archive = LoadReport(folder.Path("top.stpa"), nullptr, 1);
    EXPECT_EQ(xml["triangles"], 6);
    EXPECT_EQ(xml, archive);
    EXPECT_EQ(p21["triangles"], 6);
    EXPECT_EQ(Placed(p21), Placed(xml));
    EXPECT_EQ(p21["box"], xml["box"]);
    EXPECT_EQ(p21["eye"], xml["eye"]);
}

} // namespace
} // namespace tarnwick
