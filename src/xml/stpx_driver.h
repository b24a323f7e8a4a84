#pragma once

#include "xml/stpx_session.h"

namespace tarnwick {

// Reads the STEP XML document `path`, the documents that it leads to one after the other, and then all their
// parts, and places the parts. With the session's `zip` set, `path` and all other names are members of that
// archive. `rootName`, the name of a child of the root to show in its place, may be null. With `boxMode` not
// 0 only the boxes that the document gives are read. With `threads` the parts are read on six threads. Always
// returns 0; the session's `gaveUp` tells whether the root document could be read.
int TraiteSTEPXFileNewMT(StpxSession& session, const char* path, const char* rootName, int boxMode,
                         bool threads);

// BuildDrawLists for STEP XML, whose rotations enter the matrices unchanged: two of their elements are
// negated first, which cancels the signs that the placing of items applies.
int BuildStpxDrawLists(Arena& arena, ProductNode* product, const char* fileName);

// The path of the file that a product names, from the root file's folder on.
std::string StpxPath(const StpxSession& session, const ProductNode& product);

// The child of this name among a product's own occurrences, or null.
ProductNode* FindChildByName(const ProductNode& product, const char* name);

} // namespace tarnwick
