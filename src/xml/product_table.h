#pragma once

#include "product/product_tree.h"
#include "product/scene_records.h"
#include "text/look_up.h"

#include <string_view>

namespace tarnwick {

// A growable table of products in the order in which they were found. It is doubled as soon as it is full, so
// that there is always a free place after the last entry.
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

// The same with a look-up of the first product of a name, since a search through the table for every product
// of every further document would take too long.
class NamedProductTable {
public:
    void Allocate() { table_.Allocate(); }

    void Append(ProductNode* product) {
        std::int32_t& first = firstByName_.At(product->name);
        if (!IsFirst(first, product->name)) { first = table_.Count() + 1; }
        table_.Append(product);
    }
    void Shrink(std::int32_t count) { table_.Shrink(count); }

    // The first product of this name, or null.
    ProductNode* FindByName(std::string_view name) {
        const std::int32_t* const first = firstByName_.Find(name);
        return first != nullptr && IsFirst(*first, name) ? table_[*first - 1] : nullptr;
    }

    std::int32_t Count() const { return table_.Count(); }
    std::int32_t Capacity() const { return table_.Capacity(); }
    ProductNode* operator[](std::int32_t index) { return table_[index]; }

private:
    // Whether a place, from 1, still has the name: after Shrink it may be free or have another product.
    bool IsFirst(std::int32_t place, std::string_view name) {
        return place > 0 && place <= table_.Count() && table_[place - 1]->name == name;
    }

    ProductTable table_;
    LookUp<std::string_view, std::int32_t> firstByName_; // places, from 1
};

} // namespace tarnwick
