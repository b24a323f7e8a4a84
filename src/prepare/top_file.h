#pragma once

#include "prepare/whole.h"
#include "write/byte_sink.h"

#include <string>
#include <vector>

namespace tarnwick::prepare {

// Writes the tree of the whole. `files` are those of its products as the top file names them, empty for a
// product without. Products that nothing leads to from the root are left out. The sink stays open.
void WriteTopFile(const Whole& whole, const std::vector<std::string>& files, ByteSink* sink);

} // namespace tarnwick::prepare
