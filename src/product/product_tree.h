#pragma once

#include "product/part_queue.h"
#include "product/scene_records.h"
#include "text/look_up.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace tarnwick {

// A growable array of pointers to products. Its owner decides when it grows, and to what capacity.
struct ProductArray {
    std::unique_ptr<ProductNode*[]> items;
    std::int32_t capacity = 0;
    std::int32_t count = 0;

    void Allocate(std::int32_t newCapacity) {
        auto larger = std::make_unique<ProductNode*[]>(static_cast<std::size_t>(newCapacity));
        for (std::int32_t i = 0; i < count; ++i) { larger[static_cast<std::size_t>(i)] = (*this)[i]; }
        items = std::move(larger);
        capacity = newCapacity;
    }
    ProductNode*& operator[](std::int32_t index) const { return items[static_cast<std::size_t>(index)]; }
};

// What the structure of the P21 files of one load adds up to. One structure reader at a time writes to it;
// the queue alone is used by other threads meanwhile.
struct ProductTree {
    static constexpr std::int32_t kFirstCapacity = 1000;

    ProductTree() { products.Allocate(kFirstCapacity); }

    ProductArray products;                              // of all files, in reading order
    ProductNode* root = nullptr;                        // null when none was found
    PartQueue queue;                                    // products whose file is to be read
    LookUp<std::string_view, ProductNode*> queuedNames; // the first queued product of each name
};

} // namespace tarnwick
