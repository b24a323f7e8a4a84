#pragma once

#include "prepare/prepare.h"

#include <atomic>
#include <string>

namespace tarnwick::tools {

// What the viewer is to show for a file.
struct OpenOutcome {
    std::string path; // empty where there is nothing to show
    // Of the preparing, if there was any: what is missing, and why nothing came.
    prepare::PrepareResult result;

    // Whether there is something to tell before the viewer opens.
    bool LacksShape() const { return path.empty() || result.LacksShape(); }
};

// Finds out whether the viewer shows a file whole by itself, and prepares it where not. `options` has the
// folder of the outcome. May take long. When `cancel` becomes true, it ends as soon as the step in hand looks
// at it.
OpenOutcome FindShown(const std::string& file, const prepare::PrepareOptions& options,
                      const prepare::TellProgress& tell, const std::atomic<bool>* cancel);

} // namespace tarnwick::tools
