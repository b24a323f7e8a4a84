#pragma once

#include "xml/stpx_session.h"

namespace tarnwick {

// The tree as boxes, out of the boxes that the document itself gives: fills the record's `box` and
// `boxList`, with no other file read. Down to 30 levels; what lies deeper is left out, with a line on the
// console that names `fileName`.
void BuildBoxList(StpxSession& session, const char* fileName);

} // namespace tarnwick
