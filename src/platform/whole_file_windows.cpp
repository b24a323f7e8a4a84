#include "platform/whole_file.h"

#include "platform/system_path_windows.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tarnwick {

namespace {

constexpr int kMostNames = 100;
constexpr std::size_t kLargestPiece = std::size_t{1} << 30;
constexpr int kMostRenames = 50; // with a pause of 10 ms between them

HANDLE HandleOf(std::intptr_t file) {
    return reinterpret_cast<HANDLE>(file);
}

// The handle, or -1 and errno.
std::intptr_t Create(const char* path, DWORD disposition) {
    const SystemPath name(path);
    if (!name.IsUsable()) {
        errno = ENOENT;
        return -1;
    }
    HANDLE const file = CreateFileW(name.Text(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                    disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        errno = ErrnoOf(GetLastError());
        return -1;
    }
    return reinterpret_cast<std::intptr_t>(file);
}

// The attributes of what has that name, INVALID_FILE_ATTRIBUTES for nothing.
DWORD LookAt(const SystemPath& name, bool* isEmpty) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (GetFileAttributesExW(name.Text(), GetFileExInfoStandard, &data) == 0) {
        return INVALID_FILE_ATTRIBUTES;
    }
    *isEmpty = data.nFileSizeLow == 0 && data.nFileSizeHigh == 0;
    return data.dwFileAttributes;
}

// Tries for a while: a virus scanner or an indexer may hold a new or changed file for a moment.
bool Rename(const SystemPath& from, const SystemPath& to) {
    for (int attempt = 0; attempt < kMostRenames; ++attempt) {
        if (MoveFileExW(from.Text(), to.Text(), MOVEFILE_REPLACE_EXISTING) != 0) { return true; }
        const DWORD error = GetLastError();
        errno = ErrnoOf(error);
        if (error != ERROR_SHARING_VIOLATION && error != ERROR_ACCESS_DENIED) { return false; }
        Sleep(10);
    }
    return false;
}

} // namespace

WholeFile::WholeFile(const char* path, Empty empty) : path_(), neighbour_() {
    const std::size_t length = std::strlen(path);
    const SystemPath name(path);
    if (length >= kPathRoom || !name.IsUsable()) {
        error_ = length >= kPathRoom ? ENAMETOOLONG : ENOENT;
        return;
    }
    std::memcpy(path_, path, length + 1);
    bool isEmpty = false;
    const DWORD attributes = LookAt(name, &isEmpty);
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    const bool isLink = exists && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    const bool isFolder = exists && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (isFolder || (exists && (attributes & FILE_ATTRIBUTE_READONLY) != 0)) {
        error_ = isFolder ? EISDIR : EACCES;
        return;
    }
    if (isLink || (exists && empty == Empty::kFilled && isEmpty)) {
        file_ = Create(path, TRUNCATE_EXISTING);
        if (file_ < 0) { Fail(); }
        return;
    }
    const char* const separator = std::max(std::strrchr(path_, '/'), std::strrchr(path_, '\\'));
    const int folder = separator != nullptr ? static_cast<int>(separator + 1 - path_) : 0;
    for (int number = 0; number < kMostNames && file_ < 0; ++number) {
        const int written = std::snprintf(neighbour_, kPathRoom, "%.*s.tarnwick-%lu-%d", folder, path_,
                                          GetCurrentProcessId(), number);
        if (written < 0 || static_cast<std::size_t>(written) >= kPathRoom) {
            errno = ENAMETOOLONG;
            break;
        }
        file_ = Create(neighbour_, CREATE_NEW);
        if (file_ < 0 && errno != EEXIST) { break; }
    }
    if (file_ < 0) {
        Fail();
        neighbour_[0] = '\0';
    }
}

void WholeFile::Write(const void* bytes, std::size_t count) {
    const char* next = static_cast<const char*>(bytes);
    while (count > 0 && error_ == 0) {
        DWORD written = 0;
        const auto piece = static_cast<DWORD>(std::min(count, kLargestPiece));
        if (WriteFile(HandleOf(file_), next, piece, &written, nullptr) == 0) {
            errno = ErrnoOf(GetLastError());
            Fail();
            return;
        }
        next += written;
        count -= written;
    }
}

void WholeFile::GoTo(std::uint64_t offset) {
    LARGE_INTEGER place;
    place.QuadPart = static_cast<LONGLONG>(offset);
    if (error_ == 0 && SetFilePointerEx(HandleOf(file_), place, nullptr, FILE_BEGIN) == 0) {
        errno = ErrnoOf(GetLastError());
        Fail();
    }
}

int WholeFile::Close() {
    if (file_ < 0) { return error_; }
    const bool inPlace = neighbour_[0] == '\0';
    if (inPlace && error_ != 0) {
        // Half a text in a linked file is worse than none.
        LARGE_INTEGER start{};
        SetFilePointerEx(HandleOf(file_), start, nullptr, FILE_BEGIN);
        SetEndOfFile(HandleOf(file_));
    }
    if (CloseHandle(HandleOf(file_)) == 0) {
        errno = ErrnoOf(GetLastError());
        Fail();
    }
    file_ = -1;
    if (inPlace) { return error_; }
    const SystemPath neighbour(neighbour_);
    if (error_ == 0 && !Rename(neighbour, SystemPath(path_))) { Fail(); }
    if (error_ != 0) { DeleteFileW(neighbour.Text()); }
    return error_;
}

} // namespace tarnwick
