#pragma once

#include "text/text_file.h"

#include <string>
#include <string_view>

namespace tarnwick {

// A document's file that isn't read yet. It is compressed when its name ends in Z or z.
TextFile OpenStpxFile(std::string path);

// Whether the name's extension is "stpx" or "stpxz" in any case.
bool IsXmlFileName(std::string_view name);

} // namespace tarnwick
