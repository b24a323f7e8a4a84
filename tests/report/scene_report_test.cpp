#include "formats/load_commands.h"
#include "report/report.h"

#include "load/view_setup.h"
#include "support/capture.h"
#include "support/json.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tarnwick::test {
namespace {

using nlohmann::json;

json Reported(const SceneView& view, bool arrays = false) {
    const std::string status = "status";
    return ParseJson(SceneReport(view, "path", &status, arrays));
}

json ReportOf(const std::string& text, bool arrays = false) {
    const TempFolder folder;
    SceneView view;
    {
        const LogCapture log;
        LoadStepFile(view, folder.Write("part.stp", text).c_str(), 0);
    }
    return Reported(view, arrays);
}

std::set<std::string> Keys(const json& object) {
    std::set<std::string> keys;
    for (const auto& item : object.items()) { keys.insert(item.key()); }
    return keys;
}

TEST(SceneReport, OfAFreshViewIsItsFirstState) {
    const SceneView view;
    const json report = ParseJson(SceneReport(view, "a/b.step", nullptr, false));
    EXPECT_EQ(report, ParseJson(R"({
        "format": "tarnwick.scene/1", "path": "a/b.step", "status": null, "triangles": 0, "pickMode": 0,
        "maxDepth": 0, "box": [0.0,0.0,0.0,0.0,0.0,0.0], "centre": [0.0,0.0,0.0], "modelSize": 120.0,
        "eye": [0.0,0.0,0.0], "rootName": null, "drawList": null, "meshes": [], "products": [],
        "boxList": null, "resultMesh": null, "containers": []})"));
}

TEST(SceneReport, IsOneObjectOnALine) {
    const SceneView view;
    const std::string report = SceneReport(view, "", nullptr, false);
    EXPECT_EQ(report.front(), '{');
    EXPECT_EQ(report.substr(report.size() - 2), "}\n");
}

TEST(SceneReport, HasTheHeadOfAPart) {
    const json report = ReportOf(SmallPartText());
    EXPECT_EQ(report["status"], "status");
    EXPECT_EQ(report["triangles"], 8);
    EXPECT_EQ(report["pickMode"], 1);
    EXPECT_EQ(report["maxDepth"], 0);
    EXPECT_EQ(report["rootName"], "P1");
    EXPECT_EQ(report["box"], ParseJson("[0,1,0,15,-2.25,0]"));
    EXPECT_EQ(report["centre"], ParseJson("[0.5,7.5,-1.125]"));
    EXPECT_EQ(report["modelSize"], 18.25);
    EXPECT_EQ(report["eye"], ParseJson("[0.5,44,35.375]"));
    EXPECT_EQ(report["drawList"], ParseJson(R"([{"product":0,"matrix":null,"meshes":[0,1,2,3]}])"));
    EXPECT_TRUE(report["boxList"].is_null());
    EXPECT_TRUE(report["resultMesh"].is_null());
    EXPECT_EQ(report["products"], ParseJson(R"([{"name":"P1","fileName":null,"definitionId":0,"formationId":0,
        "isRoot":1,"hasBox":1,"box":[0,1,0,15,-2.25,0],"occurrences":[]}])"));
    EXPECT_EQ(report["containers"],
              ParseJson(R"([{"kind":1,"containerId":20,"exactContainerId":91,"materialName":"steel"},
        {"kind":2,"containerId":21,"exactContainerId":0,"materialName":null}])"));
}

TEST(SceneReport, HasTheFieldsOfAMesh) {
    const json mesh = ReportOf(SmallPartText())["meshes"][0];
    EXPECT_EQ(Keys(mesh), (std::set<std::string>{"faceId", "exactFaceId", "containerId", "exactContainerId",
                                                 "containerType", "pnmax", "pnindexCount", "vertexCount",
                                                 "triangleCount", "normalCount", "colour", "box",
                                                 "verticesCrc", "normalsCrc", "trianglesCrc", "pnindexCrc"}));
    EXPECT_EQ(mesh["faceId"], 30);
    EXPECT_EQ(mesh["exactFaceId"], 92);
    EXPECT_EQ(mesh["containerId"], 20);
    EXPECT_EQ(mesh["exactContainerId"], 91);
    EXPECT_EQ(mesh["containerType"], 1);
    EXPECT_EQ(mesh["pnmax"], 4);
    EXPECT_EQ(mesh["pnindexCount"], 4);
    EXPECT_EQ(mesh["vertexCount"], 4);
    EXPECT_EQ(mesh["triangleCount"], 2);
    EXPECT_EQ(mesh["normalCount"], 4);
    EXPECT_EQ(mesh["box"], ParseJson("[0,1,0,15,-2.25,0]"));
    EXPECT_EQ(mesh["colour"][0].get<float>(), 0.1f);
    EXPECT_EQ(mesh["colour"][3], 1.0);
}

TEST(SceneReport, HasArraysOnlyWhenAsked) {
    const json mesh = ReportOf(SmallPartText(), true)["meshes"][0];
    EXPECT_EQ(mesh["vertices"], ParseJson("[0,0,0,1,0,0,1,1,0,0,15,-2.25]"));
    EXPECT_EQ(mesh["normals"], ParseJson("[0,0,1,0,0,1,0,0,1,0,0,1]"));
    EXPECT_EQ(mesh["triangles"], ParseJson("[0,1,2,0,2,3]"));
    EXPECT_EQ(mesh["pnindex"], ParseJson("[0,1,2,3]"));
}

// The checksums of these arrays as worked out with another tool.
TEST(SceneReport, HasTheChecksumsOfTheArrays) {
    const json report = ReportOf(
        PartText("(#20)", {"#10=COORDINATES_LIST('',1,((1.,2.,-0.)));", "#20=TESSELLATED_SOLID('',(#30),$);",
                           "#30=TRIANGULATED_FACE('',#10,1,$,$,(1),((1,0,1)));"}),
        true);
    const json& mesh = report["meshes"][0];
    EXPECT_EQ(mesh["verticesCrc"], "d9131b04");
    EXPECT_EQ(mesh["normalsCrc"], "00000000");
    EXPECT_EQ(mesh["trianglesCrc"], "e108e6f9");
    EXPECT_EQ(mesh["pnindexCrc"], "2144df1c");
    EXPECT_EQ(mesh["triangles"], ParseJson("[0,4294967295,0]")) << "an index of -1 has no sign";
    EXPECT_EQ(mesh["normals"], json::array());
}

TEST(SceneReport, WritesANegativeZeroAndInfinities) {
    const TempFolder folder;
    SceneView view;
    {
        const LogCapture log;
        LoadStepFile(
            view,
            folder
                .Write("part.stp",
                       PartText("(#20)", {"#10=COORDINATES_LIST('',2,((-0.,2.E400,-2.E400),(0.,0.,0.)));",
                                          "#20=TESSELLATED_SOLID('',(#30),$);",
                                          "#30=TRIANGULATED_FACE('',#10,1,$,$,$,((1,2,1)));"}))
                .c_str(),
            0);
    }
    const std::string text = SceneReport(view, "", nullptr, true);
    EXPECT_TRUE(text.find("\"vertices\":[-0.0,\"inf\",\"-inf\",") != std::string::npos ||
                text.find("\"vertices\":[-0,\"inf\",\"-inf\",") != std::string::npos)
        << text;
    EXPECT_NE(text.find("\"modelSize\":\"inf\""), std::string::npos) << text;
    EXPECT_TRUE(json::accept(text));
}

TEST(SceneReport, ListsAFaceThatWasReadTwiceTwice) {
    const json report = ReportOf(PartText("(#20)", {"#10=COORDINATES_LIST('',1,((1.,2.,3.)));",
                                                    "#20=TESSELLATED_SOLID('',(#30,#30),$);",
                                                    "#30=TRIANGULATED_FACE('',#10,1,$,$,$,((1,1,1)));"}));
    EXPECT_EQ(report["meshes"].size(), 2u);
    EXPECT_EQ(report["drawList"][0]["meshes"], ParseJson("[0,1]"));
}

TEST(SceneReport, ListsAMeshOfSeveralItemsOnce) {
    StepFaceB faces[2] = {};
    faces[0].faceId = 5;
    faces[1].faceId = 6;
    StepFaceB* first[] = {&faces[1]};
    StepFaceB* both[] = {&faces[0], &faces[1]};
    ProductNode child{};
    child.name = "child";
    ProductNode root{};
    root.name = "root";
    root.isRoot = 1;
    const float matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1};
    DrawItem items[3] = {{first, 1, nullptr, &child}, {both, 2, matrix, &root}, {both, 0, nullptr, nullptr}};
    DrawItem* pointers[] = {&items[0], &items[1], &items[2]};
    DrawList list{{pointers}, 3, 3};
    SceneView view;
    view.loaded.root = &root;
    Occurrence occurrences[2] = {};
    occurrences[0].child = &child;
    occurrences[1].child = &child;
    occurrences[1].rotation[8] = 0.1;
    occurrences[1].translation[2] = -0.0;
    Occurrence* uses[] = {&occurrences[0], &occurrences[1]};
    root.occurrences = uses;
    root.occurrenceCount = 2;
    view.loaded.drawList = &list;
    const json report = Reported(view);
    ASSERT_EQ(report["meshes"].size(), 2u);
    EXPECT_EQ(report["meshes"][0]["faceId"], 6) << "by first appearance";
    EXPECT_EQ(report["drawList"][0], ParseJson(R"({"product":1,"matrix":null,"meshes":[0]})"));
    EXPECT_EQ(report["drawList"][1],
              ParseJson(R"({"product":0,"matrix":[1,0,0,0,0,1,0,0,0,0,1,0,4,5,6,1],"meshes":[1,0]})"));
    EXPECT_EQ(report["drawList"][2], ParseJson(R"({"product":null,"matrix":null,"meshes":[]})"));
    ASSERT_EQ(report["products"].size(), 2u);
    EXPECT_EQ(report["products"][0]["occurrences"][0]["child"], 1);
    EXPECT_EQ(report["products"][0]["occurrences"][1]["rotation"][8].get<double>(), 0.1);
    EXPECT_TRUE(report["products"][0]["box"].is_null());
    EXPECT_TRUE(report["rootName"].is_null());
}

TEST(SceneReport, NumbersProductsDepthFirst) {
    ProductNode nodes[4] = {};
    const char* const names[] = {"root", "second", "deep", "third"};
    for (int i = 0; i < 4; ++i) { nodes[i].name = names[i]; }
    Occurrence toSecond{}, toThird{}, toDeep{}, again{};
    toSecond.child = &nodes[1];
    toThird.child = &nodes[3];
    toDeep.child = &nodes[2];
    again.child = &nodes[0]; // a circle
    Occurrence* ofRoot[] = {&toSecond, &toThird};
    Occurrence* ofSecond[] = {&toDeep, &again, &toThird};
    nodes[0].occurrences = ofRoot;
    nodes[0].occurrenceCount = 2;
    nodes[1].occurrences = ofSecond;
    nodes[1].occurrenceCount = 3;
    SceneView view;
    view.loaded.root = &nodes[0];
    const json report = Reported(view);
    ASSERT_EQ(report["products"].size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) { EXPECT_EQ(report["products"][i]["name"], names[i]); }
    EXPECT_EQ(report["products"][1]["occurrences"][1]["child"], 0);
    EXPECT_EQ(report["products"][0]["occurrences"][1]["child"], 3);
}

TEST(SceneReport, WritesNamesAsLatin1) {
    const json report = ReportOf(P21Text({"#1=PRODUCT('\xE9t\xE9','','',());"}));
    EXPECT_EQ(report["rootName"], "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(report["products"][0]["name"], "\xC3\xA9t\xC3\xA9");
    const SceneView view;
    const std::string status = "ok";
    EXPECT_EQ(ParseJson(SceneReport(view, "/\xC3\xA9.stp", &status, false))["path"], "/\xC3\x83\xC2\xA9.stp");
}

TEST(SceneReport, HasAnEmptyListForAPartWithoutFaces) {
    const json report = ReportOf(P21Text({"#1=PRODUCT('P','','',());"}));
    EXPECT_EQ(report["drawList"], ParseJson(R"([{"product":0,"matrix":null,"meshes":[]}])"));
    EXPECT_EQ(report["products"][0]["hasBox"], 0);
    EXPECT_TRUE(report["products"][0]["box"].is_null());
    EXPECT_EQ(report["modelSize"], 10.0);
}

} // namespace
} // namespace tarnwick::test
