#pragma once

#include "tools/picture/options.h"

namespace tarnwick::tools {

// Loads the file and writes its pictures. Returns the exit status: 0 when all of them are written; 1 when
// not, told on standard error.
int MakePictures(const PictureOptions& options);

} // namespace tarnwick::tools
