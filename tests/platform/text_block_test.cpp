#include "platform/pages.h"
#include "platform/sanitizers.h"
#include "platform/text_block.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace tarnwick::test {
namespace {

TEST(TextBlock, HasItsPaddingBehindTheSizeAsked) {
    TextBlock block;
    for (const std::size_t bytes :
         {std::size_t{0}, std::size_t{1}, std::size_t{4096}, std::size_t{5} << 20}) {
        char* const text = block.Get(bytes);
        ASSERT_NE(text, nullptr);
        std::memset(text, 1, bytes + TextBlock::kPadding);
    }
}

#ifdef TARNWICK_ADDRESS_SANITIZER
TEST(TextBlockDeathTest, ShowsAReadBehindThePadding) {
    TextBlock block;
    const volatile char* const text = block.Get(100);
    EXPECT_DEATH(static_cast<void>(text[100 + TextBlock::kPadding]), "AddressSanitizer");
}
#else
TEST(TextBlock, IsReusedForASmallerText) {
    TextBlock block;
    const char* const text = block.Get(100000);
    EXPECT_EQ(block.Get(10), text);
    EXPECT_EQ(block.Get(100000), text);
}
#endif

TEST(TextBlock, CanBeUsedAfterRelease) {
    TextBlock block;
    block.Get(100);
    block.Release();
    block.Release();
    char* const text = block.Get(100);
    ASSERT_NE(text, nullptr);
    text[99] = 1;
}

TEST(Pages, AreZeroFilledAtAnySize) {
    constexpr std::size_t kMegabyte = std::size_t{1} << 20;
    for (const std::size_t bytes : {std::size_t{1}, std::size_t{4097}, 4 * kMegabyte - 1, 4 * kMegabyte,
                                    4 * kMegabyte + 1, 5 * kMegabyte + 4097}) {
        auto* const pages = static_cast<unsigned char*>(AllocatePages(bytes));
        ASSERT_NE(pages, nullptr);
        for (std::size_t i = 0; i < bytes; i += 4096) { EXPECT_EQ(pages[i], 0); }
        EXPECT_EQ(pages[bytes - 1], 0);
        pages[bytes - 1] = 1;
        FreePages(pages, bytes);
    }
    FreePages(nullptr, 10);
}

TEST(Pages, AreRefusedWhenThereIsNoMemory) {
    EXPECT_EQ(AllocatePages(SIZE_MAX), nullptr);
    EXPECT_EQ(AllocatePages(SIZE_MAX / 2), nullptr);
}

} // namespace
} // namespace tarnwick::test
