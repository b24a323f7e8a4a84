#include "check/load_trial.h"

#include "platform/forked_work.h"
#include "platform/within_memory.h"
#include "text/one_line.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace tarnwick {

namespace {

constexpr std::size_t kMostErrors = 100;
constexpr std::size_t kLongestLine = 20000; // the rest is cut off
// No line of a load begins so.
constexpr std::string_view kOutcome = "\x01outcome ";
constexpr std::string_view kUnread = "\x01unread ";
constexpr std::string_view kNoMemory = "\x01memory";
constexpr char kBetween = '\x02'; // the fields of such a line

void AddItem(const DrawItem& item, LoadOutcome* outcome) {
    const std::int64_t before = outcome->triangles;
    for (std::int32_t i = 0; i < item.meshCount; ++i) {
        const StepFaceB& mesh = *item.meshes[i];
        outcome->triangles += mesh.triangleCount;
        if (mesh.colour[3] != 0) { outcome->visible += mesh.triangleCount; }
    }
    if (outcome->triangles > before) { ++outcome->parts; }
}

LoadOutcome OutcomeOf(const LoadedScene& loaded) {
    LoadOutcome outcome;
    if (loaded.drawList != nullptr && loaded.resultMesh == nullptr) {
        for (std::int32_t i = 0; i < loaded.drawList->count; ++i) {
            AddItem(*loaded.drawList->items[i], &outcome);
        }
    } else {
        outcome.triangles = outcome.visible = loaded.drawnTriangles;
        outcome.parts = outcome.triangles > 0 ? 1 : 0;
    }
    return outcome;
}

void LoadAndTell(LoadDispatch& dispatch, const std::string& path, const char* rootName, bool useThreads,
                 FileKind kind) {
    const LoadCommands& commands = dispatch.commands;
    if (FileKindOf(path) != FileKind::kUnknown) {
        LoadFile(dispatch, path.c_str(), rootName, useThreads);
    } else if (kind == FileKind::kStepXml) {
        commands.loadStpxFile(dispatch.view, path.c_str(), rootName, useThreads);
    } else {
        commands.loadStepFile(dispatch.view, path.c_str(), useThreads);
    }
    const LoadOutcome outcome = OutcomeOf(dispatch.view.loaded);
    std::string told = "\n";
    for (const UnreadFile& file : dispatch.view.loaded.unreadFiles) {
        told.append(kUnread).append(OnOneLine(file.path)).append(1, kBetween);
        told.append(OnOneLine(file.productName)).append(1, kBetween).append(file.reason).append("\n");
    }
    told.append(kOutcome).append(std::to_string(outcome.triangles)).append(" ");
    told.append(std::to_string(outcome.visible)).append(" ").append(std::to_string(outcome.parts));
    told.append("\n");
    std::fwrite(told.data(), 1, told.size(), stderr);
}

void TakeLine(std::string_view line, LoadOutcome* outcome) {
    if (line.starts_with(kOutcome)) {
        const std::string numbers(line.substr(kOutcome.size()));
        long long triangles = 0;
        long long visible = 0;
        long long parts = 0;
        if (std::sscanf(numbers.c_str(), "%lld %lld %lld", &triangles, &visible, &parts) != 3) { return; }
        outcome->end = LoadOutcome::End::kDone;
        outcome->triangles = triangles;
        outcome->visible = visible;
        outcome->parts = parts;
    } else if (line.starts_with(kUnread)) {
        const std::string_view fields = line.substr(kUnread.size());
        const std::size_t first = fields.find(kBetween);
        const std::size_t second = fields.find(kBetween, first + 1);
        if (second == std::string_view::npos) { return; }
        outcome->unread.push_back({std::string(fields.substr(0, first)),
                                   std::string(fields.substr(first + 1, second - first - 1)),
                                   std::string(fields.substr(second + 1))});
    } else if (line == kNoMemory) {
        outcome->end = LoadOutcome::End::kDone;
        outcome->lacksMemory = true;
    } else if (line.starts_with("<E> ")) {
        if (line.find(": reading stands still, ") != std::string_view::npos) {
            outcome->end = LoadOutcome::End::kStands;
        }
        if (outcome->errors.size() < kMostErrors) { outcome->errors.emplace_back(line.substr(4)); }
    }
}

// Takes what the load tells, to its end or until it stands still: it writes nothing more then, and its end of
// the pipe stays open.
void Hear(ForkedWork* load, LoadOutcome* outcome) {
    std::string line;
    int c = EOF;
    while (outcome->end != LoadOutcome::End::kStands && (c = load->Next()) != EOF) {
        if (c != '\n') {
            if (line.size() < kLongestLine) { line.push_back(static_cast<char>(c)); }
            continue;
        }
        TakeLine(line, outcome);
        line.clear();
    }
}

} // namespace

LoadOutcome TryLoad(LoadDispatch& dispatch, const std::string& path, const char* rootName, bool useThreads,
                    FileKind kind) {
    LoadOutcome outcome;
    ForkedWork load([&] {
        if (WithinMemory([&] { LoadAndTell(dispatch, path, rootName, useThreads, kind); })) { return; }
        std::fprintf(stderr, "\n%s\n", kNoMemory.data());
    });
    if (!load.IsThere()) {
        outcome.lacksMemory = load.LacksMemory();
        return outcome;
    }
    if (!WithinMemory([&] { Hear(&load, &outcome); })) {
        load.End(true);
        outcome.end = LoadOutcome::End::kUnknown;
        outcome.lacksMemory = true;
        return outcome;
    }
    load.End(outcome.end == LoadOutcome::End::kStands);
    if (outcome.end == LoadOutcome::End::kUnknown) { outcome.end = LoadOutcome::End::kEnded; }
    return outcome;
}

} // namespace tarnwick
