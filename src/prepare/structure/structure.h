#pragma once

#include "prepare/placement/transform.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// What one file says of products: which there are, what shape they have and which they use. Shapes stay in
// the text; here is only where.
namespace tarnwick::prepare {

enum class ShapeKind : std::uint8_t {
    kTessellated, // an item of ISO 10303-42 that has triangles, or holds such items
    kExact,       // a body for the kernel
    kElements     // all finite elements of the file; no item
};

struct ShapeItem {
    ShapeKind kind = ShapeKind::kTessellated;
    bool isSurface = false;           // an exact one that encloses nothing
    std::uint64_t item = 0;           // its number in the file
    std::uint64_t representation = 0; // the one that lists it, 0 if none
    std::uint64_t context = 0;        // of that representation, whose units count
    double unit = 1;                  // millimetres of one of its length units
    Transform at; // of the item in the product, in millimetres, where the item is first scaled by `unit`
    std::size_t path = 0; // in the file's paths
};

struct FileUse {
    std::size_t child = 0; // in the file's products
    Transform at;          // of the child in the parent, in millimetres
    // The mapped item whose style its shape has where that has none of its own; 0 for none.
    std::uint64_t style = 0;
    // The CONTEXT_DEPENDENT_SHAPE_REPRESENTATION in which items of its shape have other styles; 0 for none.
    std::uint64_t context = 0;
};

struct FileProduct {
    std::string id;   // as the file has it, UTF-8, may be empty
    std::string name; // likewise
    // Names of another file that describes it, as they stand there, the likeliest first; often none.
    std::vector<std::string> files;
    std::uint64_t entity = 0; // its definition's number, 0 where there is none
    std::vector<ShapeItem> shape;
    std::vector<FileUse> uses;
};

// What couldn't be taken over, for the user.
struct Loss {
    std::string product;      // may be empty
    std::uint64_t entity = 0; // in the file; 0 for none
    std::string why;          // a sentence's end: "its placement can't be read"
    bool isShape = true;      // false for what costs no shape: curves, a colour
};

inline bool HasShapeLoss(const std::vector<Loss>& losses) {
    return std::any_of(losses.begin(), losses.end(), [](const Loss& loss) { return loss.isShape; });
}

struct FileStructure {
    std::vector<FileProduct> products;
    // Ways to items: the mapped items and representations that lead to one, the outermost first. An item
    // without a style has that of the innermost with one. The first path is empty.
    std::vector<std::vector<std::uint64_t>> paths{{}};
    // Products that no product of this file uses, in the order of the file; then one of each circle that
    // these don't lead to.
    std::vector<std::size_t> roots;
    double unit = 1; // millimetres of a length unit of its first root
    std::vector<Loss> losses;
};

} // namespace tarnwick::prepare
