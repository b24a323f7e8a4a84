#include "platform/paths.h"

#include "platform/system_path_windows.h"

namespace tarnwick {

std::string FolderOf(std::string_view path) {
    const std::size_t separator = path.find_last_of("/\\");
    if (separator == std::string_view::npos || separator == 0) { return {}; }
    return std::string(path.substr(0, separator + 1));
}

std::string NameOf(std::string_view path) {
    return std::string(path.substr(path.find_last_of("/\\") + 1));
}

std::filesystem::path PathOf(std::string_view text) {
    return Utf16Of(text);
}

std::string TextOf(const std::filesystem::path& path) {
    return Utf8Of(path.generic_wstring());
}

} // namespace tarnwick
