#include "p21/model_file.h"
#include "platform/fail_fast.h"
#include "support/p21_text.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

const std::string kSeveral = "<W> StepModel: several root products\n";

// The lines with three products ahead of them, of which #3 is the last.
ModelFile WithProducts(const Lines& lines) {
    Lines data{"#1=PRODUCT('a','','',());", "#2=PRODUCT('b','','',());", "#3=PRODUCT('c','','',());"};
    data.insert(data.end(), lines.begin(), lines.end());
    return ModelFile(P21Text(data));
}

TEST(FindRootProduct, TakesTheProductOfTheCategoryPart) {
    const ModelFile file = WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#1));"});
    EXPECT_EQ(file.model->rootProductId, 1);
    EXPECT_EQ(file.console, "");
}

TEST(FindRootProduct, TakesTheLastSuchCategory) {
    const ModelFile file = WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#1));",
                                         "#8=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#2));",
                                         "#7=PRODUCT_RELATED_PRODUCT_CATEGORY('raw material','',(#3));"});
    EXPECT_EQ(file.model->rootProductId, 2);
}

TEST(FindRootProduct, WantsTheCategoryToBeCalledExactlyThat) {
    for (const std::string& name : Lines{"parts", "Part", "par", "", " part", "part "}) {
        const ModelFile file = WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('" + name + "','',(#1));"});
        EXPECT_EQ(file.model->rootProductId, 3) << name;
    }
}

TEST(FindRootProduct, WarnsOfSeveralProductsAndTakesTheFirst) {
    const ModelFile file = WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part',$,(#2,#1));"});
    EXPECT_EQ(file.model->rootProductId, 2);
    EXPECT_EQ(file.console, kSeveral);
    EXPECT_EQ(file.output, CountLine(4));
}

TEST(FindRootProduct, WarnsOfEachCategoryWithSeveralProducts) {
    const ModelFile file = WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part',$,(#2,#1));",
                                         "#8=PRODUCT_RELATED_PRODUCT_CATEGORY('part',$,(#1,#2,#3));"});
    EXPECT_EQ(file.console, kSeveral + kSeveral);
    EXPECT_EQ(file.model->rootProductId, 1);
}

TEST(FindRootProduct, WarnsOfACategoryWithoutProducts) {
    const ModelFile file = WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part',$,());"});
    EXPECT_EQ(file.console, kSeveral);
    EXPECT_EQ(file.model->rootProductId, 3);
}

TEST(FindRootProduct, ReadsTheListInTheNextParentheses) {
    EXPECT_EQ(WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part'(#2),(#1));"}).model->rootProductId, 2)
        << "also one that stands right after the quote";
}

TEST(FindRootProduct, IsNotRunForOneProduct) {
    const ModelFile file(
        P21Text({"#1=PRODUCT('a','','',());", "#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#5,#6));"}));
    EXPECT_EQ(file.model->rootProductId, 1);
    EXPECT_EQ(file.console, "");
}

TEST(FindRootProduct, IsNotRunForAnAssembly) {
    const ModelFile file = WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#1,#2));",
                                         "#10=NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',#5,#6,$);"});
    EXPECT_EQ(file.model->isAssembly, 1);
    EXPECT_EQ(file.model->rootProductId, 3) << "it stays the last one";
    EXPECT_EQ(file.console, "");
}

TEST(FindRootProduct, TakesANumberThatIsNoProduct) {
    EXPECT_EQ(WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#77));"}).model->rootProductId,
              77);
}

TEST(FindRootProduct, KeepsTheLastProductWhenTheCategoryListsNumberZero) {
    EXPECT_EQ(WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#0));"}).model->rootProductId, 3);
}

TEST(FindRootProduct, PassesACategoryNameOf299Characters) {
    const std::string name(299, 'n');
    const ModelFile file = WithProducts({"#9=PRODUCT_RELATED_PRODUCT_CATEGORY('" + name + "','',(#1));"});
    EXPECT_EQ(file.result, StepModel::kRead);
    EXPECT_EQ(file.model->rootProductId, 3);
}

TEST(FindRootProductDeathTest, EndsTheProcessAtACategoryNameOf300Characters) {
    const std::string name(300, 'n');
    const TempFolder folder;
    const std::string path =
        folder.Write("part.stp", P21Text({"#1=PRODUCT('a','','',());", "#2=PRODUCT('b','','',());",
                                          "#9=PRODUCT_RELATED_PRODUCT_CATEGORY('" + name + "','',(#1));"}));
    const auto read = [&path] {
        ReaderWorkspace workspace;
        StepModel model(workspace, path);
        model.Read();
    };
    EXPECT_EXIT(read(), testing::ExitedWithCode(kFailFastStatus), "^$");
}

TEST(FindRootProduct, GivesUpAFileThatEndsInACategory) {
    const ModelFile file(P21Header() + "#1=PRODUCT('a','','',());\n#2=PRODUCT('b','','',());\n"
                                       "#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part");
    EXPECT_NE(file.result, StepModel::kRead);
    EXPECT_EQ(file.console.substr(0, 4), "<E> ");
}

TEST(FindRootProduct, HasOneLineForACategoryWhoseListRunsPastTheEnd) {
    const ModelFile file(P21Header() + "#1=PRODUCT('a','','',());\n#2=PRODUCT('b','','',());\n"
                                       "#9=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#1,#2");
    EXPECT_NE(file.result, StepModel::kRead);
    EXPECT_EQ(file.console.find("<W>"), std::string::npos) << file.console;
}

} // namespace
} // namespace tarnwick::test
