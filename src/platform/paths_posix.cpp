#include "platform/paths.h"

namespace tarnwick {

std::string FolderOf(std::string_view path) {
    const std::size_t separator = path.rfind('/');
    if (separator == std::string_view::npos || separator == 0) { return {}; }
    return std::string(path.substr(0, separator + 1));
}

std::string NameOf(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

} // namespace tarnwick
