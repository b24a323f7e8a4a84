#pragma once

#include "text/extension.h"

#include <string_view>

namespace tarnwick {

enum class FileKind { kUnknown, kStep, kStepXml, kSummary, kArchive };

// The kind of a file by the extension of its path, in any case.
inline FileKind FileKindOf(std::string_view path) {
    const std::string extension = ExtensionOf(path);
    if (extension == "stp" || extension == "stpz") { return FileKind::kStep; }
    if (extension == "stpx" || extension == "stpxz") { return FileKind::kStepXml; }
    if (extension == "stpj") { return FileKind::kSummary; }
    if (extension == "stpa") { return FileKind::kArchive; }
    return FileKind::kUnknown;
}

} // namespace tarnwick
