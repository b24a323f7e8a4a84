#pragma once

#include "tools/load/options.h"

namespace tarnwick::tools {

// Whether all of standard output could be written; says so when it couldn't. What is still in its buffer can
// fail only here.
bool OutputIsWritten();

// Loads the file, prints the status text, writes the report that was asked for and lists on standard error
// what could not be read. Returns the exit status: 0 when the view has at least one triangle, else 1.
int LoadAndReport(const LoadOptions& options);

// Prints the entity index of the file. Returns 0 when it could be read, else 1.
int PrintIndex(const LoadOptions& options);

// Prints why the file shows less than it should, or writes it as JSON where that was asked for. Returns 0
// when nothing was found, else 1.
int PrintCheck(const LoadOptions& options);

} // namespace tarnwick::tools
