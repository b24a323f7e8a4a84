#include "p21/model_file.h"
#include "support/p21_text.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

int ApNumber(std::string_view schema) {
    return ModelFile(P21Text({}, schema)).model->apNumber;
}

TEST(ApNumber, StandsBehindTheFirstAOfTheSchemaName) {
    EXPECT_EQ(ApNumber("AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF"), 242);
    EXPECT_EQ(ApNumber("AP209_MULTIDISCIPLINARY_ANALYSIS_AND_DESIGN_MIM_LF"), 209);
    EXPECT_EQ(ApNumber("AP203_CONFIGURATION_CONTROLLED_3D_DESIGN"), 203);
    EXPECT_EQ(ApNumber("AP242_MANAGED { 1 0 10303 442 1 1 4 }"), 242);
    EXPECT_EQ(ApNumber("XXAP214"), 214);
    EXPECT_EQ(ApNumber("A-214"), 214);
    EXPECT_EQ(ApNumber("AP 7"), 7);
    EXPECT_EQ(ApNumber("AP-7"), -7);
}

TEST(ApNumber, IsZeroWhereNoNumberFollows) {
    EXPECT_EQ(ApNumber("AUTOMOTIVE_DESIGN"), 0);
    EXPECT_EQ(ApNumber("AUTOMOTIVE_DESIGN { 1 0 10303 214 2 1 1}"), 0);
    EXPECT_EQ(ApNumber("CONFIG_CONTROL_DESIGN_A"), 0);
}

TEST(ApNumber, ComesFromTheNextAWhenTheNameHasNone) {
    const std::string text = "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('CONFIG_CONTROL'));\nENDSEC;\n"
                             "/* XAP77 */\nDATA;\nENDSEC;\n";
    EXPECT_EQ(ModelFile(text).model->apNumber, 77);
    EXPECT_EQ(ModelFile("ISO-10303-21;\nFILE_SCHEMA(('CONFIG_CONTROL'));\nDATA;\nENDSEC;\n").model->apNumber,
              0)
        << "the A of DATA";
}

TEST(ApNumber, ComesFromTheFirstFileSchema) {
    const std::string text =
        "ISO-10303-21;\nFILE_SCHEMA(('AP203'));\nFILE_SCHEMA(('AP214'));\nDATA;\nENDSEC;\n";
    EXPECT_EQ(ModelFile(text).model->apNumber, 203);
}

TEST(ApNumber, IsReadAlsoWhereFileSchemaStandsInTheMiddleOfALine) {
    EXPECT_EQ(ModelFile("ISO-10303-21;HEADER;FILE_SCHEMA( ( 'AP214' ));\nDATA;\nENDSEC;\n").model->apNumber,
              214);
}

TEST(ApNumber, WantsTheParenthesisAtOnce) {
    const std::string text =
        "ISO-10303-21;\nFILE_SCHEMA (('AP203'));\nFILE_SCHEMA(('AP214'));\nDATA;\nENDSEC;\n";
    EXPECT_EQ(ModelFile(text).model->apNumber, 214);
}

TEST(ApNumber, MakesAFileWithoutSchemaUnreadable) {
    for (const char* const text : {"ISO-10303-21;\nHEADER;\nDATA;\n#1=X();\nENDSEC;\n",
                                   "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(());\n#1=X();\n",
                                   "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('x'));\n#1=X();\n"}) {
        const ModelFile file(text);
        EXPECT_NE(file.result, StepModel::kRead) << text;
        EXPECT_EQ(file.console.substr(0, 4), "<E> ");
        EXPECT_NE(file.console.find("part.stp"), std::string::npos) << "it names the file";
    }
}

} // namespace
} // namespace tarnwick::test
