#pragma once

#include "load/loaded_scene.h"
#include "platform/arena.h"
#include "product/scene_records.h"

#include <cstddef>
#include <cstdint>

namespace tarnwick {

// One use of a product in a summary file, placed in the world.
struct StpjOccurrence {
    std::int32_t depth;        // level in the tree; the top occurrence has the smallest, normally 0
    std::int32_t productIndex; // place of its product in the file's table, counted from 1
    const double* box;         // the product's, widened; all 0 where there is no such product
    std::int32_t hasBox;       // the product's; 0 where the occurrence can't be placed
    const float* matrix;       // world matrix
};

// A summary of an assembly: products with their boxes, and a flat table of their uses in depth-first order.
// It has no geometry. The records are in the arena of the load that read them.
struct StpjFile {
    const char* path;
    ProductNode** products; // in the file's order; `definitionId` is the file's number for the product
    std::int32_t productCount;
    StpjOccurrence** occurrences; // in the file's order, at least one
    std::int32_t occurrenceCount;
    std::int32_t maxDepth;
};

// Reads the summary file `path` and makes the boxes of its greatest depth. To the reader the text isn't JSON
// but a sequence of characters to search for; what is missing in it is left out, with a line on the console.
// The record has no `stpjFile` when the file was given up. Returns 0 in any case.
int TraiteSTPJFile(LoadedScene& loaded, const char* path);

// Fills the tables of `file`, which has only its path, from `size` characters at `text`; the reader writes
// into the TextBlock::kPadding bytes after them. What it makes is in `arena`; nothing points into the text
// afterwards. The first problem is told on the console. Returns null, or the reason (a phrase in static
// memory) for which the file is given up.
const char* ReadStpjText(StpjFile& file, char* text, std::size_t size, Arena& arena);

// The product of an occurrence, or null.
ProductNode* ProductOf(const StpjFile& file, const StpjOccurrence& occurrence);

} // namespace tarnwick
