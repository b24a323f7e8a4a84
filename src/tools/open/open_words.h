#pragma once

#include "tools/open/open_file.h"

#include <atomic>
#include <string>

namespace tarnwick::tools {

// Opens a file where there is no display: writes the progress and what is missing to standard error, and the
// path of what the viewer is to show to standard output. Returns the exit status: 0 when there is one,
// else 1.
int OpenInWords(const std::string& file, const prepare::PrepareOptions& options,
                const std::atomic<bool>* cancel);

} // namespace tarnwick::tools
