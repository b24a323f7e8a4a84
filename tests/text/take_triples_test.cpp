// Triples that are taken in one go, beside the same ones number by number.

#include "text/take_triples.h"

#include "text/parse_real.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace tarnwick::test {
namespace {

#ifdef NDEBUG
constexpr int kLists = 200000;
#else
constexpr int kLists = 10000;
#endif

// What is taken of a text, which has its end where no more than 64 bytes after it can be read.
template <class Number>
struct Taken {
    explicit Taken(const std::string& text, std::size_t most = 100) : values(3 * most + 1, kUntouched) {
        std::vector<char> bytes(text.begin(), text.end());
        bytes.resize(text.size() + 64);
        const char* p = bytes.data();
        count = TakeTriples(&p, values.data(), most);
        length = static_cast<std::size_t>(p - bytes.data());
        EXPECT_EQ(values[3 * count], kUntouched) << text;
    }
    static constexpr Number kUntouched = 77;

    std::vector<Number> values;
    std::size_t count;
    std::size_t length; // of the text up to the last ")" that was taken
};
using Reals = Taken<float>;
using Indices = Taken<std::uint32_t>;

class TakeTriplesTest : public testing::Test {
protected:
    void SetUp() override {
        if (Reals("(1.,2.,3.)").count == 0) { GTEST_SKIP() << "this processor has no such instructions"; }
    }
};

std::uint32_t Bits(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

// The numbers of the triple at `p`, which is in its usual form, one by one. 64 bytes after it can be read.
std::vector<float> OneByOne(const char* p, const char** end) {
    std::vector<float> values;
    for (int i = 0; i < 3; ++i) { values.push_back(static_cast<float>(ParseReal(p + 1, &p))); }
    *end = p + 1;
    return values;
}

TEST_F(TakeTriplesTest, RealsInTheFormThatMostHave) {
    const std::string text =
        "(0.,-1.,2.5),(-.5,33.992294,-0.),(123456.78901234,-.12345678901234,9999999999999.99)";
    const Reals taken(text + ")");
    ASSERT_EQ(taken.count, 3u);
    EXPECT_EQ(taken.length, text.size());
    EXPECT_EQ(taken.values[0], 0.0F);
    EXPECT_EQ(taken.values[2], 2.5F);
    EXPECT_EQ(taken.values[3], -0.5F);
    EXPECT_EQ(Bits(taken.values[5]), 0x80000000u) << "a zero with its sign";
    const std::string lastText = text.substr(text.rfind('(')) + std::string(64, '\0');
    const char* p = lastText.data();
    const std::vector<float> last = OneByOne(p, &p);
    for (std::size_t i = 0; i < 3; ++i) { EXPECT_EQ(Bits(taken.values[6 + i]), Bits(last[i])); }
}

TEST_F(TakeTriplesTest, IndicesInTheFormThatMostHave) {
    const std::string text = "(1,22,333),(4444,55555,666666),(7777777,88888888,0),(00000012,1,1)";
    const Indices taken(text);
    ASSERT_EQ(taken.count, 4u);
    EXPECT_EQ(taken.length, text.size());
    const std::vector<std::uint32_t> expected = {0,       21,       332,        4443, 55554, 666665,
                                                 7777776, 88888887, 0xFFFFFFFF, 11,   0,     0};
    EXPECT_EQ(std::vector<std::uint32_t>(taken.values.begin(), taken.values.begin() + 12), expected);
}

TEST_F(TakeTriplesTest, NoRealsInAnotherForm) {
    for (const char* const text : {"",
                                   "(",
                                   "(1.,2.,3.",
                                   "(1.,2.,3",
                                   "(1.,2.)",
                                   "(1.,2.,3.,4.)",
                                   "(1,2.,3.)",
                                   "(1.,2.,3.E0)",
                                   "(+1.,2.,3.)",
                                   "( 1.,2.,3.)",
                                   "(1.,2. ,3.)",
                                   "(1.,2.,3. )",
                                   "(1.,\n2.,3.)",
                                   "(--1.,2.,3.)",
                                   "(1-.,2.,3.)",
                                   "(1.-,2.,3.)",
                                   "(1.,2-.,3.)",
                                   "(1.,2.,3.-)",
                                   "(1..,2.,3.)",
                                   "(1.;2.,3.)",
                                   "1.,2.,3.)",
                                   "-1.,2.,3.)",
                                   "(1.,2.,3.]",
                                   "(,2.,3.)",
                                   "(1234567890123456.,2.,3.)",
                                   "(1.,.1234567890123456,3.)",
                                   "(-12345678901234.5,-12345678901234.5,-12345678901234.5,",
                                   "((1.,2.,3.))"}) {
        const Reals taken(text);
        EXPECT_EQ(taken.count, 0u) << text;
        EXPECT_EQ(taken.length, 0u) << text;
    }
    EXPECT_EQ(Reals("(-12345678901234.,-1234567890123.5,-12345678901.25)").count, 1u);
}

TEST_F(TakeTriplesTest, NoIndicesInAnotherForm) {
    for (const char* const text :
         {"", "(", "(1,2,3", "(1,2)", "(1,2,3,4)", "(-1,2,3)", "(+1,2,3)", "(1 ,2,3)", "(1,,3)", "(,2,3)",
          "(1,2,)", "(123456789,2,3)", "(1,123456789,3)", "(1,2,123456789)", "(1.,2,3)", "1,2,3)", "(1;2,3)",
          "(1,2,3]"}) {
        const Indices taken(text);
        EXPECT_EQ(taken.count, 0u) << text;
        EXPECT_EQ(taken.length, 0u) << text;
    }
}

TEST_F(TakeTriplesTest, StopsAtTheFirstInAnotherForm) {
    for (const char* const rest :
         {",(1.,2.,3.E1)", ", (1.,2.,3.)", "(1.,2.,3.)", ")", ",", "", "\n,(1.,2.,3.)"}) {
        const Reals taken("(1.,2.,3.),(4.,5.,6.)" + std::string(rest));
        EXPECT_EQ(taken.count, 2u) << rest;
        EXPECT_EQ(taken.length, 21u) << rest;
    }
    EXPECT_EQ(Indices("(1,2,3),(4,5,6),(7,8,x)").count, 2u);
}

TEST_F(TakeTriplesTest, NoMoreThanThereIsRoomFor) {
    const Reals reals("(1.,2.,3.),(4.,5.,6.),(7.,8.,9.)", 2);
    EXPECT_EQ(reals.count, 2u);
    EXPECT_EQ(reals.length, 21u);
    EXPECT_EQ(Reals("(1.,2.,3.)", 0).count, 0u);
    const Indices indices("(1,2,3),(4,5,6),(7,8,9)", 2);
    EXPECT_EQ(indices.count, 2u);
    EXPECT_EQ(indices.length, 15u);
}

// Lists of triples, most of them usual, some with a byte changed.
class Lists {
public:
    std::string Reals() {
        return List([this] { return Real(); });
    }
    std::string Indices() {
        return List([this] { return Digits(1 + Below(OneIn(10) ? 10 : 7)); });
    }

private:
    std::uint32_t Below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
    bool OneIn(std::uint32_t n) { return Below(n) == 0; }
    std::string Digits(std::uint32_t count) {
        std::string digits;
        for (; count > 0; --count) { digits += static_cast<char>('0' + Below(10)); }
        return digits;
    }
    std::string Real() {
        const std::uint32_t most = OneIn(20) ? 18 : 9;
        std::string real = OneIn(3) ? "-" : "";
        real += Digits(Below(most / 2)) + "." + Digits(Below(most));
        return real + (OneIn(60) ? "E-05" : "");
    }
    template <class Number>
    std::string List(Number number) {
        std::string list;
        for (std::uint32_t i = 1 + Below(4); i > 0; --i) {
            list += "(" + number() + "," + number() + "," + number() + ")" + (i > 1 ? "," : "");
        }
        if (OneIn(3)) { list[Below(static_cast<std::uint32_t>(list.size()))] = "(),.-+E 0\n;\0"[Below(12)]; }
        return list;
    }

    std::mt19937 random_{6};
};

TEST_F(TakeTriplesTest, RealsHaveTheBitsOfThoseOneByOne) {
    Lists lists;
    std::size_t count = 0;
    for (int i = 0; i < kLists; ++i) {
        const std::string text = lists.Reals() + std::string(64, '\0');
        const Taken<float> taken(text);
        const char* p = text.c_str();
        for (std::size_t k = 0; k < taken.count; ++k) {
            const std::vector<float> values = OneByOne(p, &p);
            ASSERT_EQ(std::memcmp(values.data(), &taken.values[3 * k], 3 * sizeof(float)), 0) << text;
            ASSERT_EQ(p[-1], ')') << text;
            if (k + 1 < taken.count) { ASSERT_EQ(*p++, ',') << text; }
        }
        ASSERT_EQ(static_cast<std::size_t>(p - text.c_str()), taken.length) << text;
        count += taken.count;
    }
    EXPECT_GT(count, static_cast<std::size_t>(kLists));
}

TEST_F(TakeTriplesTest, IndicesAreThoseOneByOne) {
    Lists lists;
    std::size_t count = 0;
    for (int list = 0; list < kLists; ++list) {
        const std::string text = lists.Indices();
        const Taken<std::uint32_t> taken(text);
        const char* p = text.c_str();
        for (std::size_t k = 0; k < taken.count; ++k) {
            for (std::size_t i = 0; i < 3; ++i) {
                char* end = nullptr;
                const auto value = static_cast<std::uint32_t>(std::strtoul(p + 1, &end, 10));
                ASSERT_EQ(taken.values[3 * k + i], value - 1) << text;
                ASSERT_EQ(*end, i < 2 ? ',' : ')') << text;
                p = end;
            }
            ++p;
            if (k + 1 < taken.count) { ASSERT_EQ(*p++, ',') << text; }
        }
        ASSERT_EQ(static_cast<std::size_t>(p - text.c_str()), taken.length) << text;
        count += taken.count;
    }
    EXPECT_GT(count, static_cast<std::size_t>(kLists));
}

} // namespace
} // namespace tarnwick::test
