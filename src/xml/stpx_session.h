#pragma once

#include "product/load_session.h"
#include "product/scene_memory.h"
#include "product/scene_records.h"
#include "xml/product_table.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tarnwick {

class ZipArchive;

// The record between a load command of STEP XML or archives and the driver. It lives for one load; what it
// holds in `scene` outlives it with the view.
struct StpxSession {
    static constexpr int kWorkers = 5; // and the calling thread is the sixth

    std::atomic<double> readSeconds = 0; // sums over all part files
    std::atomic<double> inflateSeconds = 0;
    std::atomic<double> parseSeconds = 0;
    std::int32_t threads = 0;
    std::string directory;        // of the root file, with its final separator
    ZipArchive* zip = nullptr;    // set when reading from an archive
    std::int32_t isAssembly = 1;  // 0 when the root turns out to be one part
    DrawList* boxList = nullptr;  // box mode only, in `boxMemory`
    DrawList* drawList = nullptr; // the root's
    ProductNode* root = nullptr;  // null when none was found
    NamedProductTable asmProdExt; // products whose file is a further STEP XML document
    ProductTable geomProdExt;     // products whose file is a part
    std::atomic<std::int32_t> partsRead = 0;
    std::int32_t triangleCount = 0; // of the draw list
    float box[6] = {};
    std::int32_t boxSet = 0; // 1 once `box` holds a value
    bool gaveUp = false;     // the root document couldn't be read: there is nothing to show

    // The parts to read. A product that stands in the table more than once is one entry: its file is the same
    // each time, and two threads must not write to it.
    struct Part {
        ProductNode* product;
        std::int32_t times;
    };
    std::vector<Part> queue;
    std::int32_t nextPart = 0; // of the queue, guarded by queueLock
    std::mutex queueLock;
    std::mutex zipLock;                                  // guards the archive
    std::atomic<std::int32_t> threadDone[kWorkers] = {}; // set to 1 by worker k as it ends

    // Told, on the thread that runs the load and on no other, how many of the parts have been read. May be
    // empty.
    std::function<void(std::int32_t filesRead, std::int32_t filesKnown)> progress;

    std::mutex unreadLock;
    std::vector<UnreadFile> unreadFiles; // guarded by unreadLock
    std::unique_ptr<SceneMemory> scene = std::make_unique<SceneMemory>();
    std::unique_ptr<Arena> boxMemory = std::make_unique<Arena>();
};

} // namespace tarnwick
