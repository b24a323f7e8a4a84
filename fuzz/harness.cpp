#include "harness.h"

#include "render/safe_indices.h"
#include "report/report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace tarnwick::fuzz {

namespace {

constexpr std::size_t kMostFiles = 12;

// A name without folders, of letters that every file system takes.
std::string PlainName(std::string_view name) {
    std::string plain(name.substr(0, 40));
    for (char& c : plain) {
        const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                             c == '.' || c == '-';
        if (!isPlain) { c = '_'; }
    }
    return plain.empty() || plain == "." || plain == ".." ? "_" : plain;
}

} // namespace

void Finding(const char* what) {
    std::fprintf(stderr, "finding: %s\n", what);
    std::abort();
}

Folder& Folder::Own() {
    static Folder folder;
    return folder;
}

Folder::Folder() {
    const char* const base = std::getenv("TMPDIR");
    path_ = std::string(base != nullptr ? base : "/dev/shm") + "/tarnwick-fuzz-XXXXXX";
    if (mkdtemp(path_.data()) == nullptr) { std::abort(); }
    path_ += '/';
}

Folder::~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string Folder::Write(const std::string& name, std::string_view bytes) {
    const std::string path = path_ + name;
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    if (file == nullptr || std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) { std::abort(); }
    std::fclose(file);
    written_.push_back(path);
    return path;
}

void Folder::Clear() {
    for (const std::string& path : written_) { std::remove(path.c_str()); }
    written_.clear();
}

std::vector<std::string> Folder::WriteBundle(std::string_view bundle, const std::string& firstName) {
    Clear();
    std::vector<std::string> paths;
    std::string name = firstName;
    bool atMark = bundle.starts_with("@@");
    while (paths.size() < kMostFiles) {
        if (atMark) {
            const std::size_t end = std::min(bundle.find('\n'), bundle.size());
            name = PlainName(bundle.substr(2, end - 2));
            bundle.remove_prefix(std::min(end + 1, bundle.size()));
        }
        const std::size_t next = bundle.find("\n@@");
        paths.push_back(Write(name, bundle.substr(0, next == std::string_view::npos ? next : next + 1)));
        if (next == std::string_view::npos) { break; }
        bundle.remove_prefix(next + 1);
        atMark = true;
    }
    return paths;
}

void Touch(const SceneView& view) {
    const std::string report = SceneReport(view, "", nullptr, false);
    if (report.empty() || report.back() != '\n') { Finding("a scene report without its end"); }
    SafeIndices safe;
    safe.Check(view.drawList, view.resultMesh);
}

} // namespace tarnwick::fuzz
