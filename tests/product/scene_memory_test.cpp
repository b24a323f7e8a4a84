#include "product/product_tree.h"
#include "product/scene_memory.h"

#include <gtest/gtest.h>

#include <string_view>
#include <thread>
#include <vector>

namespace tarnwick::test {
namespace {

TEST(SceneMemory, KeepsWhatThreadsHandOver) {
    SceneMemory memory;
    std::vector<const char*> names(5);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < names.size(); ++i) {
        threads.emplace_back([&memory, &names, i] {
            Arena arena;
            names[i] = arena.Copy("thread", 6);
            for (int n = 0; n < 1000; ++n) { arena.New<ProductNode>(); }
            memory.HandOver(std::move(arena));
        });
    }
    for (std::thread& thread : threads) { thread.join(); }
    for (const char* const name : names) { EXPECT_EQ(std::string_view(name), "thread"); }
}

TEST(ProductArray, KeepsItsEntriesWhenItGrows) {
    ProductArray array;
    array.Allocate(2);
    ProductNode nodes[2] = {};
    array[0] = &nodes[0];
    array[1] = &nodes[1];
    array.count = 2;
    array.Allocate(4);
    EXPECT_EQ(array.capacity, 4);
    EXPECT_EQ(array[0], &nodes[0]);
    EXPECT_EQ(array[1], &nodes[1]);
    EXPECT_EQ(array[3], nullptr);
}

} // namespace
} // namespace tarnwick::test
