// Texts that end within a line: whichever line that is, and wherever it is cut, its reader gives up in one
// line of the console or reads what is there.

#include "geometry/fe_model.h"
#include "geometry/part_file.h"
#include "support/p21_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;

// Calls `read` with the text whose last line is each of its entities in turn, cut at each place after its
// keyword.
template <class Read>
void ForEachCut(const std::string& text, Read read) {
    const std::size_t data = text.find("DATA;\n") + 6;
    const std::size_t end = text.find("ENDSEC;", data);
    for (std::size_t start = data; start < end;) {
        const std::size_t next = text.find('\n', start) + 1;
        const std::string others = text.substr(0, start) + text.substr(next, end - next);
        const std::string line = text.substr(start, next - start - 1);
        for (std::size_t length = line.find('('); length < line.size(); ++length) {
            read(others + line.substr(0, length));
        }
        start = next;
    }
}

// What is said, without the file's name and with "#" for each number.
std::string Reason(const std::string& said, const std::string& path) {
    std::string reason;
    for (const char c : said.substr(said.find(path) + path.size())) {
        const bool isDigit = c >= '0' && c <= '9';
        if (!isDigit) { reason += c; }
    }
    return reason;
}

TEST(CutLines, OfAPartAreReadOrGivenUpWithAReason) {
    std::set<std::string> reasons;
    ForEachCut(SmallPartText(), [&](const std::string& text) {
        // Already the model wants these whole.
        if (text.find("CATEGORY", text.rfind("\n#")) != std::string::npos) { return; }
        const PartFile part(text);
        if (part.console.empty()) { return; }
        EXPECT_EQ(part.console.find('\n'), part.console.size() - 1) << text;
        reasons.insert(Reason(part.console, part.model.fileName));
    });
    const std::string givenUp = ": part given up, ";
    EXPECT_THAT(reasons,
                ElementsAre(givenUp + "a colour's line runs past the end of the file\n",
                            givenUp + "a raw material's line runs past the end of the file\n",
                            givenUp + "face # has a list of strips or fans that is broken over lines\n",
                            givenUp + "face # names a point that its COORDINATES_LIST doesn't have\n",
                            givenUp + "face # runs past the end of the file\n",
                            givenUp + "it has no PRODUCT\n",
                            givenUp + "its TESSELLATED_SHAPE_REPRESENTATION runs past the end of the file\n",
                            givenUp + "the list of a solid or shell runs past the end of the file\n"));
}

TEST(CutLines, OfAPartsCategoryGiveItUp) {
    const std::string text = PartText("(#20)", {kSquare, "#20=TESSELLATED_SOLID('',(#30),$);", FaceLine(30)});
    const PartFile part(text.substr(0, text.find("ENDSEC;\nEND")) +
                        "#70=PRODUCT_RELATED_PRODUCT_CATEGORY('raw mat");
    EXPECT_EQ(part.result, 0);
    const PartFile cut(text.substr(0, text.find("ENDSEC;\nEND")) + "#70=PRODUCT_RELATED_PRODUCT_CATEGORY(");
    EXPECT_EQ(Reason(cut.console, cut.model.fileName),
              ": part given up, a product category runs past the end of the file\n");
}

TEST(CutLines, OfAModelOfFiniteElementsAreReadOrGivenUpWithAReason) {
    FeText text;
    text.Quad({1, 2, 3, 4});
    std::set<std::string> reasons;
    ForEachCut(text.Text(), [&](const std::string& cut) {
        const FeModel model(cut);
        if (model.console.empty()) { return; }
        EXPECT_EQ(model.console.find('\n'), model.console.size() - 1) << cut;
        reasons.insert(Reason(model.console, model.path));
    });
    EXPECT_THAT(reasons, ElementsAre(": given up, # runs past the end of the file\n",
                                     ": given up, it has no PRODUCT\n"));
}

} // namespace
} // namespace tarnwick::test
