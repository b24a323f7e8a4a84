#include "p21/model_file.h"
#include "p21/step_model.h"
#include "support/p21_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

using Ids = std::vector<std::int32_t>;

// The numbers of the records that these lines of a data section give.
Ids Scanned(const Lines& lines) {
    return ModelFile(P21Text(lines)).Ids();
}

TEST(ScanEntities, MakesOneRecordForEachLine) {
    const std::string text = P21Text({"#1=CARTESIAN_POINT('',(0.,0.,0.));", "#2=X();"});
    const ModelFile file(text);
    ASSERT_EQ(file.Ids(), (Ids{1, 2}));
    const P42Ent* const first = file.model->EntityAt(0);
    EXPECT_EQ(first->code, 10);
    EXPECT_EQ(first->multiLine, 0);
    EXPECT_EQ(first->offset, static_cast<std::int32_t>(text.find("#1=")));
    const P42Ent* const second = file.model->EntityAt(1);
    EXPECT_EQ(second->code, 0);
    EXPECT_EQ(second->offset, static_cast<std::int32_t>(text.find("#2=")));
}

TEST(ScanEntities, PrintsHowManyRecordsThereAre) {
    EXPECT_EQ(ModelFile(P21Text({"#1=X();", "#2=X();"})).output, CountLine(2));
    EXPECT_EQ(ModelFile(P21Text({})).output, CountLine(0));
    EXPECT_EQ(ModelFile(P21Text({})).console, "");
}

TEST(ScanEntities, FindsNothingInAnEmptyDataSection) {
    const ModelFile file(P21Text({}));
    EXPECT_EQ(file.result, StepModel::kRead);
    EXPECT_EQ(file.model->entityCount, 0);
    EXPECT_EQ(file.model->entityMap->BucketCount(), 4);
    EXPECT_EQ(file.model->entityMap->First(), nullptr);
    EXPECT_EQ(file.Find(1), nullptr);
}

TEST(ScanEntities, LooksForDataAtTheStartOfALineOnly) {
    const std::string header = "ISO-10303-21;\nFILE_SCHEMA(('AP242_X'));\n";
    EXPECT_EQ(ModelFile(header + " DATA;\n#1=X();\nDATA;\n#2=X();\nENDSEC;\n").Ids(), Ids{2});
    EXPECT_EQ(ModelFile(header + "DATA ;\n#1=X();\nDATA;\n#2=X();\nENDSEC;\n").Ids(), Ids{2});
    EXPECT_EQ(ModelFile(header + "data;\n#1=X();\nDATA;\n#2=X();\nENDSEC;\n").Ids(), Ids{2});
    EXPECT_EQ(ModelFile(header + "DATA;anything at all\n#2=X();\nENDSEC;\n").Ids(), Ids{2});
    EXPECT_EQ(ModelFile(header + "DATA;\r\n#2=X();\r\nENDSEC;\r\n").Ids(), Ids{2});
}

TEST(ScanEntities, DoesNotSeeEntitiesBeforeTheDataSection) {
    EXPECT_EQ(ModelFile("ISO-10303-21;\n#1=X();\nFILE_SCHEMA(('AP242_X'));\nDATA;\n#2=X();\nENDSEC;\n").Ids(),
              Ids{2});
}

TEST(ScanEntities, EndsAtEndsec) {
    EXPECT_EQ(Scanned({"#1=X();", "ENDSEC;", "#2=X();"}), Ids{1});
    EXPECT_EQ(Scanned({"#1=X();", "ENDSECTION;", "#2=X();"}), Ids{1}) << "six characters count";
    EXPECT_EQ(Scanned({"#1=X();", "ENDSE;", "#2=X();"}), (Ids{1, 2}));
    EXPECT_EQ(Scanned({"#1=X();", "endsec;", "#2=X();"}), (Ids{1, 2}));
    EXPECT_EQ(Scanned({"#1=X();", " ENDSEC;", "#2=X();"}), (Ids{1, 2})) << "only at the start of the line";
}

TEST(ScanEntities, RecordsAnEntityOnSeveralLinesOnce) {
    const ModelFile file(P21Text({"#1=CARTESIAN_POINT('',", "(0.,0.,", "0.));", "#2=X();"}));
    ASSERT_EQ(file.Ids(), (Ids{1, 2}));
    EXPECT_EQ(file.Find(1)->multiLine, 1);
    EXPECT_EQ(file.CodeOf(1), 10);
    EXPECT_EQ(file.Find(2)->multiLine, 0);
}

TEST(ScanEntities, DoesNotLookIntoAContinuation) {
    EXPECT_EQ(Scanned({"#1=X('',", "#2=X();", "#3=X();"}), (Ids{1, 3}));
    EXPECT_EQ(Scanned({"#1=X('',", "ENDSEC;", "#2=X();"}), (Ids{1, 2}));
    EXPECT_EQ(Scanned({"#1=X('',", "ENDSEC", "#2=X();", "#3=X();"}), (Ids{1, 3}));
}

TEST(ScanEntities, RunsOnToTheEndWhenTheLastEntityLacksItsSemicolon) {
    const ModelFile file(P21Text({"#1=X();", "#2=X()"}));
    EXPECT_EQ(file.Ids(), (Ids{1, 2}));
    EXPECT_EQ(file.result, StepModel::kRead);
    EXPECT_EQ(file.output, CountLine(2));
    // ENDSEC was the tail; what comes after it is scanned.
    EXPECT_EQ(ModelFile(P21Text({"#1=X()"}) + "#5=X();\n").Ids(), (Ids{1, 5}));
}

TEST(ScanEntities, LosesTheLineBehindABlankLine) {
    EXPECT_EQ(Scanned({"#1=X();", "   ", "#2=X();", "#3=X();"}), (Ids{1, 3}));
    EXPECT_EQ(Scanned({"#1=X();", "\t", "#2=X();", "#3=X();"}), (Ids{1, 3}));
}

TEST(ScanEntities, KeepsTheLineBehindAnEmptyLine) {
    EXPECT_EQ(Scanned({"#1=X();", "", "", "#2=X();"}), (Ids{1, 2}));
    EXPECT_EQ(Scanned({"#1=X();", "\r", "#2=X();"}), (Ids{1, 2}));
}

TEST(ScanEntities, LosesTheLineBehindAComment) {
    EXPECT_EQ(Scanned({"/* a comment */", "#1=X();", "#2=X();"}), Ids{2});
    EXPECT_EQ(Scanned({"/* a comment */;", "#1=X();", "#2=X();"}), (Ids{1, 2}));
    EXPECT_EQ(Scanned({"/* a comment;", "#1=X();"}), Ids{1});
}

TEST(ScanEntities, TakesBlanksAroundTheEqualsSign) {
    const ModelFile file(P21Text({"#12 = CARTESIAN_POINT('',(0.,0.,0.));", "# 13   =    EDGE_LOOP();"}));
    EXPECT_EQ(file.Ids(), (Ids{12, 13}));
    EXPECT_EQ(file.CodeOf(12), 10);
    EXPECT_EQ(file.CodeOf(13), 7);
}

TEST(ScanEntities, DoesNotSkipATabBeforeTheKeyword) {
    const ModelFile file(P21Text({"#1=\tEDGE_LOOP();", "#2= \tEDGE_LOOP();", "#3\t= EDGE_LOOP();"}));
    EXPECT_EQ(file.CodeOf(1), 0);
    EXPECT_EQ(file.CodeOf(2), 0);
    EXPECT_EQ(file.CodeOf(3), 7);
}

TEST(ScanEntities, DropsAnIndentedEntity) {
    EXPECT_EQ(Scanned({" #1=X();", "\t#2=X();", "#3=X();"}), Ids{3});
    EXPECT_EQ(Scanned({" #1=X(", "#2=X();", "#3=X();"}), Ids{3}) << "its end still counts";
}

TEST(ScanEntities, MakesNoRecordForANumberBelowOne) {
    EXPECT_EQ(Scanned({"#0=X();", "#-3=X();", "#=X();", "#x=X();", "#1=X();"}), Ids{1});
    EXPECT_EQ(Scanned({"#0=X(", "#1=X();", "#2=X();"}), Ids{2}) << "its end still counts";
}

TEST(ScanEntities, CountsNoColourOfANumberBelowOne) {
    EXPECT_TRUE(ModelFile(P21Text({"#0=COLOUR_RGB('',0.,0.,0.);"})).model->colourIds.empty());
}

TEST(ScanEntities, ReadsTheNumberLikeTheCLibrary) {
    EXPECT_EQ(Scanned({"#+5=X();", "# \t6=X();", "#7abc=X();", "#8 9=X();", "#0010=X();"}),
              (Ids{5, 6, 7, 8, 10}));
}

TEST(ScanEntities, ReportsANumberSignWithoutEqualsSign) {
    const ModelFile file(P21Text({"#1 X();", "#2=X();", "#3", "#4=X();", "#5=X();"}));
    EXPECT_EQ(file.Ids(), (Ids{2, 5}));
    EXPECT_EQ(file.output, "<E> Definition d'entite non reconnue:\n"
                           "<E> Definition d'entite non reconnue:\n" +
                               CountLine(3 - 1));
    EXPECT_EQ(file.console, "");
}

TEST(ScanEntities, GivesUpATextThatEndsInAnEntityNumber) {
    for (const char* const last : {"#2", "#", "#2 X("}) {
        const ModelFile file(P21Header() + "#1=X();\n" + last);
        EXPECT_EQ(file.result, StepModel::kNotP21) << last;
        EXPECT_EQ(file.output, "");
        EXPECT_EQ(file.console.substr(0, 4), "<E> ");
        EXPECT_EQ(file.model->entityMap, nullptr);
    }
    EXPECT_EQ(ModelFile(P21Header() + "#1=X();\n#2=").result, StepModel::kRead);
}

TEST(ScanEntities, TakesOnlyTheFirstOfTwoEntitiesOnALine) {
    EXPECT_EQ(Scanned({"#1=X();#2=X();", "#3=X();"}), (Ids{1, 3}));
}

TEST(ScanEntities, IsFooledByALineBreakInAString) {
    EXPECT_EQ(Scanned({"#1=X('one;", "#2=two');", "#3=X();"}), (Ids{1, 2, 3}));
}

TEST(ScanEntities, GivesAComplexInstanceCodeZero) {
    const ModelFile file(P21Text({"#1=(CARTESIAN_POINT()X());"}));
    EXPECT_EQ(file.CodeOf(1), 0);
}

TEST(ScanEntities, TreatsCarriageReturnsLikeNothing) {
    std::string text = P21Text({"#1=X();", "#2=X('',", "'');", "#3=X();"});
    std::string withReturns;
    for (const char c : text) { withReturns += c == '\n' ? "\r\n" : std::string(1, c); }
    const ModelFile file(withReturns);
    EXPECT_EQ(file.result, StepModel::kRead);
    EXPECT_EQ(file.Ids(), (Ids{1, 2, 3}));
    EXPECT_EQ(file.Find(1)->multiLine, 0);
    EXPECT_EQ(file.Find(2)->multiLine, 1);
}

TEST(ScanEntities, TakesASemicolonWithBlanksTabsAndReturnsBehindIt) {
    const ModelFile file(
        P21Text({"#1=X() ;", "#2=X(); \t\r", "#3=X();\x01", "#4=X();", "#5=X();\xA0", "#6=X();"}));
    EXPECT_EQ(file.Ids(), (Ids{1, 2, 3, 5})) << "no other byte is walked over";
    EXPECT_EQ(file.Find(1)->multiLine, 0);
    EXPECT_EQ(file.Find(2)->multiLine, 0);
    EXPECT_EQ(file.Find(3)->multiLine, 1);
}

TEST(ScanEntities, DoesNotCountTheLastLineWithoutLineFeedAsComplete) {
    const ModelFile file(P21Header() + "#1=X();\n#2=X();");
    ASSERT_EQ(file.Ids(), (Ids{1, 2}));
    EXPECT_EQ(file.Find(1)->multiLine, 0);
    EXPECT_EQ(file.Find(2)->multiLine, 1);
}

TEST(ScanEntities, EndsAtANulInTheText) {
    using namespace std::string_literals;
    EXPECT_EQ(ModelFile(P21Header() + "#1=X();\n\0#2=X();\n#3=X();\nENDSEC;\n"s).Ids(), Ids{1});
    EXPECT_EQ(ModelFile(P21Header() + "#1=X();\n#2=X(\0);\n#3=X();\nENDSEC;\n"s).Ids(), (Ids{1, 2}));
    EXPECT_EQ(ModelFile(P21Header() + "\0\n#1=X();\nENDSEC;\n"s).Ids(), Ids{});
}

TEST(ScanEntities, EndsAtANulFarBehindTheLineThatIsLookedAt) {
    // Farther than any stretch that could be looked through ahead.
    Lines lines;
    for (int i = 1; i <= 20000; ++i) {
        lines.push_back("#" + std::to_string(i) + "=X('some text that makes the line longer');");
    }
    std::string text = P21Text(lines);
    for (const int id : {1, 1500, 9999, 19999}) {
        std::string damaged = text;
        damaged[damaged.find("#" + std::to_string(id) + "=") + 12] = '\0';
        EXPECT_EQ(ModelFile(damaged).model->entityCount, id);
    }
}

TEST(ScanEntities, KeepsBothRecordsOfADoubledNumber) {
    const std::string text = P21Text({"#1=EDGE_LOOP();", "#1=EDGE_CURVE();"});
    const ModelFile file(text);
    EXPECT_EQ(file.Ids(), (Ids{1, 1}));
    EXPECT_EQ(file.CodeOf(1), 7) << "a look-up finds the one that came first";
    EXPECT_EQ(file.model->entityMap->Count(), 2);
}

TEST(ScanEntities, RemembersTheLastShapeRepresentation) {
    const ModelFile file(
        P21Text({"#5=TESSELLATED_SHAPE_REPRESENTATION();", "#3=TESSELLATED_SHAPE_REPRESENTATION();"}));
    EXPECT_EQ(file.model->shapeRepresentationId, 3);
    EXPECT_EQ(ModelFile(P21Text({})).model->shapeRepresentationId, 0);
}

TEST(ScanEntities, RemembersTheFirstPresentation) {
    const ModelFile file(P21Text({"#5=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION();",
                                  "#3=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION();"}));
    EXPECT_EQ(file.model->presentationId, 5);
    EXPECT_EQ(file.model->structureList->Count(), 2);
    EXPECT_EQ(ModelFile(P21Text({})).model->presentationId, 0);
}

TEST(ScanEntities, SeesAnAssemblyByItsOccurrences) {
    EXPECT_EQ(ModelFile(P21Text({"#1=NEXT_ASSEMBLY_USAGE_OCCURRENCE();"})).model->isAssembly, 1);
    EXPECT_EQ(ModelFile(P21Text({"#1=NEXT_ASS();"})).model->isAssembly, 1);
    EXPECT_EQ(ModelFile(P21Text({"#1=X('NEXT_ASSEMBLY_USAGE_OCCURRENCE');"})).model->isAssembly, 0);
}

TEST(ScanEntities, CountsProductsAndRemembersTheLast) {
    const ModelFile file(P21Text({"#7=PRODUCT('a','','',());", "#5=PRODUCT ('b','','',());",
                                  "#6=PRODUCT_DEFINITION();", "#4=PRODUCT('c','','',());"}));
    EXPECT_EQ(file.model->productCount, 2);
    EXPECT_EQ(file.model->rootProductId, 4);
}

TEST(ScanEntities, ListsStructureInFileOrder) {
    const ModelFile file(
        P21Text({"#9=SHAPE_DEFINITION_REPRESENTATION();", "#8=EDGE_LOOP();",
                 "#7=PRODUCT_RELATED_PRODUCT_CATEGORY('','',());", "#6=MAKE_FROM_USAGE_OPTION();",
                 "#5=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION();"}));
    Ids ids;
    ListP42Ent& list = *file.model->structureList;
    for (const P42Ent* record = list.First(); record != nullptr; record = list.Next()) {
        ids.push_back(record->id);
        EXPECT_EQ(record, file.Find(record->id));
    }
    EXPECT_EQ(ids, (Ids{9, 7, 6, 5}));
}

TEST(ScanEntities, CollectsColoursInFileOrder) {
    const ModelFile file(P21Text({"#9=COLOUR_RGB('',0.,0.,0.);", "#3=DRAUGHTING_PRE_DEFINED_COLOUR('red');",
                                  "#9=COLOUR_RGB('',1.,0.,0.);"}));
    EXPECT_EQ(file.model->colourIds, (Ids{9, 3, 9}));
}

TEST(ScanEntities, SurvivesMoreThanAThousandColours) {
    Lines lines;
    for (int i = 1; i <= 3000; ++i) {
        lines.push_back("#" + std::to_string(i) + "=COLOUR_RGB('',0.,0.,0.);");
    }
    const ModelFile file(P21Text(lines));
    EXPECT_EQ(file.result, StepModel::kRead);
    EXPECT_GE(file.model->colourIds.size(), 1000u);
    for (std::size_t i = 0; i < 1000; ++i) {
        EXPECT_EQ(file.model->colourIds[i], static_cast<std::int32_t>(i) + 1);
    }
}

TEST(ScanEntities, FillsABlockBeforeTheNextOne) {
    for (const int count : {9999, 10000, 10001, 110000, 110001}) {
        std::string text = P21Header();
        for (int i = 1; i <= count; ++i) { text += "#" + std::to_string(i) + "=X();\n"; }
        const ModelFile file(text + "ENDSEC;\n");
        ASSERT_EQ(file.model->entityCount, count);
        EXPECT_NE(file.model->entityBlocks[0], nullptr);
        EXPECT_EQ(file.model->entityBlocks[1] != nullptr, count >= 10000)
            << "made as soon as the first is full";
        EXPECT_EQ(file.model->entityBlocks[2] != nullptr, count >= 110000);
        EXPECT_EQ(file.model->entityBlocks[3], nullptr);
        EXPECT_EQ(file.model->EntityAt(0)->id, 1);
        EXPECT_EQ(file.model->EntityAt(count - 1)->id, count);
        EXPECT_EQ(file.Find(count)->id, count);
        if (count > 10000) { EXPECT_EQ(file.model->entityBlocks[1][0]->id, 10001); }
        if (count > 110000) { EXPECT_EQ(file.model->entityBlocks[2][0]->id, 110001); }
    }
}

TEST(ScanEntities, RefusesATextWithoutDataSection) {
    const ModelFile file("ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('AP242_X'));\n#1=X();\n");
    EXPECT_EQ(file.result, StepModel::kNotP21);
    EXPECT_EQ(file.console.substr(0, 4), "<E> ");
    EXPECT_EQ(file.model->entityMap, nullptr);
}

} // namespace
} // namespace tarnwick::test
