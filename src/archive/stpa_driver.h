#pragma once

#include "load/loaded_scene.h"
#include "load/read_parts.h"

#include <string>
#include <string_view>

namespace tarnwick {

// The record between the load command of archives and the driver. It refers to the record of what the load
// leaves.
struct ZIPReader {
    static constexpr int kSuccess = 0;
    static constexpr int kNoIni = 1;      // no archive, or no member "stpa.ini" that names a root
    static constexpr int kNotStpx = 100;  // its root is no STEP XML document
    static constexpr int kRootUnread = 2; // the root document couldn't be read

    explicit ZIPReader(LoadedScene& scene) : loaded(scene) {}

    LoadedScene& loaded;
    LoadProgress progress; // may be empty
};

// Reads the archive `path`: its member "stpa.ini" names the root document, which is read as
// TraiteSTEPXFileNewMT reads a file, with the archive in place of the file system. Without `threads` no
// document is read at all, and nothing is left to show. Returns one of the codes above.
int TraiteSTPA(ZIPReader& reader, const char* path, const char* rootName, bool threads);

// The name of the root member out of the text of "stpa.ini": its first string in double quotes. *isStpx is 1
// when the name ends in ".stpx". Returns 1 when the text has no quote at all, else 0; with one quote only the
// name stays empty.
int ParseStpaIni(std::string_view text, std::string* name, int* isStpx);

} // namespace tarnwick
