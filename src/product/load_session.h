#pragma once

#include "product/scene_memory.h"
#include "product/scene_records.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnwick {

// A file that a load wanted and could not read, for the people who wonder what is absent.
struct UnreadFile {
    std::int32_t place;      // in the order in which the load wanted them
    std::string path;        // as it was tried first
    std::string productName; // the product that asked for it; empty for the file that was to be shown
    const char* reason;      // a phrase, in static memory
};

// Of a file that was opened, when its part, its structure or its mesh is given up. Why is on the console.
inline constexpr const char* kGivenUpReason = "can't be read to its end";

// A growable array of pointers to products, with its capacity as the readers state it.
struct ProductArray {
    std::unique_ptr<ProductNode*[]> items;
    std::int32_t capacity = 0;
    std::int32_t count = 0;

    void Allocate(std::int32_t newCapacity) {
        std::unique_ptr<ProductNode*[]> larger(new ProductNode*[static_cast<std::size_t>(newCapacity)]());
        for (std::int32_t i = 0; i < count; ++i) { larger[static_cast<std::size_t>(i)] = (*this)[i]; }
        items = std::move(larger);
        capacity = newCapacity;
    }
    ProductNode*& operator[](std::int32_t index) { return items[static_cast<std::size_t>(index)]; }
};

// The record between the driver of a P21 load, its load command and the reading threads. It lives for one
// load; what it holds in `scene` outlives it with the view.
struct LoadSession {
    static constexpr int kWorkers = 5; // and the calling thread is the sixth
    static constexpr std::int32_t kFirstCapacity = 1000;

    std::string folder;           // the top file's path up to and including its last separator; assembly only
    std::int32_t compression = 0; // of the top file; assembly only
    std::int32_t isAssembly = -1; // -1 before the top file is read, 0 one file, 1 assembly
    std::int32_t fileCount = 0;   // stays 0: no part of this load counts into it
    std::int32_t hasBox = 0;      // 1 once `box` holds a value
    std::int32_t triangleCount = 0;      // of the whole load
    std::atomic<double> readSeconds = 0; // sums over the part readers of an assembly
    std::atomic<double> inflateSeconds = 0;
    std::atomic<double> partSeconds = 0;
    float box[6] = {};                       // of the whole load
    ProductNode* root = nullptr;             // null when none was found
    ProductArray products;                   // all products of all files
    std::atomic<std::int32_t> partCount = 0; // parts read
    std::string rootName;
    bool hasRootName = false;
    DrawList* drawList = nullptr;         // what is to be drawn
    ResultMesh* resultMesh = nullptr;     // of a finite element file
    FaceContainer** containers = nullptr; // of a single part
    std::int32_t containerCount = 0;
    ProductArray queue;           // products whose file is to be read
    std::int32_t queueCursor = 0; // the next entry to be claimed
    std::uint32_t useThreads = 0;
    std::mutex queueLock;     // guards the queue, its growth and its cursor
    std::mutex structureLock; // one structure reader at a time
    // The first queued product of each name; guarded by structureLock.
    std::unordered_map<std::string_view, ProductNode*> queuedNames;
    std::atomic<std::int32_t> done[kWorkers] = {}; // set to 1 by worker k as it leaves its loop

    // Told, on the thread that runs the load and on no other, how many of the files known so far have been
    // read. May be empty.
    std::function<void(std::int32_t filesRead, std::int32_t filesKnown)> progress;

    std::mutex unreadLock;
    std::vector<UnreadFile> unreadFiles; // guarded by unreadLock
    std::unique_ptr<SceneMemory> scene = std::make_unique<SceneMemory>();
};

} // namespace tarnwick
