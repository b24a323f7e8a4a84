#include "platform/files.h"

#include "platform/system_path_windows.h"

#include <windows.h>

#include <cstring>
#include <memory>

namespace tarnwick {

namespace {

struct CloseFile {
    void operator()(void* file) const { CloseHandle(file); }
};
using FileHandle = std::unique_ptr<void, CloseFile>;

// A handle that identifies a file or a folder; null when there is none.
FileHandle Look(const std::string& path) {
    const SystemPath name(path.c_str());
    if (!name.IsUsable()) { return nullptr; }
    HANDLE const file =
        CreateFileW(name.Text(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    return FileHandle(file != INVALID_HANDLE_VALUE ? file : nullptr);
}

// The path as users know it, without the prefix of long paths.
std::string Shown(std::wstring_view path) {
    if (path.starts_with(L"\\\\?\\UNC\\")) { return "\\\\" + Utf8Of(path.substr(8)); }
    return Utf8Of(path.starts_with(L"\\\\?\\") ? path.substr(4) : path);
}

DWORD AttributesOf(const std::string& path) {
    const SystemPath name(path.c_str());
    return name.IsUsable() ? GetFileAttributesW(name.Text()) : INVALID_FILE_ATTRIBUTES;
}

bool IsFolder(const std::string& path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// 0, or an errno.
int MakeFolder(const std::string& path) {
    const SystemPath name(path.c_str());
    if (!name.IsUsable()) { return ENOENT; }
    return CreateDirectoryW(name.Text(), nullptr) != 0 ? 0 : ErrnoOf(GetLastError());
}

} // namespace

bool CanNameFile(std::string_view name) {
    const int bytes = static_cast<int>(name.size());
    return name.find('\0') == std::string_view::npos && name.find(':') == std::string_view::npos &&
           MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name.data(), bytes, nullptr, 0) > 0;
}

bool IsRegularFile(const std::string& path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool AreSameFile(const std::string& a, const std::string& b) {
    const FileHandle first = Look(a);
    const FileHandle second = Look(b);
    BY_HANDLE_FILE_INFORMATION x;
    BY_HANDLE_FILE_INFORMATION y;
    return first != nullptr && second != nullptr && GetFileInformationByHandle(first.get(), &x) != 0 &&
           GetFileInformationByHandle(second.get(), &y) != 0 &&
           x.dwVolumeSerialNumber == y.dwVolumeSerialNumber && x.nFileIndexHigh == y.nFileIndexHigh &&
           x.nFileIndexLow == y.nFileIndexLow;
}

std::string AbsolutePath(const std::string& path) {
    const SystemPath name(path.c_str());
    return name.IsUsable() ? Shown(name.Text()) : path;
}

std::string RealPath(const std::string& path) {
    const FileHandle file = Look(path);
    if (file == nullptr) { return AbsolutePath(path); }
    std::wstring real(32768, L'\0');
    const DWORD length = GetFinalPathNameByHandleW(file.get(), real.data(), static_cast<DWORD>(real.size()),
                                                   FILE_NAME_NORMALIZED);
    if (length == 0 || length >= real.size()) { return AbsolutePath(path); }
    real.resize(length);
    return Shown(real);
}

bool MakeFolders(const std::string& path, std::string* why) {
    if (IsFolder(path)) { return true; }
    int error = MakeFolder(path);
    const std::size_t separator = path.find_last_of("/\\");
    if (error == ENOENT && separator != std::string::npos && separator > 0) {
        if (!MakeFolders(path.substr(0, separator), why)) { return false; }
        error = MakeFolder(path);
    }
    if (error == 0 || IsFolder(path)) { return true; }
    *why = std::strerror(error);
    return false;
}

void MakePrivateFolder(const std::string& path) {
    MakeFolder(path); // below a user's own folder, whose rights it takes over
}

int RemoveFile(const std::string& path) {
    const SystemPath name(path.c_str());
    if (!name.IsUsable() || DeleteFileW(name.Text()) != 0) { return 0; }
    const int error = ErrnoOf(GetLastError());
    return error == ENOENT ? 0 : error;
}

} // namespace tarnwick
