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

std::filesystem::path PathOf(std::string_view text) {
    return text;
}

std::string TextOf(const std::filesystem::path& path) {
    return path.generic_string();
}

} // namespace tarnwick
