#pragma once

#include "product/load_session.h"

namespace tarnwick {

// Reads the P21 file at `path`, and for an assembly every file that it leads to, into a fresh session. With
// `useThreads` not 0, an assembly's files are read by five workers and the caller. Returns 0, or 1 when the
// top file can't be read or isn't valid P21; the reason is then on the console, and for a file that can't be
// opened in `session.unreadFiles`.
int TraiteSTEPFile(LoadSession& session, const char* path, int useThreads);

} // namespace tarnwick
