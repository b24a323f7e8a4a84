#pragma once

#include "prepare/prepare.h"
#include "support/temp_folder.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

// What the viewer shows of a file that was prepared.
struct PreparedScene {
    struct Triangle {
        std::array<std::array<float, 3>, 3> corners; // in the world
        std::array<float, 4> colour;
        auto operator<=>(const Triangle&) const = default;
    };
    prepare::PrepareResult result;
    std::vector<Triangle> triangles; // sorted
    std::vector<std::string> products;
    std::size_t placed = 0; // items of the draw list

    // "product #entity: why" of all losses, without the numbers of entities.
    std::vector<std::string> Losses() const;
    // The corners of all triangles, one text each: "0 0 0, 1 0 0, 0 1 0".
    std::vector<std::string> Corners() const;
    // The colours of all triangles: "1 0 0 1".
    std::vector<std::string> Colours() const;
};

// Options for a preparation without the kernel, into a folder.
prepare::PrepareOptions PlainOptions(const std::string& folder);

// Writes the text as top.stp into the folder, prepares it there, and loads the outcome as the viewer does.
PreparedScene PrepareText(const TempFolder& folder, std::string_view text,
                          std::string_view name = "top.step");
PreparedScene PrepareFile(const std::string& path, const prepare::PrepareOptions& options);

} // namespace tarnwick::test
