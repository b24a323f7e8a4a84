#pragma once

#include "platform/arena.h"
#include "platform/helpers.h"
#include "product/scene_records.h"
#include "xml/product_table.h"
#include "xml/uses_ahead.h"

#include <cstddef>
#include <vector>

namespace tarnwick {

// A STEP XML text to be read, and what was found in it.
struct StpxDocument {
    char* text = nullptr;       // the reader writes into TextBlock::kPadding bytes after it
    std::size_t size = 0;       // its characters
    const char* name = "";      // of its file, for messages
    bool plainly = false;       // every tag by the general scan: the same outcome, but slower
    Helpers* helpers = nullptr; // take part in the reading of a large text; may be null
    std::size_t pieceBytes = UsesAhead::kPieceBytes; // read by one of them at a time
    std::vector<ProductNode*> products;              // in document order; null where a part has no name
    ProductNode* root = nullptr;                     // null when every part is a component
};

// Reads the assembly structure out of a whole text: products and their occurrences, and which files hold the
// rest. What it makes is in `arena`; nothing points into the text afterwards. Products whose file is a STEP
// XML document go into `assemblies`, those with other files into `parts`. Both tables carry over from
// document to document, and a part that has the name of a product in `assemblies` is that product. With
// `boxMode` not 0 the boxes of views are read as well. Returns null, or the reason (a phrase in static
// memory) for which the document is given up; it has then left nothing in the tables.
const char* ReadStpxDocument(StpxDocument& document, int boxMode, NamedProductTable& assemblies,
                             ProductTable& parts, Arena& arena);

// Whether the last letters of a file name make it a STEP XML document: x, or x and z, in any case.
bool IsXmlByLastLetters(std::string_view name);

} // namespace tarnwick
