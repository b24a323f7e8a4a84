#pragma once

#include "summary/stpj_reader.h"

namespace tarnwick {

// Fills an empty list of boxes with what is shown at a depth of the tree: every occurrence of that depth, and
// every one of a lesser depth that has no children; at depth 0 only the box of the first occurrence,
// unplaced, and without size and product where that one has no product. The boxes are in `boxMemory`. False
// when memory runs out.
bool SelectDepth(const StpjFile& file, std::int32_t depth, DrawList* list, Arena& boxMemory);

} // namespace tarnwick
