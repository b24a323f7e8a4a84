#pragma once

#include "product/load_session.h"
#include "product/scene_records.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tarnwick {

struct StpjFile;

// What the last load left to be shown. The drawing window is built on it; a program without a window uses it
// alone. Only the thread that runs a load command, and between loads the one that draws, touches it.
struct SceneView {
    SceneView() = default;
    SceneView(const SceneView&) = delete;
    SceneView& operator=(const SceneView&) = delete;
    virtual ~SceneView() = default;

    // Draws one frame. Does nothing where there is no window.
    virtual void Redraw() {}
    // Deletes the display list of the graphics library, if there is one.
    virtual void DeleteDisplayList() {}
    // Tells people how far a load of many files has come. Called on the thread of the load, now and then.
    virtual void ShowProgress(std::int32_t /*filesRead*/, std::int32_t /*filesKnown*/) {}

    float centre[3] = {};  // of the box
    float modelSize = 120; // sum of the box's three extents; never 0
    float eye[3] = {};     // start position of the camera
    std::int32_t drawnTriangles = 0;
    double readSeconds = 0;
    double inflateSeconds = 0;
    double partSeconds = 0;
    double loadSeconds = 0;                  // of the whole load command, up to the first frame
    std::int32_t maxDepth = 0;               // deepest level of a summary file, the top of the Depth slider
    DrawList* drawList = nullptr;            // the meshes to draw
    DrawList* boxList = nullptr;             // the boxes of a summary file
    StpjFile* stpjFile = nullptr;            // the summary file behind them
    ProductNode** summaryProducts = nullptr; // its products, in its order
    std::int32_t summaryProductCount = 0;
    std::int32_t boxMode = 0;         // whether STEP XML shows as boxes; no command sets it to more than 0
    ResultMesh* resultMesh = nullptr; // the finite element mesh
    FaceContainer** containers = nullptr; // of a single part
    std::int32_t containerCount = 0;
    float box[6] = {};
    std::int32_t pickMode =
        0; // 0 none, 1 single part (a pick selects faces), 2 assembly (a pick selects products)
    std::int32_t selectedIndex = -1; // picked index, -1 for none
    std::int32_t selectedFaceId = 0; // of the picked face; these four are 0 when nothing is picked
    std::int32_t selectedExactFaceId = 0;
    std::int32_t selectedContainerId = 0;
    std::int32_t selectedExactContainerId = 0;
    std::string rootName; // of the root product, P21 files only
    bool hasRootName = false;
    double framesPerSecond = 0;    // 1 divided by the seconds that the last frame took
    std::uint32_t sceneNumber = 0; // counts the resets: what was found out about a scene holds for one number

    const ProductNode* root = nullptr;   // of the product tree that the load read, drawn or not
    std::vector<UnreadFile> unreadFiles; // what the load wanted and could not read
    std::unique_ptr<SceneMemory> scene;  // owns every record above but the boxes
    std::unique_ptr<Arena> boxMemory;    // owns the boxes of `boxList`, and nothing else
};

} // namespace tarnwick
