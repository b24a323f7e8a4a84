#pragma once

#include "load/loaded_scene.h"
#include "load/read_parts.h"
#include "platform/helpers.h"
#include "xml/document_archive.h"
#include "xml/product_table.h"

#include <cstdint>
#include <mutex>
#include <string>

namespace tarnwick {

// What a load command of STEP XML or archives and the driver share. It lives for one load, and refers to the
// record of what that load leaves.
struct StpxSession {
    explicit StpxSession(LoadedScene& scene) : loaded(scene) {}

    LoadedScene& loaded;
    LoadProgress progress; // may be empty

    bool threads = false;
    Helpers* helpers = nullptr;     // the driver's, for the reading of a large document; null for none
    std::string directory;          // of the root file, with its final separator
    DocumentArchive* zip = nullptr; // set when reading from an archive
    std::mutex zipLock;             // guards it while several threads read
    std::int32_t isAssembly = 1;    // 0 when the root turns out to be one part
    ProductNode* root = nullptr;    // null when none was found
    NamedProductTable asmProdExt;   // products whose file is a further STEP XML document
    ProductTable geomProdExt;       // products whose file is a part
    std::int32_t partsRead = 0;
    bool gaveUp = false; // the root document couldn't be read: there is nothing to show
};

} // namespace tarnwick
