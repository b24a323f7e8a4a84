#pragma once

#include "load/load_session.h"

namespace tarnwick {

// Reads the P21 file at `path`, and for an assembly every file that it leads to, into the record of a fresh
// session. With `useThreads` an assembly's files are read by five workers and the caller. Returns 0, or 1
// when the top file can't be read or isn't valid P21: it is then among the unread files.
int TraiteSTEPFile(LoadSession& session, const char* path, bool useThreads);

} // namespace tarnwick
