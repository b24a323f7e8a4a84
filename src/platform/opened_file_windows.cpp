#include "platform/opened_file.h"

#include "platform/system_path_windows.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>

namespace tarnwick {

namespace {

HANDLE HandleOf(std::intptr_t file) {
    return reinterpret_cast<HANDLE>(file);
}

// Whether opening failed because of the path, not because the system lacks something.
bool IsOfThePath(int error) {
    return error == ENOENT || error == ENOTDIR || error == EACCES || error == ENAMETOOLONG;
}

} // namespace

OpenedFile::OpenedFile(const char* path) {
    const SystemPath name(path);
    if (!name.IsUsable()) {
        errno = ENOENT;
        return;
    }
    // As on other systems, other programs may write, rename and remove the file meanwhile.
    HANDLE const file =
        CreateFileW(name.Text(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        errno = ErrnoOf(GetLastError());
        failure_ = IsOfThePath(errno) ? 0 : errno;
        const DWORD attributes = GetFileAttributesW(name.Text());
        const bool isFolder =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (isFolder) { errno = 0; } // nothing failed
        return;
    }
    LARGE_INTEGER size{};
    const bool isOnDisk = GetFileType(file) == FILE_TYPE_DISK;
    if (isOnDisk && GetFileSizeEx(file, &size) == 0) { failure_ = errno = ErrnoOf(GetLastError()); }
    if (!isOnDisk || failure_ != 0) {
        CloseHandle(file);
        return;
    }
    file_ = reinterpret_cast<std::intptr_t>(file);
    size_ = static_cast<std::uint64_t>(size.QuadPart);
}

OpenedFile::~OpenedFile() {
    if (IsOpen()) { CloseHandle(HandleOf(file_)); }
}

std::size_t OpenedFile::ReadAt(std::uint64_t offset, void* buffer, std::size_t bytes, int* error) const {
    constexpr std::size_t kLargestPiece = std::size_t{1} << 30;
    std::size_t done = 0;
    *error = 0;
    while (done < bytes) {
        const std::uint64_t from = offset + done;
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(from);
        place.OffsetHigh = static_cast<DWORD>(from >> 32);
        DWORD got = 0;
        if (ReadFile(HandleOf(file_), static_cast<char*>(buffer) + done,
                     static_cast<DWORD>(std::min(bytes - done, kLargestPiece)), &got, &place) == 0) {
            const DWORD failure = GetLastError();
            if (failure != ERROR_HANDLE_EOF) { *error = ErrnoOf(failure); }
            break;
        }
        if (got == 0) { break; }
        done += got;
    }
    return done;
}

} // namespace tarnwick
