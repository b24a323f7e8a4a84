#include "text/one_line.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwick::test {
namespace {

TEST(OneLineTest, HasAQuestionMarkForEachControlCharacter) {
    EXPECT_STREQ(OneLine("a\nb\tc\x1F d\xE9").Text(), "a?b?c? d\xE9");
    EXPECT_STREQ(OneLine("").Text(), "");
    EXPECT_STREQ(OneLine(std::string("a\0b", 3)).Text(), "a?b");
}

TEST(OneLineTest, KeepsANameOfAnyLengthWhileThereIsMemory) {
    for (const std::size_t length : {510u, 511u, 512u, 513u, 5000u}) {
        const std::string name = std::string(length - 1, 'x') + "\n";
        EXPECT_EQ(OneLine(name).Text(), std::string(length - 1, 'x') + "?") << length;
    }
}

} // namespace
} // namespace tarnwick::test
