// The text that the geometry kernel gets of a file.

#include "mesher/kernel_text.h"

#include "exchange/exchange_file.h"
#include "exchange/padded.h"
#include "mesher/solid_text.h"

#include <gmock/gmock.h>

namespace tarnwick::test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string KernelTextOf(const std::string& instances, const std::vector<std::uint64_t>& bodies,
                         std::uint64_t context = kContext) {
    const std::string text = ExchangeText(instances);
    const Padded padded(text);
    const ExchangeFile file(padded.Text());
    return KernelText(file, bodies, context).text;
}

std::vector<std::uint64_t> FacesIn(const std::string& instances, std::uint64_t body) {
    const std::string text = ExchangeText(instances);
    const Padded padded(text);
    return FacesOf(ExchangeFile(padded.Text()), body);
}

// The instances of a kernel's text, read again.
std::vector<std::uint64_t> NumbersOf(const std::string& text) {
    const Padded padded(text);
    const ExchangeFile file(padded.Text());
    EXPECT_TRUE(file.Deviations().empty());
    std::vector<std::uint64_t> numbers;
    for (const Instance& instance : file.Instances()) { numbers.push_back(instance.number); }
    return numbers;
}

TEST(KernelText, HoldsTheBodyAndItsContextAndNothingElse) {
    SolidText solids(100);
    const std::uint64_t wanted = solids.AddCube(1);
    const std::uint64_t other = solids.AddCube(2);
    solids.Add("PRODUCT('name','name','',())");
    const std::string text = KernelTextOf(ContextText() + solids.Text(), {wanted});
    std::vector<std::uint64_t> numbers = NumbersOf(text);
    // The context with three units and the uncertainty, the first cube, and the representation of both.
    EXPECT_EQ(numbers.size(), 5 + (wanted - 100 + 1) + 1);
    EXPECT_EQ(numbers.back(), wanted + 1);
    EXPECT_THAT(text, Not(HasSubstr("#" + std::to_string(other) + "=")));
    EXPECT_THAT(text, HasSubstr("SHAPE_REPRESENTATION('',(#" + std::to_string(wanted) + "),#10);"));
    EXPECT_THAT(text, HasSubstr("LENGTH_MEASURE(1.E-5),#1,'distance_accuracy_value','')"));
}

TEST(KernelText, HasNumbersAndKeywordsAsTheStandardHasThem) {
    const std::string text =
        KernelTextOf(ContextText() + "#100=(bounded_surface()point('',(1.5e3,-.5,+1D-2)));", {100});
    EXPECT_THAT(text, HasSubstr("#100=(BOUNDED_SURFACE()POINT('',(1.5E3,-0.5,1.E-2)));"));
}

TEST(KernelText, HasNoNames) {
    SolidText solids(100);
    const std::uint64_t cube = solids.AddCube(1);
    const std::string text = KernelTextOf(ContextText() + solids.Text(), {cube});
    EXPECT_THAT(text, AllOf(Not(HasSubstr("'side'")), Not(HasSubstr("'solid'"))));
}

TEST(KernelText, StopsAtPresentationProductsAndTessellation) {
    const std::string text =
        KernelTextOf("#1=MANIFOLD_SOLID_BREP(#2,#3,#4,#5,#6,#7,#8);\n"
                     "#2=STYLED_ITEM('',(),#1);\n"
                     "#3=CLOSED_SHELL('',());\n"
                     "#4=TESSELLATED_SOLID('',(),$);\n"
                     "#5=SHAPE_REPRESENTATION('',(),#9);\n"
                     "#6=PRODUCT_DEFINITION('','',$,$);\n"
                     "#7=(GEOMETRIC_REPRESENTATION_ITEM()REPOSITIONED_TESSELLATED_ITEM(#9));\n"
                     "#8=DEFINITIONAL_REPRESENTATION('',(#3),#9);\n"
                     "#9=REPRESENTATION_CONTEXT('','');\n",
                     {1});
    EXPECT_THAT(NumbersOf(text), ElementsAre(1, 8, 9, 3, 10, 11, 12, 13, 14));
    EXPECT_THAT(text, HasSubstr("#1=MANIFOLD_SOLID_BREP($,#3,$,$,$,$,#8);"));
}

TEST(KernelText, OmitsWhatIsNotThere) {
    const std::string text = KernelTextOf(
        "#1=MANIFOLD_SOLID_BREP('',#2);\n#2=CLOSED_SHELL('',(#7,#3,#8,#4,#9));\n"
        "#3=ADVANCED_FACE('',(#7),#8,.T.);\n#4=DIRECTION('',(1.,0.,0.));\n#8=EDGE_LOOP('',());\n",
        {1, 6});
    EXPECT_THAT(text, HasSubstr("#2=CLOSED_SHELL('',(#3));"));
    EXPECT_THAT(text, HasSubstr("#3=ADVANCED_FACE('',($),#8,.T.);"));
    EXPECT_THAT(text, HasSubstr("SHAPE_REPRESENTATION('',(#1),#"));
}

TEST(KernelText, HasMillimetresAndRadiansWithoutAContext) {
    const std::string text = KernelTextOf("#1=CLOSED_SHELL('',());\n", {1}, 77);
    EXPECT_THAT(text, AllOf(HasSubstr("SI_UNIT(.MILLI.,.METRE.)"), HasSubstr("SI_UNIT($,.RADIAN.)"),
                            HasSubstr("SHAPE_REPRESENTATION('',(#1),#5);")));
}

TEST(KernelText, EndsWhereInstancesReferToEachOther) {
    EXPECT_EQ(NumbersOf(KernelTextOf("#1=A(#2,#1);\n#2=B(#3);\n#3=C(#1);\n", {1, 1})).size(), 8U);
}

TEST(KernelText, IsNotDeepWhereReferencesAre) {
    std::string chain;
    constexpr std::uint64_t kLength = 300000;
    for (std::uint64_t i = 1; i <= kLength; ++i) {
        chain += "#" + std::to_string(i) + "=A(#" + std::to_string(i + 1) + ");\n";
    }
    EXPECT_EQ(NumbersOf(KernelTextOf(chain, {1}, 0)).size(), kLength + 5);
    EXPECT_THAT(FacesIn(chain, 1), IsEmpty());
}

TEST(KernelText, RenumbersWhatTheKernelCannotHold) {
    const std::string text = ExchangeText(
        "#1=A(#4294967297,#18446744073709551615);\n#4294967297=B();\n#18446744073709551615=C(#1);\n");
    const Padded padded(text);
    const ExchangeFile file(padded.Text());
    const std::vector<std::uint64_t> bodies{18446744073709551615U, 7};
    const KernelInput input = KernelText(file, bodies, 0);
    EXPECT_THAT(input.text,
                AllOf(HasSubstr("#2000000001=C(#1);"), HasSubstr("#1=A(#2000000002,#2000000001);"),
                      HasSubstr("#2000000002=B();")));
    EXPECT_THAT(input.bodies, ElementsAre(2000000001));
    EXPECT_EQ(input.OwnNumber(2000000001), 18446744073709551615U);
    EXPECT_EQ(input.OwnNumber(2000000002), 4294967297U);
    EXPECT_EQ(input.OwnNumber(2000000003), 2000000003U);
    EXPECT_EQ(input.OwnNumber(1), 1U);
}

TEST(FacesOf, AreThoseOfTheBodyInItsOrder) {
    SolidText solids(100);
    const std::uint64_t cube = solids.AddCube(1);
    const std::vector<std::uint64_t> faces = solids.Faces();
    EXPECT_THAT(FacesIn(solids.Text(), cube), ElementsAreArray(faces));
    EXPECT_THAT(FacesIn(solids.Text(), solids.Shell()), ElementsAreArray(faces));
    EXPECT_THAT(FacesIn(solids.Text(), faces[2]), ElementsAre(faces[2]));
}

TEST(FacesOf, AreSurfacesInASet) {
    EXPECT_THAT(
        FacesIn("#1=GEOMETRIC_SET('',(#2,#3,#4));\n#2=RECTANGULAR_TRIMMED_SURFACE('',#5,1.,2.,3.,4.,.T.,"
                ".T.);\n#3=CIRCLE('',#6,1.);\n#4=CURVE_BOUNDED_SURFACE('',#5,(),.T.);\n#5=PLANE('',#6);\n",
                1),
        ElementsAre(2, 4));
}

TEST(FacesOf, AreFoundBehindOrientedOnesAndInComplexInstances) {
    EXPECT_THAT(FacesIn("#1=BREP_WITH_VOIDS('',#2,(#3));\n#2=CLOSED_SHELL('',(#4));\n"
                        "#3=ORIENTED_CLOSED_SHELL('',*,#5,.F.);\n#4=ORIENTED_FACE('',*,#6,.T.);\n"
                        "#5=CLOSED_SHELL('',(#7));\n#6=FACE_SURFACE('',(),#8,.T.);\n"
                        "#7=(ADVANCED_FACE()FACE((#9))FACE_SURFACE(#8,.T.)REPRESENTATION_ITEM(''));\n",
                        1),
                ElementsAre(6, 7));
}

} // namespace
} // namespace tarnwick::test
