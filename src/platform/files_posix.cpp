#include "platform/files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace tarnwick {

namespace fs = std::filesystem;

bool CanNameFile(std::string_view name) {
    return name.find('\0') == std::string_view::npos;
}

bool IsRegularFile(const std::string& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

bool AreSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return fs::equivalent(a, b, error);
}

std::string AbsolutePath(const std::string& path) {
    std::error_code error;
    return fs::absolute(path, error).string();
}

std::string RealPath(const std::string& path) {
    std::error_code error;
    const fs::path real = fs::weakly_canonical(path, error);
    return error ? path : real.string();
}

bool MakeFolders(const std::string& path, std::string* why) {
    std::error_code error;
    fs::create_directories(path, error);
    if (error) { *why = error.message(); }
    return !error;
}

void MakePrivateFolder(const std::string& path) {
    mkdir(path.c_str(), 0700);
}

int RemoveFile(const std::string& path) {
    return unlink(path.c_str()) == 0 || errno == ENOENT ? 0 : errno;
}

} // namespace tarnwick
