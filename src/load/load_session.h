#pragma once

#include "load/loaded_scene.h"
#include "load/read_parts.h"
#include "product/product_tree.h"

#include <cstdint>
#include <mutex>
#include <string>

namespace tarnwick {

// What the driver of a P21 load, its load command and the reading threads share. It lives for one load, and
// refers to the record of what that load leaves.
struct LoadSession {
    explicit LoadSession(LoadedScene& scene) : loaded(scene) {}

    LoadedScene& loaded;
    LoadProgress progress; // may be empty

    std::string folder;           // the top file's path up to and including its last separator; assembly only
    std::int32_t compression = 0; // of the top file; assembly only
    std::int32_t isAssembly = -1; // -1 before the top file is read, 0 one file, 1 assembly
    std::int32_t fileCount = 0;   // stays 0: nothing counts files
    std::int32_t partCount = 0;   // parts read
    bool useThreads = false;
    ProductTree tree;
    std::mutex structureLock; // guards the tree but for its queue while several threads read
};

} // namespace tarnwick
