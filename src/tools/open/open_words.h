#pragma once

#include "tools/open/open_file.h"

#include <atomic>
#include <string>

namespace tarnwick::tools {

// Opens a file where there is no display: says how far it is and what is missing on standard error, and on
// standard output the path of what the viewer is to show. Returns the exit status: 0 when there is one,
// else 1.
int OpenInWords(const std::string& file, const prepare::PrepareOptions& options,
                const std::atomic<bool>* cancel);

} // namespace tarnwick::tools
