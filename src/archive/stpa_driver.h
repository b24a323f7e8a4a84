#pragma once

#include "load/loaded_scene.h"
#include "load/read_parts.h"

#include <string>
#include <string_view>

namespace tarnwick {

// What the load command of archives and the driver share. It refers to the record of what the load leaves.
struct ZIPReader {
    static constexpr int kSuccess = 0;
    static constexpr int kNoIni = 1;      // no archive, or no member "stpa.ini" that names a root
    static constexpr int kNotStpx = 100;  // its root isn't a STEP XML document
    static constexpr int kRootUnread = 2; // the root document couldn't be read

    explicit ZIPReader(LoadedScene& scene) : loaded(scene) {}

    LoadedScene& loaded;
    LoadProgress progress; // may be empty
};

// Reads the archive `path`: its member "stpa.ini" names the root document, which is read as
// TraiteSTEPXFileNewMT reads a file, with the archive in place of the file system. Without `threads` no
// document is read, and there is nothing to show. Returns one of the codes above.
int TraiteSTPA(ZIPReader& reader, const char* path, const char* rootName, bool threads);

// The name of the root member in the text of "stpa.ini": its first string in double quotes. *isStpx is 1 when
// the name ends in ".stpx". Returns 1 when the text has no quote, else 0; with only one quote *name stays as
// it was.
int ParseStpaIni(std::string_view text, std::string* name, int* isStpx);

} // namespace tarnwick
