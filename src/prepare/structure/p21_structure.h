#pragma once

#include "exchange/exchange_file.h"
#include "prepare/structure/structure.h"

namespace tarnwick::prepare {

// What an ISO 10303-21 text says of products: definitions, their shape representations with all that is
// related to them, uses by NEXT_ASSEMBLY_USAGE_OCCURRENCE and by MAPPED_ITEM, placements, units, files that
// describe them. Bodies that no product leads to become products of their own. Never fails; what can't be
// taken over is among the losses. Linear in the text. Any thread.
FileStructure ReadP21Structure(const ExchangeFile& file);

} // namespace tarnwick::prepare
