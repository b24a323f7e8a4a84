#include "geometry/part_file.h"
#include "platform/fail_fast.h"
#include "support/p21_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;

// A part with two solids, #20 (exact #91) and #21 (exact #92), and a link from the option #74 to steel.
struct Material {
    std::string solid = "#20=TESSELLATED_SOLID('',(#30),#91);";
    std::string category = "#70=PRODUCT_RELATED_PRODUCT_CATEGORY('raw material','',(#71));";
    std::string product = "#71=PRODUCT('M1','steel','',());";
    std::string formation = "#72=PRODUCT_DEFINITION_FORMATION('','',#71);";
    std::string definition = "#73=PRODUCT_DEFINITION('','',#72,#9);";
    std::string option = "#74=MAKE_FROM_USAGE_OPTION('','','',#9,#73,$,1,'',$);";
    std::string shape = "#75=PRODUCT_DEFINITION_SHAPE('','',#74);";
    std::string representation = "#76=SHAPE_REPRESENTATION('',(#20),#9);";
    std::string shapeDefinition = "#77=SHAPE_DEFINITION_REPRESENTATION(#75,#76);";
    Lines more;

    std::string Text() const {
        Lines lines{kSquare,
                    solid,
                    "#21=TESSELLATED_SOLID('',(#31),#92);",
                    FaceLine(30),
                    FaceLine(31),
                    category,
                    product,
                    formation,
                    definition,
                    option,
                    shape,
                    representation,
                    shapeDefinition,
                    "#78=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#1));"};
        lines.insert(lines.end(), more.begin(), more.end());
        return PartText("(#20,#21)", lines);
    }
};

// The material names of both solids, "-" for none.
std::vector<std::string> Names(const Material& material) {
    const PartFile part(material.Text());
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < part.reader->containerCount; ++i) {
        const char* const name = part.Container(i).materialName;
        names.emplace_back(name != nullptr ? name : "-");
    }
    EXPECT_EQ(part.result, 0);
    EXPECT_EQ(part.Item() != nullptr, true);
    return names;
}

TEST(LinkRawMaterial, NamesTheSolidThatTheRepresentationLists) {
    EXPECT_THAT(Names({}), ElementsAre("steel", "-"));
}

TEST(LinkRawMaterial, FindsASolidByItsExactNumber) {
    Material material;
    material.representation = "#76=SHAPE_REPRESENTATION('',(#92),#9);";
    EXPECT_THAT(Names(material), ElementsAre("-", "steel"));
    material.representation = "#76=SHAPE_REPRESENTATION('',(#1,#92,#20),#9);";
    EXPECT_THAT(Names(material), ElementsAre("steel", "steel"));
}

// The option leads to a solid, and from there to the mark in the place of its "$", after which no number
// stands. Walks of a colour have gone far over the text before the mark was made.
TEST(LinkRawMaterial, StopsAtTheMarkOfASolidWithoutALink) {
    const std::string far(9000, ' ');
    Material material;
    material.solid = "#20=TESSELLATED_SOLID('',(#30)," + far + '$' + far + ");";
    material.option = "#74=MAKE_FROM_USAGE_OPTION('','','',#9,#20,$,1,'',$);";
    material.more = {"#92=PRODUCT('M1','steel','',());",
                     "#50=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(#51),#1);",
                     "#51=STYLED_ITEM('',(" + far + "#52),#1);"};
    EXPECT_THAT(Names(material), ElementsAre("-", "-"));
}

TEST(LinkRawMaterial, NeedsACategoryThatStartsWithRawMaterial) {
    Material material;
    for (const auto& [name, expected] : {std::pair{"raw material", "steel"},
                                         {"raw materials of all kinds", "steel"},
                                         {"Raw Material", "-"},
                                         {"raw materia", "-"},
                                         {" raw material", "-"},
                                         {"raw_material", "-"}}) {
        material.category = std::string("#70=PRODUCT_RELATED_PRODUCT_CATEGORY('") + name + "','',(#71));";
        EXPECT_THAT(Names(material), ElementsAre(expected, "-")) << name;
    }
    material.category = "#70=X();";
    EXPECT_THAT(Names(material), ElementsAre("-", "-"));
}

TEST(LinkRawMaterial, TakesTheCategoryAnywhereInTheFile) {
    Material material;
    material.category = "#70=X();";
    material.more = {"#170=PRODUCT_RELATED_PRODUCT_CATEGORY('raw material','',(#999));"};
    EXPECT_THAT(Names(material), ElementsAre("steel", "-"));
}

TEST(LinkRawMaterial, DoesNothingWithoutOptionOrShapeDefinition) {
    Material material;
    material.option = "#74=X();";
    EXPECT_THAT(Names(material), ElementsAre("-", "-"));
    Material other;
    other.shapeDefinition = "#77=X();";
    EXPECT_THAT(Names(other), ElementsAre("-", "-"));
}

TEST(LinkRawMaterial, PassesOverAShapeOfSomethingElse) {
    Material material;
    material.shape = "#75=PRODUCT_DEFINITION_SHAPE('','',#73);";
    EXPECT_THAT(Names(material), ElementsAre("-", "-"));
}

TEST(LinkRawMaterial, LooksAtAllShapeDefinitions) {
    Material material;
    material.shapeDefinition = "#76=SHAPE_DEFINITION_REPRESENTATION(#88,#89);";
    material.representation = "#99=X();";
    material.more = {"#88=PRODUCT_DEFINITION_SHAPE('','',#73);", "#89=SHAPE_REPRESENTATION('',(#21),#9);",
                     "#101=SHAPE_DEFINITION_REPRESENTATION(#75,#102);",
                     "#102=SHAPE_REPRESENTATION('',(#20),#9);"};
    EXPECT_THAT(Names(material), ElementsAre("steel", "-"));
}

TEST(LinkRawMaterial, LetsTheLastOfTwoLinksWin) {
    Material material;
    material.more = {
        "#171=PRODUCT('M2','brass','',());",         "#172=PRODUCT_DEFINITION_FORMATION('','',#171);",
        "#173=PRODUCT_DEFINITION('','',#172,#9);",   "#50=MAKE_FROM_USAGE_OPTION('','','',#9,#173,$,1,'',$);",
        "#175=PRODUCT_DEFINITION_SHAPE('','',#50);", "#51=SHAPE_DEFINITION_REPRESENTATION(#175,#76);"};
    EXPECT_THAT(Names(material), ElementsAre("brass", "-")) << "in the order of the file, not of the numbers";
}

// A second material, brass, for the items of #176, and a third one, tin, for those of #76.
Lines BrassAndTin(const std::string& items) {
    return {"#171=PRODUCT('M2','brass','',());",
            "#172=PRODUCT_DEFINITION_FORMATION('','',#171);",
            "#173=PRODUCT_DEFINITION('','',#172,#9);",
            "#174=MAKE_FROM_USAGE_OPTION('','','',#9,#173,$,1,'',$);",
            "#175=PRODUCT_DEFINITION_SHAPE('','',#174);",
            "#176=SHAPE_REPRESENTATION(''," + items + ",#9);",
            "#177=SHAPE_DEFINITION_REPRESENTATION(#175,#176);",
            "#271=PRODUCT('M3','tin','',());",
            "#272=PRODUCT_DEFINITION_FORMATION('','',#271);",
            "#273=PRODUCT_DEFINITION('','',#272,#9);",
            "#274=MAKE_FROM_USAGE_OPTION('','','',#9,#273,$,1,'',$);",
            "#275=PRODUCT_DEFINITION_SHAPE('','',#274);",
            "#276=SHAPE_DEFINITION_REPRESENTATION(#275,#76);"};
}

TEST(LinkRawMaterial, LetsTheLastLinkWinWhicheverListIsReadLast) {
    Material material;
    material.representation = "#76=SHAPE_REPRESENTATION('',(#20,#21),#9);";
    material.more = BrassAndTin("(#20,#21)");
    EXPECT_THAT(Names(material), ElementsAre("tin", "tin"));
}

TEST(LinkRawMaterial, LetsTheLastLinkWinByEitherNumberOfASolid) {
    Material material;
    material.representation = "#76=SHAPE_REPRESENTATION('',(#20,#92),#9);";
    material.more = BrassAndTin("(#91,#21)");
    EXPECT_THAT(Names(material), ElementsAre("tin", "tin"));
    material.more.resize(7); // without tin
    EXPECT_THAT(Names(material), ElementsAre("brass", "brass"));
}

TEST(LinkRawMaterial, KeepsWhatWasNamedBeforeALineThatIsCutOff) {
    Material material;
    material.more = BrassAndTin("");
    material.more.resize(7);
    material.more.erase(material.more.begin() + 5);
    material.more.push_back("#176=SHAPE_REPRESENTATION('',(#21");
    const PartFile part(material.Text());
    EXPECT_NE(part.console.find("a raw material's line runs past the end of the file\n"), std::string::npos);
    EXPECT_STREQ(part.Container(0).materialName, "steel");
    EXPECT_EQ(part.Container(1).materialName, nullptr);
}

TEST(LinkRawMaterial, TakesTheNameAndNotTheIdOfTheProduct) {
    Material material;
    material.product = "#71=PRODUCT( 'M1' , \n'bronze, cast','',());";
    EXPECT_THAT(Names(material), ElementsAre("bronze, cast", "-"));
}

TEST(LinkRawMaterial, SkipsArgumentsWithListsInThem) {
    Material material;
    material.option = "#74=MAKE_FROM_USAGE_OPTION((1,(2,3)),'',$, #9 , #73,$,1,'',$);";
    material.shapeDefinition = "#77=SHAPE_DEFINITION_REPRESENTATION( #75 , #76);";
    material.representation = "#76=SHAPE_REPRESENTATION('' , \n (#20),#9);";
    EXPECT_THAT(Names(material), ElementsAre("steel", "-"));
}

TEST(LinkRawMaterial, SkipsALinkThatEndsNowhere) {
    for (std::string Material::*const line : {&Material::product, &Material::formation, &Material::definition,
                                              &Material::shape, &Material::representation}) {
        Material material;
        material.*line = "#60=X();";
        EXPECT_THAT(Names(material), ElementsAre("-", "-"));
    }
}

TEST(LinkRawMaterial, SkipsOneBadLinkAndTakesTheNext) {
    Material material;
    material.option = "#60=MAKE_FROM_USAGE_OPTION('','','',#9,#999,$,1,'',$);";
    material.more = {"#74=MAKE_FROM_USAGE_OPTION('','','',#9,#73,$,1,'',$);"};
    EXPECT_THAT(Names(material), ElementsAre("steel", "-"));
}

TEST(LinkRawMaterial, TakesANameOf99Characters) {
    Material material;
    const std::string name(99, 'n');
    material.product = "#71=PRODUCT('M1','" + name + "','',());";
    EXPECT_THAT(Names(material), ElementsAre(name, "-"));
}

TEST(LinkRawMaterialDeathTest, EndsTheProcessAtANameOf100Characters) {
    Material material;
    material.product = "#71=PRODUCT('M1','" + std::string(100, 'n') + "','',());";
    const std::string text = material.Text();
    EXPECT_EXIT(PartFile part(text), testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(LinkRawMaterialDeathTest, EndsTheProcessAtAReferenceOfFifteenDigits) {
    Material material;
    material.formation = "#72=PRODUCT_DEFINITION_FORMATION('','',#000000000000071);";
    const std::string text = material.Text();
    EXPECT_EXIT(PartFile part(text), testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(LinkRawMaterial, TakesReferencesOfFourteenDigits) {
    Material material;
    material.formation = "#72=PRODUCT_DEFINITION_FORMATION('','',#00000000000071);";
    EXPECT_THAT(Names(material), ElementsAre("steel", "-"));
}

TEST(LinkRawMaterial, IsNotReachedByALongNameWithoutACategory) {
    Material material;
    material.category = "#70=X();";
    material.product = "#71=PRODUCT('M1','" + std::string(100, 'n') + "','',());";
    EXPECT_THAT(Names(material), ElementsAre("-", "-"));
}

} // namespace
} // namespace tarnwick::test
