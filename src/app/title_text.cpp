#include "app/title_text.h"
#include "platform/paths.h"

namespace tarnwick {

namespace {

// Whether all faces fail the alpha test, which drops what is at or below 0.01. Some systems write such an
// alpha into every face of a file.
bool IsAllTransparent(const SceneView& view) {
    if (view.loaded.drawList == nullptr || view.loaded.drawnTriangles == 0) { return false; }
    for (std::int32_t i = 0; i < view.loaded.drawList->count; ++i) {
        const DrawItem& item = *view.loaded.drawList->items[i];
        for (std::int32_t j = 0; j < item.meshCount; ++j) {
            if (item.meshes[j] != nullptr && item.meshes[j]->colour[3] > 0.01f) { return false; }
        }
    }
    return true;
}

// What is missing, in words; empty when nothing is.
std::string Absence(const SceneView& view) {
    if (const char* const reason = OwnUnreadReason(view)) { return std::string(" (it ") + reason + ')'; }
    const auto& unread = view.loaded.unreadFiles;
    if (unread.size() == 1) { return " (1 file could not be read)"; }
    if (!unread.empty()) { return " (" + std::to_string(unread.size()) + " files could not be read)"; }
    if (view.loaded.drawnTriangles == 0) { return " (no tessellated geometry)"; }
    return IsAllTransparent(view) ? " (all faces are fully transparent)" : "";
}

} // namespace

const char* OwnUnreadReason(const SceneView& view) {
    for (const UnreadFile& file : view.loaded.unreadFiles) {
        if (file.productName.empty()) { return file.reason; }
    }
    return nullptr;
}

std::string TitleText(const std::string& path, const SceneView& view) {
    return path.empty() ? "Tarnwick" : NameOf(path) + " - Tarnwick" + Absence(view);
}

std::string ProgressTitle(const std::string& path, std::int32_t filesRead, std::int32_t filesKnown) {
    return NameOf(path) + " - Tarnwick: reading file " + std::to_string(filesRead) + " of " +
           std::to_string(filesKnown);
}

std::string RefusedTitle(const std::string& titleBefore, const std::string& refusedPath) {
    return titleBefore + " (" + NameOf(refusedPath) + " is not a kind of file that can be shown)";
}

} // namespace tarnwick
