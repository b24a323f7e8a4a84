#pragma once

#include "prepare/whole.h"
#include "write/byte_sink.h"

#include <string>
#include <vector>

namespace tarnwick::prepare {

// Writes the tree of the whole. `files` has the name of each product's file, empty for a product without one.
// Products that the root doesn't lead to are left out. The sink stays open.
void WriteTopFile(const Whole& whole, const std::vector<std::string>& files, ByteSink* sink);

} // namespace tarnwick::prepare
