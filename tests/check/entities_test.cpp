#include "check/checked.h"

#include "support/p21_text.h"

namespace tarnwick::test {
namespace {

TEST(CheckEntities, CountsEachKeyword) {
    const TempFolder folder;
    const CheckReport report = Checked(folder.Write(
        "part.stp", Edited("#62=", "#70=ADVANCED_FACE();\n#71= (A()B());\n#72 = ADVANCED_FACE ();\n#62=")));
    EXPECT_EQ(report.counts.at("ADVANCED_FACE"), 2);
    EXPECT_EQ(report.counts.at("(complex instance)"), 1);
    EXPECT_EQ(report.counts.at("STYLED_ITEM"), 2);
    EXPECT_EQ(report.counts.size(), 22U);
}

TEST(CheckEntities, TellsOfReferencesToWhatIsNotThere) {
    EXPECT_THAT(Findings(Edited("(#30,#31)", "(#30,#99,#31)")), ElementsAre("missing-entity 12 #20"));
    EXPECT_THAT(Texts(Edited("(#30,#31)", "(#30,#99,#31)")), ElementsAre("refers to #99, which isn't there"));
    EXPECT_THAT(Findings(Edited("'part one'", "'part #99'")), IsEmpty()) << "a string isn't a reference";
}

TEST(CheckEntities, NamesTheLineOfTheReferenceItself) {
    EXPECT_THAT(Findings(Edited("CONTEXT('','',3)", "CONTEXT('','',3,\n(#99))")),
                ElementsAre("missing-entity 11 #9"));
}

TEST(CheckEntities, TellsOfANumberThatStandsTwice) {
    EXPECT_THAT(Findings(Edited("#62=", "#9=X();\n#62=")), ElementsAre("number-twice 31 #9"));
}

TEST(CheckEntities, TellsOfNumbersThatEndTheProgram) {
    EXPECT_THAT(Findings(Edited("#58=FILL_AREA_STYLE_COLOUR('',#59)",
                                "#58=FILL_AREA_STYLE_COLOUR('',#000000000000059)")),
                ElementsAre("too-long 27 #58"));
    EXPECT_THAT(Findings(Edited("#58=FILL_AREA_STYLE_COLOUR('',#59)",
                                "#58=FILL_AREA_STYLE_COLOUR('',#00000000000059)")),
                IsEmpty());
    EXPECT_THAT(
        Findings(Edited("#30=TRIANGULATED_FACE('',#10,4", "#30=TRIANGULATED_FACE('',#10,000000000000004")),
        ElementsAre("too-long 14 #30"));
}

TEST(CheckEntities, TellsOfANameThatEndsTheProgram) {
    EXPECT_THAT(Findings(Edited("'P1'", "'" + std::string(300, 'n') + "'")), ElementsAre("too-long 8 #1"));
    EXPECT_THAT(Findings(Edited("'P1'", "'" + std::string(299, 'n') + "'")), IsEmpty());
}

TEST(CheckEntities, TellsOfACategoryAmongSeveralProductsThatEndsTheProgram) {
    const auto withCategory = [](int length, const char* products) {
        return Edited("#62=", "#6=PRODUCT_RELATED_PRODUCT_CATEGORY('" + std::string(length, 'n') +
                                  "',$,(#1));\n" + products + "#62=");
    };
    constexpr const char* kAnother = "#7=PRODUCT('P2','','',());\n";
    EXPECT_THAT(Findings(withCategory(300, kAnother)), ElementsAre("too-long 31 #6"));
    EXPECT_THAT(Findings(withCategory(299, kAnother)), IsEmpty());
    EXPECT_THAT(Findings(withCategory(300, "")), IsEmpty()) << "it isn't read for one product";
}

TEST(CheckEntities, TellsWhyAFileIsNoP21) {
    const std::string good = GoodPart();
    EXPECT_THAT(Findings("\xEF\xBB\xBF" + good), ElementsAre("header"));
    EXPECT_THAT(Texts("\xEF\xBB\xBF" + good),
                ElementsAre("the file isn't read: something stands before its ISO-10303-21, which must come "
                            "first"));
    EXPECT_THAT(Texts("{}"), ElementsAre("the file isn't read: it doesn't start with ISO-10303-21"));
    EXPECT_THAT(Texts(""), ElementsAre("the file isn't read: it is empty"));
    EXPECT_THAT(Texts(Edited("DATA;", "DATA ;")),
                ElementsAre("the file isn't read: no line starts with DATA;"));
    EXPECT_THAT(Texts(Edited("FILE_SCHEMA(", "FILE_SCHEMA (")),
                ElementsAre("the file isn't read: a blank or line end stands between FILE_SCHEMA and \"(\""));
}

TEST(CheckEntities, TellsOfAFileThatIsNotThere) {
    EXPECT_THAT(Brief(Checked("/nowhere/part.stp")), ElementsAre("unread-file"));
    EXPECT_THAT(Brief(Checked("/nowhere/part.txt")), ElementsAre("extension"));
}

} // namespace
} // namespace tarnwick::test
