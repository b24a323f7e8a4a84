#pragma once

#include "product/load_session.h"
#include "product/scene_memory.h"
#include "product/scene_records.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick {

// What a load command gets back from the load of an archive.
struct ZIPReader {
    static constexpr int kSuccess = 0;
    static constexpr int kNoIni = 1;      // no archive, or no member "stpa.ini" that names a root
    static constexpr int kNotStpx = 100;  // its root is no STEP XML document
    static constexpr int kRootUnread = 2; // the root document couldn't be read

    double readSeconds = 0;
    double inflateSeconds = 0;
    double parseSeconds = 0;
    std::int32_t triangleCount = 0;
    float box[6] = {};
    DrawList* drawList = nullptr;
    std::int32_t isAssembly = 0;
    std::int32_t threads = 0;
    ProductNode* root = nullptr;

    std::function<void(std::int32_t filesRead, std::int32_t filesKnown)> progress; // see StpxSession
    std::vector<UnreadFile> unreadFiles;
    std::unique_ptr<SceneMemory> scene = std::make_unique<SceneMemory>();
};

// Reads the archive `path`: its member "stpa.ini" names the root document, which is read as
// TraiteSTEPXFileNewMT reads a file, with the archive in place of the file system. Without `threads` no
// document is read at all, and the result is empty. Returns one of the codes above.
int TraiteSTPA(ZIPReader& reader, const char* path, const char* rootName, int threads);

// The name of the root member out of the text of "stpa.ini": its first string in double quotes. *isStpx is 1
// when the name ends in ".stpx". Returns 1 when the text has no quote at all, else 0; with one quote only the
// name stays empty.
int ParseStpaIni(std::string_view text, std::string* name, int* isStpx);

} // namespace tarnwick
