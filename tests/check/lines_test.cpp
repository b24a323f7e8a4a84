#include "check/checked.h"

namespace tarnwick::test {
namespace {

TEST(CheckLines, FindNothingInAGoodFile) {
    EXPECT_THAT(Findings(GoodPart()), IsEmpty());
}

TEST(CheckLines, TellOfAnIndentedEntity) {
    EXPECT_THAT(Findings(Edited("#9=", " #9=")),
                ElementsAre("blank 10 #9", "missing-entity 9 #2", "missing-entity 16 #40"));
    EXPECT_THAT(Findings(Edited("#9=", "#9 = ")), IsEmpty()) << "blanks around the \"=\" do no harm";
}

TEST(CheckLines, TellOfABlankBehindProduct) {
    EXPECT_THAT(Findings(Edited("PRODUCT(", "PRODUCT (")), ElementsAre("no-product", "blank 8 #1"));
    EXPECT_THAT(Findings(Edited("TESSELLATED_SOLID(", "TESSELLATED_SOLID (")), IsEmpty());
}

TEST(CheckLines, TellOfATabOrACommentBehindTheEqualsSign) {
    for (const char* const gap : {"=\t", "= \t ", "=/* colour */"}) {
        const std::string text = Edited("#60=", std::string("#60") + gap);
        EXPECT_THAT(Findings(text), ElementsAre("blank 29 #60")) << gap;
    }
    EXPECT_THAT(Findings(Edited("#9=", "#9=\t")), IsEmpty()) << "a keyword that no reader looks at";
    EXPECT_THAT(Findings(Edited("#60=", "#60=  ")), IsEmpty());
}

TEST(CheckLines, TellOfAKeywordOnTheNextLine) {
    EXPECT_THAT(Findings(Edited("#60=", "#60=\n")), ElementsAre("broken-list 29 #60"));
    EXPECT_THAT(Findings(Edited("#9=", "#9=\n")), IsEmpty()) << "a keyword that no reader looks at";
}

TEST(CheckLines, TellOfAnEntityWithoutEqualsSignOnItsLine) {
    EXPECT_THAT(Findings(Edited("#62=", "#62\n=")),
                ElementsAre("broken-list 31 #62", "missing-entity 29 #60", "colour 18 #42"));
}

TEST(CheckLines, TellOfAnEntityThatACommentSwallows) {
    const std::string comment = "/* a comment */\n#62=";
    EXPECT_THAT(Findings(Edited("#62=", comment)),
                ElementsAre("swallowed-line 32 #62", "missing-entity 29 #60", "colour 18 #42"));
    EXPECT_THAT(Findings(Edited("#62=", "/* a comment; */;\n#62=")), IsEmpty());
}

TEST(CheckLines, TellOfAnEntityThatALineOfBlanksSwallows) {
    EXPECT_THAT(Findings(Edited("#62=", "  \n#62=")),
                ElementsAre("swallowed-line 32 #62", "missing-entity 29 #60", "colour 18 #42"));
    EXPECT_THAT(Findings(Edited("#62=", "\n\r\n#62=")), IsEmpty()) << "empty lines do no harm";
}

TEST(CheckLines, TellOfAnEntityThatAnUnfinishedOneSwallows) {
    const std::string text = Edited("TRANSPARENT(0.5);", "TRANSPARENT(0.5);\n#63=X()\n#64=Y();");
    EXPECT_THAT(Findings(text), ElementsAre("swallowed-line 33 #64"));
    EXPECT_THAT(Texts(text), ElementsAre("is taken as the rest of #63, which doesn't end in \";\""));
}

TEST(CheckLines, LeaveTheTailOfAnEntityAlone) {
    EXPECT_THAT(Findings(Edited("REPRESENTATION_CONTEXT(", "REPRESENTATION_CONTEXT(\n")), IsEmpty());
    EXPECT_THAT(Findings(Edited("#62=", "/* several lines\n#99=X();\n*/;\n#62=")), IsEmpty())
        << "what a comment holds isn't told";
}

TEST(CheckLines, TellOfTheSecondEntityOnALine) {
    EXPECT_THAT(Findings(Edited("(#62));\n#61=", "(#62)); #61=")),
                ElementsAre("several-on-a-line 29 #61", "missing-entity 29 #60", "colour 18 #42"));
    EXPECT_THAT(Findings(Edited("(#62));", "(#62)); /* and more */;")), IsEmpty());
}

TEST(CheckLines, TellOfAnEntityNumberBelow1) {
    EXPECT_THAT(Findings(Edited("#62=", "#0=X();\n#62=")), ElementsAre("damaged 31"));
}

} // namespace
} // namespace tarnwick::test
