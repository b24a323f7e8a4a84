#pragma once

#include "xml/stpx_session.h"

#include <string>

namespace tarnwick {

// The path of the file that a product names, beside the root file.
std::string StpxPath(const StpxSession& session, const ProductNode& product);

// Reads the files of all products in the session's table of parts, each into its product, from the file
// system or from the session's archive: on the calling thread and, when `threads` is set, on five workers.
// Returns when all of them have ended.
void ReadParts(StpxSession& session);

} // namespace tarnwick
