#include "platform/environment.h"

#include "platform/system_path_windows.h"

#include <windows.h>

namespace tarnwick {

std::optional<std::string> EnvironmentText(const char* name) {
    const std::wstring wideName = Utf16Of(name);
    SetLastError(ERROR_SUCCESS);
    std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
    if (value.empty() && GetLastError() == ERROR_ENVVAR_NOT_FOUND) { return std::nullopt; }
    value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
    return Utf8Of(value);
}

bool HasDisplay() {
    return true;
}

void ChooseWindowSystem() {}

} // namespace tarnwick
