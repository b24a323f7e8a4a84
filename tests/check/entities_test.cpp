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
    EXPECT_THAT(Texts("\n<Uos>"), ElementsAre("the file isn't read: it is XML, which is taken under the "
                                              "extensions .stpx and .stpxz alone"));
    EXPECT_THAT(Texts("\x1F\x8B..."), ElementsAre("the file isn't read: it is compressed, which is taken "
                                                  "under the extension .stpz alone"));
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

// A raw material with a name of so many characters.
std::string WithMaterial(std::size_t length) {
    return Edited("#62=", "#70=PRODUCT_RELATED_PRODUCT_CATEGORY('raw material',$,(#71));\n#71=PRODUCT('M','" +
                              std::string(length, 'm') +
                              "','',());\n#72=PRODUCT_DEFINITION_FORMATION('','',#71);\n"
                              "#73=PRODUCT_DEFINITION('','',#72,#9);\n"
                              "#74=MAKE_FROM_USAGE_OPTION('','','',#73,#73,1,'',#9);\n"
                              "#75=PRODUCT_DEFINITION_SHAPE('','',#74);\n"
                              "#76=SHAPE_DEFINITION_REPRESENTATION(#75,#2);\n#62=");
}

TEST(CheckEntities, TellsOfTheNameOfARawMaterialThatEndsTheProgram) {
    const TempFolder folder;
    const CheckReport report = Checked(folder.Write("part.stp", WithMaterial(100)));
    EXPECT_THAT(Brief(report), ElementsAre("too-long 32 #71"));
    EXPECT_EQ(report.outcome.end, LoadOutcome::End::kEnded);
    EXPECT_THAT(Findings(WithMaterial(99)), IsEmpty());
}

TEST(CheckEntities, TellsWhichNameACopyShouldHave) {
    const TempFolder folder;
    const CheckReport report = Checked(folder.Write("part.STEP", GoodPart()));
    EXPECT_THAT(Brief(report), ElementsAre("extension"));
    EXPECT_EQ(report.findings[0].text,
              "isn't taken under a name with this extension; a copy of it under the name 'part.stp' is");
    EXPECT_EQ(SummaryOf(report), "Isn't taken under this name; a copy: Shows all of its 7 triangles");
    EXPECT_THAT(Brief(Checked(folder.Write("part.p21", Edited("#1=PRODUCT(", "#1=PRODUKT(")))),
                ElementsAre("extension", "no-product"));
}

TEST(CheckEntities, TellsWhichNameACopyOfAnyNameShouldHave) {
    const TempFolder folder;
    const std::pair<const char*, const char*> names[] = {
        {"part", "part.stp"}, {"part.", "part.stp"},   {".part", ".part.stp"}, {"a.b.step", "a.b.stp"},
        {".z", ".z.stp"},     {"part.z", "part.stpz"}, {"a.stp.Z", "a.stpz"},  {"part.step.gz", "part.stpz"},
        {".gz", ".gz.stp"},   {".p.gz", ".p.stpz"},
    };
    for (const auto& [name, copy] : names) {
        const CheckReport report = Checked(folder.Write(name, GoodPart()));
        ASSERT_FALSE(report.findings.empty()) << name;
        EXPECT_EQ(report.findings[0].text,
                  "isn't taken under a name with this extension; a copy of it under the name '" +
                      std::string(copy) + "' is");
    }
}

TEST(CheckEntities, NeverSaysThatNothingIsWrongWhereNothingIsShown) {
    const TempFolder folder;
    for (const std::string& text : {P21Text({}), P21Text({"#1=PRODUCT('P','','',());"}),
                                    P21Text({"#1=NEXT_ASSEMBLY_USAGE_OCCURRENCE();"}),
                                    Edited("TESSELLATED_SHAPE_REPRESENTATION", "SHAPE_REPRESENTATION")}) {
        const CheckReport report = Checked(folder.Write("part.stp", text));
        EXPECT_EQ(report.outcome.triangles, 0);
        EXPECT_FALSE(report.findings.empty()) << text;
    }
}

} // namespace
} // namespace tarnwick::test
