#include "text/char_bits.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tarnwick::test {
namespace {

template <char... c>
std::uint64_t BitsOneByOne(const char* p) {
    std::uint64_t bits = 0;
    for (int i = 0; i < kCharBlock; ++i) {
        if (((p[i] == c) || ...)) { bits |= std::uint64_t{1} << i; }
    }
    return bits;
}

TEST(CharBits, MarkTheFirstAndTheLastCharacter) {
    std::string block(kCharBlock, 'x');
    EXPECT_EQ(CharBits<'\n'>(block.data()), 0u);
    block.front() = '\n';
    block.back() = '\n';
    EXPECT_EQ(CharBits<'\n'>(block.data()), 0x8000000000000001u);
    EXPECT_EQ(PlainCharBits<'\n'>(block.data()), 0x8000000000000001u);
}

TEST(CharBits, EqualTheSearchOneByOneOnAnyBytes) {
    std::mt19937 random(7);
    std::string text(200, '\0');
    for (int round = 0; round < 20000; ++round) {
        // Few different bytes, close to those that are looked for, or any.
        const unsigned range = round % 2 == 0 ? 256 : 16;
        for (char& c : text) { c = static_cast<char>(random() % range); }
        const char* const p = text.data() + random() % 100;
        ASSERT_EQ((CharBits<'\n', '\0'>(p)), (BitsOneByOne<'\n', '\0'>(p)));
        ASSERT_EQ((PlainCharBits<'\n', '\0'>(p)), (BitsOneByOne<'\n', '\0'>(p)));
        ASSERT_EQ(CharBits<'\x80'>(p), BitsOneByOne<'\x80'>(p));
        ASSERT_EQ(PlainCharBits<'\x80'>(p), BitsOneByOne<'\x80'>(p));
        ASSERT_EQ((PlainCharBits<'<', '>', '"'>(p)), (BitsOneByOne<'<', '>', '"'>(p)));
    }
}

TEST(AnyUpTo, IsWhatALookAtEachCharacterSays) {
    std::mt19937 random(8);
    std::string text(200, '\0');
    int some = 0;
    constexpr int kRounds = 20000;
    for (int round = 0; round < kRounds; ++round) {
        for (char& c : text) { c = static_cast<char>('\n' + 1 + random() % (256 - '\n' - 1)); }
        const std::size_t start = random() % 100;
        if (round % 2 == 0) { text[random() % 200] = static_cast<char>(random() % ('\n' + 2)); }
        bool any = false;
        for (int i = 0; i < kCharBlock; ++i) {
            any = any || static_cast<unsigned char>(text[start + static_cast<std::size_t>(i)]) <= '\n';
        }
        ASSERT_EQ(AnyUpTo<'\n'>(text.data() + start), any);
        some += any ? 1 : 0;
    }
    EXPECT_GT(some, kRounds / 10);
    EXPECT_LT(some, kRounds / 2);
}

} // namespace
} // namespace tarnwick::test
