#pragma once

#include "xml/stpx_session.h"

namespace tarnwick {

// Shows the tree as boxes, those that the document itself gives: fills the record's `box` and `boxList`
// without reading any other file. Goes down 30 levels; deeper ones are left out, with a line on the console
// that names `fileName`.
void BuildBoxList(StpxSession& session, const char* fileName);

} // namespace tarnwick
