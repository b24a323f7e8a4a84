#include "text/parse_real.h"

#include "text/plain_parse_real.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace tarnwick::test {
namespace {

// The value of a text with 16 readable characters after it, none of which belongs to the number.
double Real(std::string_view text) {
    const std::string padded = std::string(text) + std::string(64, '\0');
    return ParseReal(padded.c_str());
}

// How many characters of the text ParseReal takes.
std::ptrdiff_t Taken(std::string_view text) {
    const std::string padded = std::string(text) + std::string(64, '\0');
    const char* end;
    ParseReal(padded.c_str(), &end);
    return end - padded.c_str();
}

bool IsMinusZero(double value) {
    return value == 0 && std::signbit(value);
}
bool IsPlusZero(double value) {
    return value == 0 && !std::signbit(value);
}

TEST(ParseReal, ReadsTheUsualForms) {
    EXPECT_EQ(Real("0."), 0.0);
    EXPECT_EQ(Real("1."), 1.0);
    EXPECT_EQ(Real("1"), 1.0);
    EXPECT_EQ(Real("-25.5"), -25.5);
    EXPECT_EQ(Real(".5"), 0.5);
    EXPECT_EQ(Real("1.5E3"), 1500.0);
    EXPECT_EQ(Real("1.5e3"), 1500.0);
    EXPECT_EQ(Real("1.5E+3"), 1500.0);
    EXPECT_EQ(Real("1E2"), 100.0);
    EXPECT_EQ(Real(".5E1"), 5.0);
    EXPECT_EQ(Real("1.5E"), 1.5);
    EXPECT_EQ(Real("1.5E+"), 1.5);
    EXPECT_EQ(Real("1.5E-"), 1.5);
}

TEST(ParseReal, SkipsBlanksAndTabsAheadOnly) {
    EXPECT_EQ(Real(" +7"), 7.0);
    EXPECT_EQ(Real(" \t \t-7"), -7.0);
    EXPECT_TRUE(IsMinusZero(Real("- 7")));
    EXPECT_EQ(Real("+ 7"), 0.0);
    EXPECT_EQ(Real("\n7"), 0.0);
    EXPECT_EQ(Real("\r7"), 0.0);
    EXPECT_EQ(Real("\v7"), 0.0);
    EXPECT_EQ(Real("1 2"), 1.0);
    EXPECT_EQ(Real("1. 2"), 1.0);
    EXPECT_EQ(Real("1.E 2"), 1.0);
}

TEST(ParseReal, TakesOneSign) {
    EXPECT_TRUE(IsPlusZero(Real("+-7")));
    EXPECT_TRUE(IsMinusZero(Real("-+7")));
    EXPECT_TRUE(IsMinusZero(Real("--7")));
}

TEST(ParseReal, GivesZeroOrItsNegativeWithoutDigits) {
    EXPECT_TRUE(IsPlusZero(Real("")));
    EXPECT_TRUE(IsPlusZero(Real("$")));
    EXPECT_TRUE(IsPlusZero(Real(".")));
    EXPECT_TRUE(IsPlusZero(Real("E5")));
    EXPECT_TRUE(IsMinusZero(Real("-")));
    EXPECT_TRUE(IsMinusZero(Real("-.")));
    EXPECT_TRUE(IsMinusZero(Real("-0.")));
    EXPECT_TRUE(IsMinusZero(Real("-E5")));
    EXPECT_TRUE(IsMinusZero(Real("-0.E-8")));
}

TEST(ParseReal, DropsAllBelowAnExponentOfMinusEight) {
    EXPECT_EQ(Real("1.E-8"), 1.0 / 1e8);
    EXPECT_TRUE(IsPlusZero(Real("1.E-9")));
    EXPECT_TRUE(IsPlusZero(Real("-1.E-9"))) << "without the sign";
    EXPECT_TRUE(IsPlusZero(Real("-123456789.E-308")));
    EXPECT_EQ(Real("1.E-08"), 1.0 / 1e8);
    EXPECT_TRUE(IsPlusZero(Real("1.E-0009")));
}

TEST(ParseReal, StopsGrowingAtAnExponentOf308) {
    const double largest = Real("1.E308");
    EXPECT_TRUE(std::isfinite(largest));
    EXPECT_EQ(Real("1.E309"), largest);
    EXPECT_EQ(Real("1.E400"), largest);
    EXPECT_EQ(Real("2.E400"), std::numeric_limits<double>::infinity());
    EXPECT_EQ(Real("-2.E400"), -std::numeric_limits<double>::infinity());
}

TEST(ParseReal, CountsTheExponentIn32Bits) {
    EXPECT_EQ(Real("1.E4294967296"), 1.0);
    EXPECT_EQ(Real("1.E4294967298"), 100.0);
    EXPECT_EQ(Real("1.E-4294967297"), 1.0 / 10.0);
}

TEST(ParseReal, MultipliesTenthsAndDoesNotDivide) {
    double scale = 1.0;
    for (int i = 0; i < 5; ++i) { scale = scale * 0.1; }
    EXPECT_EQ(Real("3.14159"), 314159.0 * scale);
    EXPECT_EQ(Real("0.3"), 3.0 * 0.1);
    EXPECT_NE(Real("0.3"), 0.3);
}

TEST(ParseReal, EndsAtEveryByteThatIsNoDigit) {
    for (int c = 0; c < 256; ++c) {
        if (c >= '0' && c <= '9') { continue; }
        const std::string tail = std::string(1, static_cast<char>(c)) + "5";
        if (c != '.' && c != 'E' && c != 'e') {
            EXPECT_EQ(Real("12" + tail), 12.0) << c;
            EXPECT_EQ(Taken("12" + tail), 2) << c;
        }
        if (c != 'E' && c != 'e') {
            EXPECT_EQ(Real("1.25" + tail), Real("1.25")) << c;
            EXPECT_EQ(Taken("1.25" + tail), 4) << c;
            EXPECT_EQ(Real("1.2345678" + tail), Real("1.2345678")) << c;
            EXPECT_EQ(Taken("1.2345678" + tail), 9) << c;
        }
        EXPECT_EQ(Real("1.E2" + tail), 100.0) << c;
        EXPECT_EQ(Taken("1.E2" + tail), 4) << c;
    }
}

TEST(ParseReal, TellsWhereItStopped) {
    EXPECT_EQ(Taken("1.5,2."), 3);
    EXPECT_EQ(Taken("  -1.5E3)"), 8);
    EXPECT_EQ(Taken("1.5E-12,"), 7);
    EXPECT_EQ(Taken("1.5E"), 4);
    EXPECT_EQ(Taken("x"), 0);
    EXPECT_EQ(Taken(" -x"), 2);
}

TEST(ParseReal, DoesNotSayThatInfinityTimesZeroIsANumber) {
    // 400 digits overflow, and 400 tenths underflow.
    EXPECT_TRUE(std::isnan(Real(std::string(400, '9') + "." + std::string(400, '0'))));
}

TEST(ParseReal, ReadsNoFurtherThanSixteenCharactersBehindTheNumber) {
    for (const std::string_view number : {"1", "1.", "1.25", "-12345678.12345678", "1.E5", "0.123456789"}) {
        const std::size_t size = number.size() + 16;
        const std::unique_ptr<char[]> exact(new char[size]);
        std::memset(exact.get(), 0, size);
        std::memcpy(exact.get(), number.data(), number.size());
        const char* end;
        const double value = ParseReal(exact.get(), &end);
        EXPECT_EQ(value, PlainParseReal(exact.get(), &end)) << number;
    }
}

// The comparison with the plain arithmetic.

class Generator {
public:
    explicit Generator(std::uint64_t seed) : state_(seed) {}
    std::uint32_t Next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<std::uint32_t>(state_ >> 16);
    }
    std::uint32_t Below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(std::uint64_t{Next()} * limit >> 32);
    }

private:
    std::uint64_t state_;
};

// A text that is put together piece by piece, with zeros after it.
class Text {
public:
    void Clear() { size_ = 0; }
    void Put(char c) { bytes_[size_++] = c; }
    void PutDigits(Generator& random, std::size_t count) {
        for (std::size_t left = count; left > 0;) {
            std::uint32_t value = random.Next();
            for (int i = 0; i < 9 && left > 0; ++i, --left) {
                Put(static_cast<char>('0' + value % 10));
                value /= 10;
            }
        }
    }
    void PutSame(char c, std::size_t count) {
        std::memset(bytes_ + size_, c, count);
        size_ += count;
    }
    const char* Close() {
        std::memset(bytes_ + size_, 0, 64);
        return bytes_;
    }
    std::string Copy() const { return {bytes_, size_}; }

private:
    char bytes_[4096];
    std::size_t size_ = 0;
};

// Counts the texts on which the two disagree, and shows the first.
class Comparison {
public:
    void Compare(Text& text) {
        const char* const p = text.Close();
        const char* fastEnd;
        const char* plainEnd;
        const double fast = ParseReal(p, &fastEnd);
        const double plain = PlainParseReal(p, &plainEnd);
        ++texts_;
        if (std::bit_cast<std::uint64_t>(fast) != std::bit_cast<std::uint64_t>(plain) ||
            fastEnd != plainEnd) {
            if (different_++ == 0) { first_ = text.Copy(); }
        }
    }
    void Expect(std::uint64_t atLeast) const {
        EXPECT_EQ(different_, 0u) << "first: " << first_;
        EXPECT_GE(texts_, atLeast);
    }

private:
    std::uint64_t texts_ = 0;
    std::uint64_t different_ = 0;
    std::string first_;
};

void PutTail(Text& text, Generator& random) {
    switch (random.Below(8)) {
    case 0:
        text.Put(',');
        text.PutDigits(random, 3);
        break;
    case 1:
        text.Put(')');
        break;
    case 2: // anything at all
        for (std::uint32_t i = random.Below(12); i > 0; --i) {
            text.Put(static_cast<char>(random.Below(256)));
        }
        break;
    case 3: // bytes next to the digits in the code table, and their likes with the top bit
        text.Put("/:./\xAF\xB0\xB9\xBA\xFF\x80"[random.Below(10)]);
        text.PutDigits(random, random.Below(9));
        break;
    default:
        break;
    }
}

#ifdef NDEBUG
constexpr std::uint64_t kTexts = 10'000'000;
#else
constexpr std::uint64_t kTexts = 1'000'000; // unoptimised and sanitized builds are slow
#endif

TEST(ParseRealEqualsItsPlainForm, OnTenMillionTextsAsFilesHaveThem) {
    Generator random(88172645463325252u);
    Comparison comparison;
    Text text;
    for (std::uint64_t i = 0; i < kTexts; ++i) {
        text.Clear();
        for (std::uint32_t blanks = random.Below(16); blanks > 12; --blanks) {
            text.Put(random.Below(2) == 0 ? ' ' : '\t');
        }
        const std::uint32_t sign = random.Below(8);
        if (sign < 4) { text.Put(sign < 3 ? '-' : '+'); }
        text.PutDigits(random, random.Below(16) == 0 ? random.Below(25) : random.Below(5));
        if (random.Below(8) != 0) {
            text.Put('.');
            text.PutDigits(random, random.Below(20));
        }
        if (random.Below(4) == 0) {
            text.Put(random.Below(4) == 0 ? 'e' : 'E');
            const std::uint32_t exponentSign = random.Below(4);
            if (exponentSign < 3) { text.Put(exponentSign < 2 ? '-' : '+'); }
            text.PutDigits(random, random.Below(4));
        }
        PutTail(text, random);
        comparison.Compare(text);
    }
    comparison.Expect(kTexts);
}

TEST(ParseRealEqualsItsPlainForm, AtEveryLengthOfIntegerAndFractionUpTo400) {
    Generator random(2463534242u);
    Comparison comparison;
    Text text;
#ifdef NDEBUG
    constexpr std::size_t kStep = 1;
#else
    constexpr std::size_t kStep = 7;
#endif
    for (std::size_t integer = 0; integer <= 400; integer += integer < 40 ? 1 : kStep) {
        for (std::size_t fraction = 0; fraction <= 400; fraction += fraction < 40 ? 1 : kStep) {
            text.Clear();
            if (random.Below(2) == 0) { text.Put('-'); }
            // Leading zeros don't count as digits that f64 must hold.
            const std::size_t zeros =
                random.Below(4) == 0 ? random.Below(static_cast<std::uint32_t>(integer) + 1) : 0;
            text.PutSame('0', zeros);
            text.PutDigits(random, integer - zeros);
            text.Put('.');
            const std::size_t more =
                random.Below(4) == 0 ? random.Below(static_cast<std::uint32_t>(fraction) + 1) : 0;
            text.PutSame('0', more);
            text.PutDigits(random, fraction - more);
            if (random.Below(4) == 0) {
                text.Put('E');
                text.Put(random.Below(2) == 0 ? '-' : '+');
                text.PutDigits(random, 1 + random.Below(3));
            }
            PutTail(text, random);
            comparison.Compare(text);
        }
    }
    comparison.Expect(1000);
}

TEST(ParseRealEqualsItsPlainForm, AtEveryLengthOfExponentUpTo400) {
    Generator random(521288629u);
    Comparison comparison;
    Text text;
    for (std::size_t digits = 0; digits <= 400; ++digits) {
        for (const std::string_view sign : {"", "+", "-"}) {
            for (int i = 0; i < 20; ++i) {
                text.Clear();
                text.PutDigits(random, random.Below(4));
                text.Put('.');
                text.PutDigits(random, random.Below(4));
                text.Put(i % 2 == 0 ? 'E' : 'e');
                for (const char c : sign) { text.Put(c); }
                const std::size_t zeros = i % 4 == 0 && digits > 2 ? digits - 2 : 0;
                text.PutSame('0', zeros);
                text.PutDigits(random, digits - zeros);
                PutTail(text, random);
                comparison.Compare(text);
            }
        }
    }
    comparison.Expect(20000);
}

TEST(ParseRealEqualsItsPlainForm, AtEveryExponent) {
    Generator random(362436069u);
    Comparison comparison;
    Text text;
    for (std::uint32_t exponent = 0; exponent <= 320; ++exponent) {
        for (const char sign : {'-', '+'}) {
            for (int i = 0; i < 200; ++i) {
                text.Clear();
                text.PutDigits(random, random.Below(20));
                text.Put('.');
                text.PutDigits(random, random.Below(20));
                text.Put('E');
                text.Put(sign);
                for (const char c : std::to_string(exponent)) { text.Put(c); }
                comparison.Compare(text);
            }
        }
    }
    comparison.Expect(100000);
}

TEST(ParseRealEqualsItsPlainForm, AroundWhatF64HoldsExactly) {
    Generator random(123456789u);
    Comparison comparison;
    Text text;
    constexpr std::uint64_t kEdges[] = {std::uint64_t{1} << 53, ((std::uint64_t{1} << 53) - 9) / 10,
                                        ((std::uint64_t{1} << 53) - 99999999) / 100000000,
                                        std::uint64_t{1} << 63, 999999999999999999u};
    for (const std::uint64_t edge : kEdges) {
        for (std::uint64_t near = edge > 500 ? edge - 500 : 0; near < edge + 500; ++near) {
            const std::string digits = std::to_string(near);
            for (std::size_t point = 0; point <= digits.size(); ++point) {
                for (std::size_t more = 0; more < 3; ++more) {
                    text.Clear();
                    for (std::size_t i = 0; i < digits.size(); ++i) {
                        if (i == point) { text.Put('.'); }
                        text.Put(digits[i]);
                    }
                    text.PutDigits(random, more * 5);
                    comparison.Compare(text);
                }
            }
        }
    }
    comparison.Expect(50000);
}

TEST(ParseRealEqualsItsPlainForm, OnTextsOfItsOwnCharactersInAnyOrder) {
    Generator random(987654321u);
    Comparison comparison;
    Text text;
    constexpr std::string_view kCharacters = "0123456789..EEee+- \t,)/:";
    for (std::uint64_t i = 0; i < kTexts / 10; ++i) {
        text.Clear();
        for (std::uint32_t left = random.Below(40); left > 0; --left) {
            text.Put(kCharacters[random.Below(static_cast<std::uint32_t>(kCharacters.size()))]);
        }
        comparison.Compare(text);
    }
    comparison.Expect(kTexts / 10);
}

} // namespace
} // namespace tarnwick::test
