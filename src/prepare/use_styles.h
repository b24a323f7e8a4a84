#pragma once

#include "exchange/exchange_file.h"
#include "prepare/structure/structure.h"

namespace tarnwick::prepare {

// Gives all uses of a file that look alike the same `style` and `context`, and 0 where these change nothing:
// a part is written once for each look that it has.
void ShareUseStyles(const ExchangeFile& file, FileStructure* structure);

} // namespace tarnwick::prepare
