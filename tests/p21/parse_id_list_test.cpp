#include "p21/text_walk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {
namespace {

struct List {
    std::vector<std::int32_t> ids;
    std::string left; // the text from where the walk was left
    bool overrun;
};

List Parse(const std::string& text) {
    List list;
    TextWalk walk{text.data(), text.data() + text.size()};
    ParseIdList(&walk, &list.ids);
    list.left = std::string(walk.at, walk.end);
    list.overrun = walk.overrun;
    return list;
}

using Ids = std::vector<std::int32_t>;

TEST(ParseIdList, ReadsReferences) {
    const List list = Parse("(#1,#22,#333),$);");
    EXPECT_EQ(list.ids, (Ids{1, 22, 333}));
    EXPECT_FALSE(list.overrun);
}

TEST(ParseIdList, LeavesTheWalkAtTheLastReference) {
    EXPECT_EQ(Parse("(#1,#22),#5);").left, "#22),#5);");
    EXPECT_EQ(Parse("(#1),#5);").left, "#1),#5);");
}

TEST(ParseIdList, GivesNothingForAnEmptyList) {
    const List list = Parse("(),#5);");
    EXPECT_EQ(list.ids, Ids{});
    EXPECT_EQ(list.left, "),#5);");
    EXPECT_EQ(Parse("(   ),#5);").ids, Ids{});
}

TEST(ParseIdList, GoesToTheFirstParenthesis) {
    EXPECT_EQ(Parse("abc,#9(#1)").ids, Ids{1});
}

TEST(ParseIdList, SkipsBlanksAroundReferences) {
    EXPECT_EQ(Parse("( #1 , #2,   #3 )").ids, (Ids{1, 2, 3}));
}

TEST(ParseIdList, ReadsTheFirstReferenceOfASecondLineAsZero) {
    EXPECT_EQ(Parse("(#1,\n#2,#3)").ids, (Ids{1, 0, 3}));
    EXPECT_EQ(Parse("(#1,#2,\r\n  #3)").ids, (Ids{1, 2, 0}));
    EXPECT_EQ(Parse("(\n#1,#2)").ids, (Ids{0, 2}));
}

TEST(ParseIdList, EndsAtAParenthesisBehindAComma) {
    const List list = Parse("(#1,),#5");
    EXPECT_EQ(list.ids, Ids{1});
    EXPECT_EQ(list.left, "),#5");
}

TEST(ParseIdList, SkipsTheFirstCharacterWhateverItIs) {
    EXPECT_EQ(Parse("(x12,#3)").ids, (Ids{12, 3}));
    EXPECT_EQ(Parse("(12,#3)").ids, (Ids{2, 3}));
    EXPECT_EQ(Parse("($)").ids, Ids{0});
    EXPECT_EQ(Parse("(##7)").ids, Ids{0});
}

TEST(ParseIdList, GoesOnBehindTheTextBetweenACommaAndANumberSign) {
    EXPECT_EQ(Parse("(#1,abc#2)").ids, (Ids{1, 2}));
}

TEST(ParseIdList, ReadsSignsAndNumbersThatExceed32Bits) {
    EXPECT_EQ(Parse("(#-5,# 7,#99999999999,#123456789,#1234567890)").ids,
              (Ids{-5, 7, INT32_MAX, 123456789, 1234567890}));
}

TEST(ParseIdList, KeepsAllOfALongList) {
    std::string text = "(";
    Ids expected;
    for (std::int32_t id = 1; id <= 5000; ++id) {
        text += (id > 1 ? ",#" : "#") + std::to_string(id);
        expected.push_back(id);
    }
    EXPECT_EQ(Parse(text + ")").ids, expected);
}

TEST(ParseIdList, AppendsToWhatIsThere) {
    Ids ids{7};
    const std::string text = "(#8)";
    TextWalk walk{text.data(), text.data() + text.size()};
    ParseIdList(&walk, &ids);
    EXPECT_EQ(ids, (Ids{7, 8}));
}

TEST(ParseIdList, SaysWhenTheTextEndsFirst) {
    for (const std::string text :
         {"", "abc", "(", "(  ", "(#", "(#1", "(#1,", "(#1,#2", "(#1,#2,", "(#1,\n"}) {
        const List list = Parse(text);
        EXPECT_TRUE(list.overrun) << text;
        EXPECT_EQ(list.left, "") << text;
    }
}

// The list by its plain moves; `defined` is false where they lead past the end.
struct PlainList {
    Ids ids;
    std::size_t at = 0;
    bool defined = false;
};

PlainList PlainParse(const std::string& text) {
    PlainList list;
    std::size_t p = text.find('(');
    if (p == std::string::npos) { return list; }
    ++p;
    while (p < text.size() && text[p] == ' ') { ++p; }
    if (p < text.size() && text[p] == ')') {
        list.at = p;
        list.defined = true;
        return list;
    }
    while (p < text.size()) {
        const std::size_t delimiter = text.find_first_of(",)", p + 1);
        if (delimiter == std::string::npos) { return list; }
        const long long value = std::strtoll(text.c_str() + p + 1, nullptr, 10);
        list.ids.push_back(static_cast<std::int32_t>(std::clamp<long long>(value, INT32_MIN, INT32_MAX)));
        list.at = p;
        if (text[delimiter] == ')') {
            list.defined = true;
            return list;
        }
        p = text.find_first_of(std::string_view("#)\n\0", 4), delimiter + 1);
        if (p == std::string::npos) { return list; }
        if (text[p] == ')') {
            list.at = p;
            list.defined = true;
            return list;
        }
    }
    return list;
}

TEST(ParseIdListEqualsItsPlainForm, OnListsOfAllKinds) {
    std::mt19937 random(5);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    constexpr std::string_view kPieces[] = {"#1", "#22", "#333", "#123456789", "#1234567890", "#99999999999",
                                            ",",  ",",   ",",    ")",          "(",           " ",
                                            "\n", "#",   "-",    "x",          "$",           "#0007"};
    int defined = 0;
    for (int i = 0; i < 200000; ++i) {
        std::string text = below(4) == 0 ? "" : "(";
        for (std::size_t pieces = below(14); pieces > 0; --pieces) {
            text += kPieces[below(std::size(kPieces))];
            if (below(2) == 0) { text += ",#"; }
        }
        if (below(4) != 0) { text += ")"; }
        if (below(20) == 0) { text += std::string(1, '\0') + ",#5)"; }
        const PlainList plain = PlainParse(text);
        const std::string padded = text + std::string(64, '\0');
        Ids ids;
        TextWalk walk{padded.data(), padded.data() + text.size()};
        ParseIdList(&walk, &ids);
        ASSERT_EQ(walk.overrun, !plain.defined) << text;
        if (plain.defined) {
            ++defined;
            ASSERT_EQ(ids, plain.ids) << text;
            ASSERT_EQ(walk.at - padded.data(), static_cast<std::ptrdiff_t>(plain.at)) << text;
        }
    }
    EXPECT_GT(defined, 50000);
}

} // namespace
} // namespace tarnwick::test
