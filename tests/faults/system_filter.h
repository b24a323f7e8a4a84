#pragma once

#include "faults/plan.h"

namespace tarnwick::faults {

// From here on every call to the system of this kind that this thread makes, whichever library it is in, asks
// `isTurn` first and fails where that says so.
void TrapSystemCalls(Fault fault, bool (*isTurn)());
// The same for another thread, where calls are trapped at all.
void TrapThread();
// This thread's calls pass until TrapThread: with all signals blocked, as the C library makes processes and
// threads, none can be trapped.
void PassThread();

} // namespace tarnwick::faults
