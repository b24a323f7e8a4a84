#pragma once

#include "link/link_port.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwick {

// The open file and what is picked in it, as sent to the web side.
struct Selection {
    const char* path = nullptr;     // of the file that was last asked for; null for none
    const char* rootName = nullptr; // of the root product; null for none
    std::string selectedText = {}; // "#" and the number of the picked face, or the name of the picked product
    std::int32_t selectedExactContainerId = 0;
    std::int32_t selectedContainerType = 0; // 1 solid, 2 shell
};

// The path of the open file without its folders; empty without a file.
std::string FileNameOf(const Selection& selection);

// The arguments of a browser that opens the HTML viewer at the picked face. `viewerFolder` is absolute.
std::vector<std::string> BrowserArguments(const std::string& viewerFolder, const Selection& selection);

// Opens the HTML viewer at the picked face, in the first of `browsers` that is installed, and logs that.
void EditPmi(LinkPort& dialog, const std::vector<std::string>& browsers, const std::string& viewerFolder,
             const Selection& selection);

} // namespace tarnwick
