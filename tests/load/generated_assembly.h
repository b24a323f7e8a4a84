#pragma once

#include "support/temp_folder.h"

#include <array>
#include <string>
#include <vector>

namespace tarnwick::test {

// A rotation and a translation in whole numbers, column by column as a world matrix is.
using WholeMatrix = std::array<int, 16>;

// An assembly of several levels over several files, made from a seed: parts and sub-assemblies that files
// share, quarter turns about all axes, some products without a file of their own, now and then a file that
// isn't there. What has to come out is worked out beside it.
struct GeneratedAssembly {
    explicit GeneratedAssembly(unsigned seed);

    struct Item {
        std::string part;
        WholeMatrix matrix;
        auto operator<=>(const Item&) const = default;
    };

    TempFolder folder;
    std::string path;
    std::vector<Item> items; // in no particular order
    int triangles = 0;
    int files = 0;   // that are read, without the top file
    int parts = 0;   // of these
    int missing = 0; // files that aren't there
};

} // namespace tarnwick::test
