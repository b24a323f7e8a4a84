#pragma once

#include "load/unread_files.h"
#include "product/merge_box.h"
#include "product/scene_memory.h"
#include "product/scene_records.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tarnwick {

struct StpjFile;

// What a click selects.
inline constexpr std::int32_t kPickNothing = 0;
inline constexpr std::int32_t kPickFaces = 1;    // of a single part
inline constexpr std::int32_t kPickProducts = 2; // placed in an assembly

// What one load leaves: everything that is shown, picked or reported, and the memory that owns it. The driver
// of a format fills it in place, and the view holds one; a new scene replaces the old one by a move.
struct LoadedScene {
    double readSeconds = 0; // these three are sums over the files of an assembly
    double inflateSeconds = 0;
    double partSeconds = 0;
    std::int32_t drawnTriangles = 0;
    float box[6] = {};
    bool hasBox = false; // `box` holds a value
    std::int32_t pickMode = kPickNothing;
    std::int32_t maxDepth = 0; // deepest level of a summary file, the top of the Depth slider

    DrawList* drawList = nullptr;            // the meshes to draw
    ResultMesh* resultMesh = nullptr;        // the finite element mesh
    DrawList* boxList = nullptr;             // the boxes of a summary file
    StpjFile* stpjFile = nullptr;            // the summary file that they come from
    ProductNode** summaryProducts = nullptr; // its products, in its order
    std::int32_t summaryProductCount = 0;

    ProductNode* root = nullptr; // of the product tree, drawn or not
    std::string rootName;        // P21 files only
    bool hasRootName = false;
    FaceContainer** containers = nullptr; // of a single part
    std::int32_t containerCount = 0;

    UnreadFiles unreadFiles;               // what the load wanted and could not read
    std::unique_ptr<SceneMemory> scene;    // owns every record above but those of the next two
    std::unique_ptr<Arena> keptContainers; // owns `containers` when the scene that they came with is gone
    std::unique_ptr<Arena> boxMemory;      // owns the boxes of `boxList`, and nothing else

    // Sets counts, times and box to 0, for a driver to begin.
    void Clear() {
        readSeconds = inflateSeconds = partSeconds = 0;
        drawnTriangles = 0;
        hasBox = false;
        std::fill(std::begin(box), std::end(box), 0.0f);
    }

    // Widens the box by that of a part or of the root.
    void WidenBox(const float other[6]) {
        MergeBox(!hasBox, other, box);
        hasBox = true;
    }
};

} // namespace tarnwick
