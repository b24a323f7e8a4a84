#pragma once

#include "product/draw_list.h"

#include <array>
#include <string>
#include <vector>

namespace tarnwick::test {

// Nine and three numbers of an occurrence.
using Rotation = std::array<double, 9>;
using Translation = std::array<double, 3>;

inline constexpr Rotation kNoRotation{1, 0, 0, 0, 1, 0, 0, 0, 1};

// A product tree that no file stands after.
class SceneTree {
public:
    ProductNode* Product(const std::string& name);
    // A product with a list of its own, as a part's reader leaves it.
    ProductNode* Part(const std::string& name, int triangles,
                      const std::array<float, 6>& box = {0, 1, 0, 1, 0, 1});
    Occurrence* Use(ProductNode* parent, ProductNode* child, const Translation& translation = {},
                    const Rotation& rotation = kNoRotation);
    // A list with room for `capacity` and `count` unplaced items of a part.
    DrawList* List(std::int32_t capacity, std::int32_t count);

    Arena arena;

private:
    ProductNode* listPart_ = nullptr;
};

struct PlainItem {
    const ProductNode* product;
    StepFaceB** meshes;
    std::vector<float> matrix; // empty for the identity
};

// What a product without a list of its own comes to, worked out the long way: by recursion, each sub-tree
// anew for each of its uses. For trees in which no product has both a list and occurrences.
std::vector<PlainItem> PlainItems(const ProductNode& product);

// out = a times b in f32, each sum from its first product to its last.
std::vector<float> PlainProduct(const std::vector<float>& a, const std::vector<float>& b);

// The matrix of an occurrence by itself.
std::vector<float> PlainPlacement(const Occurrence& occurrence);

// The box of a product from those of its children; false when none of them has one.
bool PlainBox(const ProductNode& product, std::array<float, 6>* box);

std::vector<float> MatrixOf(const DrawItem& item);

} // namespace tarnwick::test
