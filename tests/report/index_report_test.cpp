#include "report/report.h"

#include "support/capture.h"
#include "support/json.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

using nlohmann::json;

json IndexOf(const std::string& path, bool entities) {
    ReaderWorkspace workspace;
    StepModel model(workspace, path);
    int result;
    {
        const LogCapture log;
        result = model.Read();
    }
    return ParseJson(IndexReport(model, result, entities));
}

TEST(IndexReport, HasTheCountersOfAFile) {
    const TempFolder folder;
    const std::string path = folder.Write("part.stp", SmallPartText());
    EXPECT_EQ(IndexOf(path, false), json({{"format", "tarnwick.index/1"},
                                          {"result", 0},
                                          {"fileName", path},
                                          {"compression", 0},
                                          {"isAssembly", 0},
                                          {"apNumber", 242},
                                          {"entityCount", 35},
                                          {"shapeRepresentationId", 2},
                                          {"presentationId", 40},
                                          {"colourIds", {59, 61}},
                                          {"rootProductId", 1},
                                          {"productCount", 2},
                                          {"structureList", {40, 70, 74, 77, 78}},
                                          {"bucketCount", 32}}));
}

TEST(IndexReport, HasTheTableInFileOrderWhenAsked) {
    const TempFolder folder;
    const std::string text = P21Text({"#7=EDGE_LOOP('',", "());", "#3=X();", "#7=NODE();"});
    const json report = IndexOf(folder.Write("part.stp", text), true);
    EXPECT_EQ(
        report["entities"],
        json({{7, text.find("#7="), 1, 7}, {3, text.find("#3="), 0, 0}, {7, text.rfind("#7="), 0, 39}}));
    EXPECT_EQ(report["bucketCount"], 4);
}

TEST(IndexReport, HasNoCountersOfAFileThatIsNotThere) {
    const TempFolder folder;
    const json report = IndexOf(folder.Path("x.stp.Z"), true);
    EXPECT_EQ(report, json({{"format", "tarnwick.index/1"},
                            {"result", 1},
                            {"fileName", folder.Path("x.stp")},
                            {"compression", 1},
                            {"isAssembly", 0},
                            {"apNumber", 0},
                            {"entityCount", 0},
                            {"shapeRepresentationId", 0},
                            {"presentationId", 0},
                            {"colourIds", json::array()},
                            {"rootProductId", 0},
                            {"productCount", 0},
                            {"structureList", json::array()},
                            {"bucketCount", 0},
                            {"entities", json::array()}}));
}

TEST(IndexReport, HasNoCountersOfAFileThatIsGivenUp) {
    const TempFolder folder;
    // The scan went well; it is the schema that isn't there.
    for (const std::string bytes : {"no P21", "ISO-10303-21;\nDATA;\n#1=PRODUCT('','','',());\nENDSEC;\n"}) {
        const json report = IndexOf(folder.Write("part.stp", bytes), false);
        EXPECT_EQ(report["result"], 5);
        EXPECT_EQ(report["entityCount"], 0);
        EXPECT_EQ(report["rootProductId"], 0);
        EXPECT_EQ(report["productCount"], 0);
        EXPECT_EQ(report["structureList"], json::array());
        EXPECT_EQ(report["bucketCount"], 0);
        EXPECT_FALSE(report.contains("entities"));
    }
}

TEST(IndexReport, SeesAnAssembly) {
    const TempFolder folder;
    const json report =
        IndexOf(folder.Write("part.stp", P21Text({"#1=NEXT_ASSEMBLY_USAGE_OCCURRENCE();"})), false);
    EXPECT_EQ(report["isAssembly"], 1);
}

} // namespace
} // namespace tarnwick::test
