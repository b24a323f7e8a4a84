#include "render/index_pieces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::Pair;

using Pieces = std::vector<std::pair<std::size_t, std::size_t>>;

Pieces PiecesOf(std::size_t count) {
    Pieces pieces;
    ForIndexPieces(count, [&](std::size_t first, std::size_t here) { pieces.emplace_back(first, here); });
    return pieces;
}

TEST(IndexPieces, AreOneForEveryMeshOfTheUsualSize) {
    for (const std::size_t count : {std::size_t{0}, std::size_t{3}, kMostIndicesAtOnce}) {
        EXPECT_THAT(PiecesOf(count), ElementsAre(Pair(0u, count)));
    }
}

TEST(IndexPieces, FitTheLibrarysCountAndSplitNoTriangleOrQuad) {
    EXPECT_LE(kMostIndicesAtOnce, std::size_t{INT32_MAX});
    EXPECT_EQ(kMostIndicesAtOnce % 12, 0u);
    const std::size_t count = 3 * std::size_t{INT32_MAX};
    std::size_t next = 0;
    for (const auto& [first, here] : PiecesOf(count)) {
        EXPECT_EQ(first, next);
        EXPECT_GT(here, 0u);
        EXPECT_LE(here, kMostIndicesAtOnce);
        next += here;
    }
    EXPECT_EQ(next, count);
}

} // namespace
} // namespace tarnwick::test
