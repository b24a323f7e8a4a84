#include "geometry/part_file.h"
#include "platform/fail_fast.h"
#include "support/capture.h"
#include "support/p21_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

int ReadQuietly(StepModel& model) {
    const LogCapture quiet;
    return model.Read();
}

TEST(ReadPart, HandsOverOneItemWithAllFaces) {
    const PartFile part(
        PartText("(#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#31,#30),$);", FaceLine(30), FaceLine(31)}));
    EXPECT_EQ(part.result, 0);
    EXPECT_THAT(part.FaceIds(), ElementsAre(31, 30)) << "in the order of the list";
    ASSERT_NE(part.Item(), nullptr);
    const DrawList& list = *part.reader->product->drawList;
    EXPECT_EQ(list.capacity, 1);
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(part.Item()->meshCount, 2);
    EXPECT_EQ(part.Item()->meshes[0], &part.Face(0));
    EXPECT_EQ(part.Item()->meshes[1], &part.Face(1));
    EXPECT_EQ(part.Item()->matrix, nullptr);
    EXPECT_EQ(part.Item()->product, part.reader->product);
    EXPECT_EQ(part.reader->triangleTotal, 2);
    EXPECT_EQ(part.reader->triangleSum, 2u);
    EXPECT_EQ(part.reader->faceTotal, 2);
    EXPECT_EQ(part.reader->faceSum, 2u);
    EXPECT_EQ(part.console, "");
    EXPECT_EQ(part.output, "");
}

TEST(ReadPart, GivesAPartUpWhoseTrianglesCanNotBeCounted) {
    const TempFolder folder;
    const std::string text =
        PartText("(#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#30,#31),$);", FaceLine(30), FaceLine(31)});
    ReaderWorkspace workspace;
    StepModel model(workspace, folder.Write("a\nb.stp", text));
    ASSERT_EQ(ReadQuietly(model), StepModel::kRead);
    Arena arena;
    PartScratch scratch;
    PartReader reader(model, nullptr, arena, scratch);
    reader.triangleTotal = std::numeric_limits<std::int32_t>::max() - 1;
    LogCapture log;
    reader.Run();
    const std::string console = log.TakeConsole();
    EXPECT_EQ(console, "<E> " + folder.Path("a?b.stp") +
                           ": part given up, it has more triangles than can be counted\n");
    EXPECT_TRUE(reader.givenUp);
    EXPECT_FALSE(reader.noMemory);
    EXPECT_EQ(reader.product->drawList, nullptr);
}

TEST(ReadPart, MakesTheRootProductFromItsLine) {
    const PartFile part(PartText("(#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30)}));
    const ProductNode& product = *part.reader->product;
    EXPECT_STREQ(product.name, "P1");
    EXPECT_EQ(product.isRoot, 1);
    EXPECT_EQ(product.fileName, nullptr);
    EXPECT_EQ(product.occurrenceCount, 0);
    EXPECT_EQ(product.definitionId, 0);
    EXPECT_EQ(product.formationId, 0);
    EXPECT_EQ(product.hasBox, 1);
    EXPECT_THAT(product.box, ElementsAre(0, 1, 0, 1, 0, 0));
}

TEST(ReadPart, UsesTheProductItIsGiven) {
    ProductNode product{};
    const PartFile part(PartText("(#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30)}),
                        "part.stp", &product);
    EXPECT_EQ(part.reader->product, &product);
    EXPECT_EQ(product.name, nullptr);
    EXPECT_NE(product.drawList, nullptr);
    EXPECT_EQ(product.hasBox, 1);
}

TEST(ReadPart, UnitesTheBoxesOfItsFaces) {
    const PartFile part(PartText("(#20)", {"#10=COORDINATES_LIST('',2,((5.,5.,5.),(6.,7.,8.)));",
                                           "#11=COORDINATES_LIST('',2,((4.,6.,6.),(5.,9.,6.)));",
                                           "#20=TESSELLATED_SOLID('',(#30,#31),$);",
                                           "#30=TRIANGULATED_FACE('',#10,4,$,$,$,((1,2,1)));",
                                           "#31=TRIANGULATED_FACE('',#11,4,$,$,$,((1,2,1)));"}));
    EXPECT_THAT(part.reader->box, ElementsAre(4, 6, 5, 9, 5, 8));
}

TEST(ReadPart, DrawsNothingOfFacesDirectlyUnderTheRepresentation) {
    const PartFile part(PartText("(#30,#31)", {kSquare, FaceLine(30), FaceLine(31)}));
    EXPECT_EQ(part.result, 0);
    EXPECT_THAT(part.FaceIds(), IsEmpty());
    ASSERT_NE(part.Item(), nullptr) << "an empty item is still made";
    EXPECT_EQ(part.Item()->meshCount, 0);
    EXPECT_EQ(part.reader->product->hasBox, 0);
    EXPECT_EQ(part.console, "");
}

TEST(ReadPart, SkipsItemsOfOtherKinds) {
    const PartFile part(PartText("(#5,#6,#7,#20,#2)", {"#5=TRIANGULATED_SURFACE_SET('',#10,4,$,$,((1,2,3)));",
                                                       "#6=TESSELLATED_WIRE('',$,$);", "#7=X();", kSquare,
                                                       "#20=TESSELLATED_SHELL('',(#30),$);", FaceLine(30)}));
    EXPECT_EQ(part.result, 0);
    EXPECT_THAT(part.FaceIds(), ElementsAre(30));
    EXPECT_EQ(part.reader->containerCount, 1);
    EXPECT_EQ(part.console, "");
}

TEST(ReadPart, HasNoItemsWithoutARepresentation) {
    const PartFile part(P21Text({"#1=PRODUCT('P1','','',());", kSquare, FaceLine(30)}));
    EXPECT_EQ(part.result, 0);
    ASSERT_NE(part.Item(), nullptr);
    EXPECT_EQ(part.Item()->meshCount, 0);
    EXPECT_EQ(part.reader->containerCount, 0);
    EXPECT_EQ(part.console, "");
}

TEST(ReadPart, HasNoItemsWithAnEmptyList) {
    const PartFile part(PartText("()", {}));
    EXPECT_EQ(part.result, 0);
    ASSERT_NE(part.Item(), nullptr);
    EXPECT_EQ(part.Item()->meshCount, 0);
}

TEST(ReadPart, ReadsTheItemsOfTheLastRepresentation) {
    const PartFile part(PartText("(#20)", {kSquare, "#20=TESSELLATED_SHELL('',(#30),$);",
                                           "#21=TESSELLATED_SHELL('',(#31),$);", FaceLine(30), FaceLine(31),
                                           "#3=TESSELLATED_SHAPE_REPRESENTATION('',(#21),#9);"}));
    EXPECT_THAT(part.FaceIds(), ElementsAre(31));
}

TEST(ReadPart, LooksForItsItemsBehindTheFirstComma) {
    // A comma in the name sends the walk to the next parenthesis, here that of the name.
    const PartFile part(
        P21Text({"#1=PRODUCT('P1','','',());", "#2=TESSELLATED_SHAPE_REPRESENTATION('a,(#21)',(#20),#9);",
                 kSquare, "#20=TESSELLATED_SHELL('',(#30),$);", "#21=TESSELLATED_SHELL('',(#31),$);",
                 FaceLine(30), FaceLine(31)}));
    EXPECT_THAT(part.FaceIds(), ElementsAre(31));
}

TEST(ReadPart, ReadsAnItemAsOftenAsItIsListed) {
    const PartFile part(
        PartText("(#20,#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#30,#30),#77);", FaceLine(30)}));
    EXPECT_THAT(part.FaceIds(), ElementsAre(30, 30, 30, 30));
    EXPECT_EQ(part.reader->containerCount, 2);
    EXPECT_EQ(part.Container(1).exactContainerId, 77);
}

TEST(ReadPart, SkipsAListedNumberThatIsNotThereAndSaysSo) {
    const PartFile part(
        PartText("(#98,#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#99,#30),$);", FaceLine(30)}));
    EXPECT_EQ(part.result, 0);
    EXPECT_THAT(part.FaceIds(), ElementsAre(30));
    EXPECT_THAT(part.console, StartsWith("<E> "));
    EXPECT_THAT(part.console, HasSubstr("part.stp"));
}

TEST(ReadPart, GivesUpAPartWithoutProduct) {
    const PartFile part(P21Text({"#2=TESSELLATED_SHAPE_REPRESENTATION('',(#20),#9);", kSquare,
                                 "#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30)}));
    EXPECT_NE(part.result, 0);
    EXPECT_EQ(part.reader->product, nullptr);
    EXPECT_EQ(part.reader->triangleSum, 0u);
    EXPECT_THAT(part.console, StartsWith("<E> "));
    EXPECT_THAT(part.console, HasSubstr("part.stp"));
}

TEST(ReadPart, EndsAtTheFirstFaceThatFails) {
    const PartFile part(PartText(
        "(#20,#21)", {kSquare, "#20=TESSELLATED_SOLID('',(#30,#31,#32),$);",
                      "#21=TESSELLATED_SOLID('',(#30),$);", FaceLine(30),
                      "#31=TRIANGULATED_FACE('',#10,4,((0.,0.,1.),(0.,0.,1.),(0.,0.,1.)),$,(1,2),((1,2,1)));",
                      FaceLine(32)}));
    EXPECT_EQ(part.result, 1) << "more normals than vertices";
    EXPECT_EQ(part.console, "") << "silently";
    EXPECT_EQ(part.output, "");
    EXPECT_EQ(part.Item(), nullptr);
    EXPECT_NE(part.reader->product, nullptr) << "made before, it stays";
    EXPECT_EQ(part.reader->product->hasBox, 0);
    EXPECT_EQ(part.reader->triangleSum, 0u);
    EXPECT_EQ(part.reader->faceSum, 0u);
    EXPECT_EQ(part.reader->containerCount, 1) << "those met before the failure";
}

TEST(ReadPart, EndsAtASurfaceSetThatFails) {
    const PartFile part(
        PartText("(#22)", {kSquare, "#22=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4 \n,$,$,$,$);"}));
    EXPECT_EQ(part.result, -1);
    EXPECT_EQ(part.output, "<E> StepFaceB::ArgumentSuivant: Fin de fichier\n");
    EXPECT_EQ(part.console, "");
    EXPECT_EQ(part.Item(), nullptr);
}

TEST(ReadPart, NamesTheFaceThatCannotBeRead) {
    const PartFile part(PartText("(#20)", {"#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30)}));
    EXPECT_NE(part.result, 0);
    EXPECT_THAT(part.console, StartsWith("<E> "));
    EXPECT_THAT(part.console, HasSubstr("#30"));
    EXPECT_THAT(part.console, HasSubstr("part.stp"));
}

TEST(ReadPart, KeepsAllOfManyFaces) {
    for (const int count : {1999, 2000, 2001, 4000, 4001}) {
        Lines lines{kSquare};
        std::string solid = "#20=TESSELLATED_SOLID('',(";
        for (int i = 0; i < count; ++i) {
            const int id = 100 + i;
            solid += (i > 0 ? ",#" : "#") + std::to_string(id);
            lines.push_back(FaceLine(id));
        }
        lines.push_back(solid + "),$);");
        const PartFile part(PartText("(#20)", lines));
        EXPECT_EQ(part.result, 0);
        ASSERT_EQ(part.Item()->meshCount, count);
        for (int i = 0; i < count; ++i) { ASSERT_EQ(part.Item()->meshes[i]->faceId, 100 + i); }
        EXPECT_EQ(part.reader->triangleSum, static_cast<unsigned>(count));
    }
}

TEST(Run, ReturnsZeroWhateverBecomesOfThePart) {
    const TempFolder folder;
    ReaderWorkspace workspace;
    StepModel model(workspace,
                    folder.Write("part.stp", P21Text({"#1=PRODUCT('P1','','',());",
                                                      "#2=TESSELLATED_SHAPE_REPRESENTATION('',(#20),#9);",
                                                      "#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30)})));
    ASSERT_EQ(ReadQuietly(model), 0);
    model.readSeconds = 2;
    model.inflateSeconds = 3;
    Arena arena;
    PartScratch scratch;
    PartReader reader(model, nullptr, arena, scratch);
    int result;
    {
        const LogCapture quiet;
        result = reader.Run();
    }
    EXPECT_EQ(result, 0);
    EXPECT_EQ(reader.readSeconds, 2);
    EXPECT_EQ(reader.inflateSeconds, 3);
    EXPECT_GT(reader.parseSeconds, 0);
}

TEST(PartReader, StartsAfreshWithAUsedScratch) {
    const TempFolder folder;
    const std::string text = PartText("(#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30)});
    // The same numbers with other points: nothing of the first part may be found.
    std::string other = text;
    other.replace(other.find("(0.,0.,0.)"), 10, "(9.,9.,9.)");
    ReaderWorkspace workspace;
    Arena arena;
    PartScratch scratch;
    for (const auto& [name, bytes, expected] : {std::tuple{"a.stp", text, 0.0f}, {"b.stp", other, 9.0f}}) {
        StepModel model(workspace, folder.Write(name, bytes));
        ASSERT_EQ(ReadQuietly(model), 0);
        PartReader reader(model, nullptr, arena, scratch);
        ASSERT_EQ(reader.ReadPart(), 0);
        ASSERT_EQ(scratch.faces.size(), 1u);
        EXPECT_EQ(scratch.faces[0]->vertices[0], expected);
        EXPECT_EQ(reader.triangleSum, 1u);
    }
}

std::string WithProductName(const std::string& name) {
    return P21Text(
        {"#1=PRODUCT('" + name + "','','',());", "#2=TESSELLATED_SHAPE_REPRESENTATION('',(),#9);"});
}

TEST(ProductName, EndsAtTheNextQuote) {
    EXPECT_STREQ(PartFile(WithProductName("it''s")).reader->product->name, "it");
    EXPECT_STREQ(PartFile(WithProductName("")).reader->product->name, "");
    EXPECT_STREQ(PartFile(WithProductName("\xE9t\xE9 (1), x")).reader->product->name, "\xE9t\xE9 (1), x");
}

TEST(ProductName, StandsBehindTheFirstParenthesis) {
    const PartFile part(P21Text({"#1=PRODUCT(  'P1','','',());"}));
    EXPECT_STREQ(part.reader->product->name, "P1");
    EXPECT_STREQ(PartFile(P21Text({"#1=PRODUCT($,'second','',());"})).reader->product->name, "second");
}

TEST(ProductName, MayHave299Characters) {
    const std::string name(299, 'n');
    EXPECT_EQ(PartFile(WithProductName(name)).reader->product->name, name);
}

TEST(ProductNameDeathTest, EndsTheProcessAt300Characters) {
    const std::string text = WithProductName(std::string(300, 'n'));
    EXPECT_EXIT(PartFile part(text), testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(ProductName, IsNotReadWhenAProductIsGiven) {
    ProductNode product{};
    const PartFile part(WithProductName(std::string(300, 'n')), "part.stp", &product);
    EXPECT_EQ(part.result, 0);
}

} // namespace
} // namespace tarnwick::test
