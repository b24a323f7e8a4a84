#pragma once

#include "geometry/part_reader.h"
#include "load/loaded_scene.h"
#include "p21/step_model.h"
#include "product/part_queue.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace tarnwick {

// Called on the thread that runs the load, and on no other: how many of the files known so far a reading
// thread has claimed.
using LoadProgress = std::function<void(std::int32_t filesRead, std::int32_t filesKnown)>;

// What one reading thread keeps from file to file.
struct PartThread {
    bool isLoadThread = false;
    ReaderWorkspace workspace;
    PartScratch scratch;
    Arena arena;
    std::string path; // of the file that was opened last
};

// How a kind of load opens the files of its queue.
class PartFiles {
public:
    virtual ~PartFiles() = default;

    // Opens and reads the file of a product, whose entry is number `place`, and leaves its path in the
    // thread. Returns null when that went well: *model then holds a part to be read, or nothing when there is
    // nothing more to do. Else returns the reason, a phrase in static memory, for which the file counts as
    // unread. Six threads may call this at a time.
    virtual const char* Open(PartThread& thread, const ProductNode& product, std::int32_t place,
                             std::optional<StepModel>* model) = 0;
};

// Reads the files of all entries until the queue has none left: each part gives its product meshes. Works on
// the calling thread, which tells the progress, and with `useThreads` on five workers; returns when all of
// them have ended. Times, records and unread files go into `loaded`; an unread file's place is that of its
// entry plus `firstPlace`. Returns how many parts were read, each counted as often as its entry says.
std::int32_t ReadParts(PartQueue& queue, PartFiles& files, bool useThreads, std::int32_t firstPlace,
                       const LoadProgress& progress, LoadedScene& loaded);

} // namespace tarnwick
