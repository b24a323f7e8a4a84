#include "platform/programs.h"

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/system_path_windows.h"

#include <windows.h>

#include <algorithm>

namespace tarnwick {

std::string OwnProgram() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return Utf8Of(path);
}

std::string ProgramIn(std::string_view folder, std::string_view name) {
    std::string path(folder);
    path += name;
    if (!name.ends_with(".exe")) { path += ".exe"; }
    return IsRegularFile(path) ? path : std::string();
}

std::string FindProgram(std::string_view name) {
    const std::string variable = EnvironmentText("PATH").value_or("");
    std::string_view rest = variable;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        std::string folder(rest.substr(0, end));
        std::erase(folder, '"');
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (folder.empty()) { continue; }
        if (folder.back() != '\\' && folder.back() != '/') { folder += '\\'; }
        const std::string path = ProgramIn(folder, name);
        if (!path.empty()) { return path; }
    }
    return {};
}

} // namespace tarnwick
