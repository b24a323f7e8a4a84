#pragma once

#include "product/product_tree.h"
#include "product/scene_records.h"

#include <string_view>
#include <unordered_map>

namespace tarnwick {

// A growable table of products in the order of their being found. It is doubled as soon as it is full, so
// that there is always a free place behind the last entry.
class ProductTable {
public:
    static constexpr std::int32_t kFirstCapacity = 1000;

    void Allocate() { products_.Allocate(kFirstCapacity); }

    void Append(ProductNode* product) {
        products_[products_.count++] = product;
        if (products_.count == products_.capacity) { products_.Allocate(2 * products_.capacity); }
    }
    // Forgets all products but the first `count`.
    void Shrink(std::int32_t count) { products_.count = count; }

    std::int32_t Count() const { return products_.count; }
    std::int32_t Capacity() const { return products_.capacity; }
    ProductNode* operator[](std::int32_t index) { return products_[index]; }

private:
    ProductArray products_;
};

// The same with a way to find the first product of a name, which would else be a walk over the whole table
// for every product of every further document.
class NamedProductTable {
public:
    void Allocate() { table_.Allocate(); }

    void Append(ProductNode* product) {
        firstByName_.emplace(product->name, table_.Count());
        table_.Append(product);
    }
    void Shrink(std::int32_t count) {
        for (std::int32_t i = count; i < table_.Count(); ++i) {
            const auto found = firstByName_.find(table_[i]->name);
            if (found != firstByName_.end() && found->second >= count) { firstByName_.erase(found); }
        }
        table_.Shrink(count);
    }

    // The first product of this name, or null.
    ProductNode* FindByName(std::string_view name) {
        const auto found = firstByName_.find(name);
        return found != firstByName_.end() ? table_[found->second] : nullptr;
    }

    std::int32_t Count() const { return table_.Count(); }
    std::int32_t Capacity() const { return table_.Capacity(); }
    ProductNode* operator[](std::int32_t index) { return table_[index]; }

private:
    ProductTable table_;
    std::unordered_map<std::string_view, std::int32_t> firstByName_;
};

} // namespace tarnwick
