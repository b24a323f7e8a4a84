#include "platform/programs.h"

#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace tarnwick {

std::string OwnProgram() {
    char own[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", own, sizeof own);
    return length > 0 ? std::string(own, static_cast<std::size_t>(length)) : std::string();
}

std::string ProgramIn(std::string_view folder, std::string_view name) {
    std::string path(folder);
    path += name;
    return access(path.c_str(), X_OK) == 0 ? path : std::string();
}

std::string FindProgram(std::string_view name) {
    const char* const variable = std::getenv("PATH");
    std::string_view rest = variable != nullptr ? variable : "";
    while (!rest.empty()) {
        const std::size_t colon = std::min(rest.find(':'), rest.size());
        std::string folder(rest.substr(0, colon));
        folder += folder.empty() || folder.back() == '/' ? "" : "/";
        const std::string path = colon > 0 ? ProgramIn(folder, name) : std::string();
        if (!path.empty()) { return path; }
        rest.remove_prefix(std::min(colon + 1, rest.size()));
    }
    return {};
}

} // namespace tarnwick
