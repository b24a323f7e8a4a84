#include "tools/open/places.h"

#include "platform/paths.h"
#include "platform/programs.h"

#include <QCryptographicHash>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace tarnwick::tools {

namespace {

namespace fs = std::filesystem;

constexpr int kHashDigits = 16;

std::string CacheFolder() {
    const char* const cache = std::getenv("XDG_CACHE_HOME");
    // The rules for this variable say that a relative path doesn't count.
    if (cache != nullptr && *cache == '/') { return cache; }
    const char* const home = std::getenv("HOME");
    return std::string(home != nullptr ? home : "") + "/.cache";
}

} // namespace

std::string PreparedFolder(const std::string& file) {
    std::error_code error;
    const std::string path = fs::weakly_canonical(file, error).string();
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const std::string& hashed = error ? file : path;
    hash.addData(QByteArrayView(hashed.data(), static_cast<qsizetype>(hashed.size())));
    return CacheFolder() + "/tarnwick/prepared/" + hash.result().toHex().left(kHashDigits).toStdString();
}

std::string OwnProgram(const std::string& name) {
    std::string beside = ProgramIn(FolderOf(tarnwick::OwnProgram()), name);
    return beside.empty() ? name : beside;
}

void RemoveUnfinished(const std::string& folder) {
    // As WholeFile names what it writes.
    const std::string start = ".tarnwick-" + std::to_string(getpid()) + "-";
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, error);
    while (!error && entry != fs::recursive_directory_iterator()) {
        const fs::path path = entry->path();
        entry.increment(error);
        std::error_code ignored; // it may be finished by now
        if (path.filename().string().starts_with(start)) { fs::remove(path, ignored); }
    }
}

} // namespace tarnwick::tools
