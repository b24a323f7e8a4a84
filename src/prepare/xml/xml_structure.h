#pragma once

#include "prepare/structure/structure.h"

#include <string>
#include <string_view>

namespace tarnwick::prepare {

// Reads what a STEP XML document says of products: its parts, their files and uses, with placements in
// millimetres. A part is a product; of several views or versions those count that others use, or else the
// first that says anything. Uses that would make a part hold itself are left out, so that the outcome has no
// circle. Of several files a part has the first with the name of a STEP file, or else the first that may hold
// a shape. A text that is cut or broken gives what comes before the damage, and `error` says where. False,
// with a sentence in `error`, for a text without data; `structure` is then as it was. Linear in the text.
bool ReadXmlStructure(std::string_view text, FileStructure* structure, std::string* error);

} // namespace tarnwick::prepare
