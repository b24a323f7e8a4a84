#include "harness.h"

#include "product/safe_indices.h"
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
    path_ = std::string(base != nullptr ? base : "/dev/shm") + "/tarnwick-fuzz-" +
            std::string(6, 'X'); // mkdtemp replaces these
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

namespace {

// A place where every number that was read ends up, so that no read is left out.
volatile double sink = 0;

template <class T>
void Read(const T* values, std::int64_t count) {
    double sum = 0;
    for (std::int64_t i = 0; i < count; ++i) { sum += static_cast<double>(values[i]); }
    sink = sum;
}

void TouchMesh(const StepFaceB& mesh) {
    if (mesh.vertexCount < 1 || mesh.triangleCount < 0) { Finding("a mesh without vertices"); }
    Read(mesh.vertices, std::int64_t{3} * mesh.vertexCount);
    Read(mesh.normals, std::int64_t{3} * mesh.normalCount);
    Read(mesh.triangles, std::int64_t{3} * mesh.triangleCount);
    Read(mesh.pnindex, mesh.pnindexCount);
}

} // namespace

void Touch(const SceneView& view) {
    for (std::int32_t i = 0; view.loaded.drawList != nullptr && i < view.loaded.drawList->count; ++i) {
        const DrawItem& item = *view.loaded.drawList->items[i];
        if (item.matrix != nullptr) { Read(item.matrix, 16); }
        for (std::int32_t m = 0; m < item.meshCount; ++m) { TouchMesh(*item.meshes[m]); }
    }
    for (std::int32_t i = 0; view.loaded.boxList != nullptr && i < view.loaded.boxList->count; ++i) {
        const BoxItem& box = *view.loaded.boxList->boxes[i];
        Read(box.vertices, std::int64_t{3} * box.vertexCount);
        if (box.matrix != nullptr) { Read(box.matrix, 16); }
    }
    if (const ResultMesh* const mesh = view.loaded.resultMesh) {
        Read(mesh->vertices, std::int64_t{3} * mesh->nodeCount);
        Read(mesh->colours, std::int64_t{4} * mesh->nodeCount);
        Read(mesh->quadIndices, std::int64_t{4} * mesh->quadCount);
    }
    SafeIndices safe;
    safe.Check(view.loaded.drawList, view.loaded.resultMesh);
}

void Report(const SceneView& view) {
    const std::string report = SceneReport(view, "", nullptr, true);
    if (report.empty() || report.back() != '\n') { Finding("a scene report without its end"); }
}

} // namespace tarnwick::fuzz
