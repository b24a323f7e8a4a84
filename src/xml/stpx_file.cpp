#include "xml/stpx_file.h"

#include "load/file_kind.h"

#include <utility>

namespace tarnwick {

TextFile OpenStpxFile(std::string path) {
    const bool compressed = path.ends_with('z') || path.ends_with('Z');
    return {.path = std::move(path),
            .compression = compressed ? TextFile::kTwoCharacterSuffix : TextFile::kPlain};
}

bool IsXmlFileName(std::string_view name) {
    return FileKindOf(name) == FileKind::kStepXml;
}

} // namespace tarnwick
