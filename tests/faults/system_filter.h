#pragma once

#include "faults/plan.h"

namespace tarnwick::faults {

// From here on every call to the system of this kind, whichever library makes it, asks `isTurn` first and
// fails where that says so.
void TrapSystemCalls(Fault fault, bool (*isTurn)());

} // namespace tarnwick::faults
