#pragma once

#include "prepare/structure/structure.h"

#include <string>
#include <string_view>

namespace tarnwick::prepare {

// Reads what a STEP XML document says of products: its parts, their files and uses, with placements in
// millimetres. A part is a product; one with several views or versions is the one that others use, or the
// first that says anything. Uses that would make a part hold itself are left out, so that the outcome has no
// circle. A part with several files has the first of those that have the name of a STEP file, or else of all
// that may hold a shape. A text that is cut or broken gives what stands before, and `error` says where.
// False, with a sentence in `error`, for a text without data; `structure` is then as it was. Linear in the
// text.
bool ReadXmlStructure(std::string_view text, FileStructure* structure, std::string* error);

} // namespace tarnwick::prepare
