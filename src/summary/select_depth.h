#pragma once

#include "summary/stpj_reader.h"

namespace tarnwick {

// Fills an empty list of boxes with what shows at a depth of the tree: every occurrence of that depth, and
// every one without children of a lesser depth; at depth 0 the box of the first occurrence alone, unplaced,
// which has no size and no product where that one has none. The list is in `boxMemory`. False when memory
// runs out.
bool SelectDepth(const StpjFile& file, std::int32_t depth, DrawList* list, Arena& boxMemory);

} // namespace tarnwick
