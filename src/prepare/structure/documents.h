#pragma once

#include "exchange/exchange_file.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tarnwick::prepare {

// Calls `found(definition, names)` for each product definition (or formation, or product) that a document
// file describes: by APPLIED_DOCUMENT_REFERENCE, CC_DESIGN_SPECIFICATION_REFERENCE or
// PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS. `names` are those that the file may have, the likeliest
// first.
void ForEachDocument(
    const ExchangeFile& file,
    const std::function<void(std::uint64_t definition, const std::vector<std::string>& names)>& found);

} // namespace tarnwick::prepare
