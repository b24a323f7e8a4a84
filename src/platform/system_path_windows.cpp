#include "platform/system_path_windows.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <initializer_list>

namespace tarnwick {

namespace {

wchar_t Upper(wchar_t c) {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

bool IsSame(std::wstring_view a, std::wstring_view upper) {
    return a.size() == upper.size() &&
           std::equal(a.begin(), a.end(), upper.begin(), [](wchar_t x, wchar_t y) { return Upper(x) == y; });
}

// Whether the last name of a path is that of a device, which any extension and blanks may follow.
bool IsDevice(std::wstring_view path) {
    const std::size_t separator = path.find_last_of(L"\\/:");
    std::wstring_view name = separator == std::wstring_view::npos ? path : path.substr(separator + 1);
    name = name.substr(0, name.find(L'.'));
    while (!name.empty() && name.back() == L' ') { name.remove_suffix(1); }
    for (const std::wstring_view device :
         {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$", L"CLOCK$"}) {
        if (IsSame(name, device)) { return true; }
    }
    const bool hasNumber = name.size() == 4 && ((name[3] >= L'0' && name[3] <= L'9') || name[3] == L'\xB9' ||
                                                name[3] == L'\xB2' || name[3] == L'\xB3');
    return hasNumber && (IsSame(name.substr(0, 3), L"COM") || IsSame(name.substr(0, 3), L"LPT"));
}

bool IsDrive(wchar_t c) {
    return Upper(c) >= L'A' && Upper(c) <= L'Z';
}

// Whether the path has no colon but that of a drive.
bool HasOnlyDrive(std::wstring_view path) {
    const bool hasDrive = path.size() > 1 && path[1] == L':' && IsDrive(path[0]);
    return path.find(L':', hasDrive ? 2 : 0) == std::wstring_view::npos;
}

} // namespace

std::wstring Utf16Of(std::string_view text) {
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string Utf8Of(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    std::string narrow(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr,
                                                                    0, nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), static_cast<int>(narrow.size()),
                        nullptr, nullptr);
    return narrow;
}

SystemPath::SystemPath(const char* path) {
    text_[0] = L'\0';
    constexpr std::wstring_view kLong = L"\\\\?\\";
    constexpr std::wstring_view kLongShare = L"\\\\?\\UNC\\";
    wchar_t wide[kRoom];
    const int length =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path, -1, wide, static_cast<int>(kRoom)) - 1;
    if (length < 1) { return; }
    std::wstring_view given(wide, static_cast<std::size_t>(length));
    if (given.starts_with(kLong) && !given.starts_with(kLongShare)) { given.remove_prefix(kLong.size()); }
    if (!HasOnlyDrive(given) || IsDevice(given)) { return; }
    // The system takes the long form as it is, so "..", "/" and the current folder are resolved first.
    wchar_t full[kRoom];
    const DWORD used = GetFullPathNameW(given.data(), kRoom, full, nullptr);
    std::wstring_view whole(full, used < kRoom ? used : 0);
    std::wstring_view lead = kLong;
    if (whole.starts_with(L"\\\\.\\") || whole.empty()) { return; }
    if (whole.starts_with(kLong)) {
        lead = {};
    } else if (whole.starts_with(L"\\\\")) {
        lead = kLongShare;
        whole.remove_prefix(2);
    }
    if (lead.size() + whole.size() >= kRoom) { return; }
    wchar_t* const end = std::copy(whole.begin(), whole.end(), std::copy(lead.begin(), lead.end(), text_));
    *end = L'\0';
}

int ErrnoOf(unsigned long systemError) {
    switch (systemError) {
    case ERROR_SUCCESS:
        return 0;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
        return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT:
        return EACCES;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
        return EEXIST;
    case ERROR_DIRECTORY:
        return ENOTDIR;
    case ERROR_TOO_MANY_OPEN_FILES:
        return EMFILE;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
    case ERROR_COMMITMENT_LIMIT:
    case ERROR_NO_SYSTEM_RESOURCES:
        return ENOMEM;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return ENOSPC;
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_BUFFER_OVERFLOW:
        return ENAMETOOLONG;
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
        return EPIPE;
    default:
        return EIO;
    }
}

} // namespace tarnwick
