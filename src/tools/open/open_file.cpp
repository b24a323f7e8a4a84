#include "tools/open/open_file.h"

#include "load/file_kind.h"
#include "platform/child_program.h"
#include "prepare/shape_count.h"
#include "tools/open/places.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>
#include <utility>

namespace tarnwick::tools {

namespace {

constexpr std::chrono::milliseconds kPause(5); // between two looks whether a program has ended

// Whether the viewer shows so many triangles of a file. Asked in a process of its own, which may end badly.
bool Shows(const std::string& file, std::size_t triangles, const std::atomic<bool>* cancel) {
    ChildProgram viewer({OwnProgram("tarnwick-open"), "--shows", std::to_string(triangles), "--", file});
    while (viewer.IsRunning()) {
        if (*cancel) { return false; }
        std::this_thread::sleep_for(kPause);
    }
    return viewer.HasSucceeded();
}

bool IsShownWhole(const std::string& file, FileKind kind, const std::atomic<bool>* cancel) {
    switch (kind) {
    case FileKind::kSummary:
        return true; // there are only boxes in it
    case FileKind::kArchive:
        return Shows(file, 1, cancel); // the full reader doesn't take all of its members
    case FileKind::kStep:
    case FileKind::kStepXml: {
        const prepare::ShapeCount count = prepare::CountShape(file, cancel);
        return count.isAll && Shows(file, std::max<std::size_t>(count.placed, 1), cancel);
    }
    default:
        return false;
    }
}

} // namespace

OpenOutcome FindShown(const std::string& file, const prepare::PrepareOptions& options,
                      const prepare::TellProgress& tell, const std::atomic<bool>* cancel) {
    OpenOutcome outcome;
    std::error_code error;
    const std::string path = std::filesystem::absolute(file, error).string();
    const FileKind kind = FileKindOf(file);
    if (IsShownWhole(path, kind, cancel)) {
        outcome.path = path;
        return outcome;
    }
    if (*cancel) {
        outcome.result.isCancelled = true;
        return outcome;
    }
    outcome.result = prepare::Prepare(path, options, tell, cancel);
    if (outcome.result.isCancelled) { return outcome; }
    if (outcome.result.error.empty()) {
        outcome.path = std::filesystem::absolute(outcome.result.output, error).string();
    } else if (kind != FileKind::kUnknown && Shows(path, 1, cancel)) {
        // Some of it is better than nothing.
        outcome.path = path;
    }
    return outcome;
}

} // namespace tarnwick::tools
