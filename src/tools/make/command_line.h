#pragma once

#include "tools/make/assembly.h"
#include "tools/make/fem.h"
#include "tools/make/part.h"
#include "tools/make/stpj.h"
#include "tools/make/stpx.h"

namespace tarnwick::make {

// Parses the command line and writes what it asks for. Returns the exit status: 0, 1 when the output can't be
// written, 2 for a wrong command line.
int RunCommandLine(int argc, char** argv);

} // namespace tarnwick::make
