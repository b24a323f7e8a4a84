#include "support/real_files.h"

#include <cstdlib>
#include <filesystem>

namespace tarnwick::test {

std::string RealFile(std::string_view name) {
    const char* const folder = std::getenv("TARNWICK_REAL_FILES");
    if (folder == nullptr) { return {}; }
    const std::string path = std::string(folder) + "/" + std::string(name);
    return std::filesystem::exists(path) ? path : std::string();
}

} // namespace tarnwick::test
