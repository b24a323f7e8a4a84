#pragma once

#include "load/file_kind.h"
#include "load/load_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick {

// A file that a load wanted and could not read.
struct UnreadName {
    std::string path;
    std::string product; // that asked for it; empty for the file that was to be shown
    std::string reason;  // a phrase
};

// What became of a load that was tried.
struct LoadOutcome {
    enum class End : std::uint8_t {
        kUnknown, // not tried, or no process for it
        kDone,
        kEnded, // the load ended its process
        kStands // it never returns
    };
    End end = End::kUnknown;
    std::int64_t triangles = 0; // that are drawn, over all placed parts
    std::int64_t visible = 0;   // of them, those whose opacity isn't 0
    std::int64_t parts = 0;     // placed parts with triangles
    bool lacksMemory = false;   // some of it can't be told, for want of memory
    std::vector<UnreadName> unread;
    std::vector<std::string> errors; // the first 100 lines of the console that begin with "<E>", without that
};

// Loads the file in a process of its own, so that a load which ends its process or never returns does no
// harm. A file of a kind that isn't known by its extension is taken for `kind`. To be called while there is
// no other thread.
LoadOutcome TryLoad(LoadDispatch& dispatch, const std::string& path, const char* rootName, bool useThreads,
                    FileKind kind);

} // namespace tarnwick
