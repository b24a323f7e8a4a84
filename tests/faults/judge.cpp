#include "faults/judge.h"

#include <zlib.h>

#include <algorithm>

namespace tarnwick::faults {

namespace {

// Of standard output what has to be right.
std::string ShownOutput(const Case& one, const Ending& ending) {
    const std::string text = WithoutTimes(ending.output);
    if (!one.isLog) { return text; }
    std::string shown;
    for (const std::string& line : LinesOf(text)) {
        if (line.find("CPU tot:") != std::string::npos) { shown += line + '\n'; }
    }
    return shown;
}

std::map<std::string, std::string> ShownFiles(const Ending& ending) {
    std::map<std::string, std::string> files;
    for (const auto& [name, text] : ending.files) { files[name] = WithoutTimes(text); }
    return files;
}

// What was prepared from what: without it the next run prepares again, and no more.
bool IsRecord(const std::string& name) {
    return name.ends_with("/prepared.txt");
}

std::map<std::string, std::string> WithoutRecords(std::map<std::string, std::string> files) {
    std::erase_if(files, [](const auto& file) { return IsRecord(file.first); });
    return files;
}

std::string Inflated(const std::string& packed) {
    std::string text(1000 * packed.size(), '\0');
    uLongf size = text.size();
    const int state = uncompress(reinterpret_cast<Bytef*>(text.data()), &size,
                                 reinterpret_cast<const Bytef*>(packed.data()), packed.size());
    text.resize(state == Z_OK ? size : 0);
    return text;
}

bool IsWholeText(const std::string& name, const std::string& text) {
    if (name.ends_with(".stpz")) { return IsWholeText(name.substr(0, name.size() - 1), Inflated(text)); }
    if (name.ends_with(".json")) { return text.ends_with("}\n") || text.ends_with("]\n"); }
    return text.ends_with(name.ends_with(".stp") ? "END-ISO-10303-21;\n" : "\n");
}

bool IsHalfWritten(const Case& one, const Undisturbed& undisturbed,
                   const std::map<std::string, std::string>& files) {
    return std::any_of(files.begin(), files.end(), [&](const auto& file) {
        const auto& [name, text] = file;
        const auto whole = undisturbed.files.find(name);
        const bool isKnown = whole != undisturbed.files.end() || IsRecord(name) ||
                             (one.mayPrepare && std::filesystem::path(name).extension() == ".stp");
        if (!isKnown) { return true; }
        if (whole != undisturbed.files.end() && text == whole->second) { return false; }
        // What is written of a smaller scene is another text, but a whole one.
        return !one.writesText || !IsWholeText(name, text);
    });
}

bool SaysMemory(const std::string& text) {
    return text.find("memory") != std::string::npos || text.find("Memory") != std::string::npos;
}

bool WantsWordMemory(Fault fault) {
    return fault == Fault::kMemory || fault == Fault::kArena || fault == Fault::kMap;
}

std::string FirstNew(const std::string& text, const std::string& before) {
    const std::vector<std::string> known = LinesOf(before);
    for (const std::string& line : LinesOf(text)) {
        if (std::find(known.begin(), known.end(), line) == known.end()) { return line; }
    }
    return {};
}

// Whether the fault is told; `line` is the first line that it brought.
Verdict Telling(const Case& one, const Undisturbed& undisturbed, const Ending& ending, const Plan& plan,
                std::string* line) {
    bool memory = one.tellsOnOutput && SaysMemory(ending.output);
    for (const std::string& error : LinesOf(ending.errors)) {
        if (undisturbed.errorLines.contains(WithoutNumbers(error))) { continue; }
        if (line->empty()) { *line = error; }
        memory = memory || SaysMemory(error);
    }
    if (one.tellsOnOutput && line->empty()) { *line = FirstNew(ending.output, undisturbed.output); }
    if (memory) { return Verdict::kTold; }
    if (line->empty() && !one.tellsOnOutput) { return Verdict::kSilent; }
    if (line->empty() && ending.output == undisturbed.output) { return Verdict::kSilent; }
    return WantsWordMemory(plan.fault) ? Verdict::kOtherWords : Verdict::kTold;
}

} // namespace

const char* NameOf(Verdict verdict) {
    constexpr const char* names[kVerdicts] = {"same", "told",   "other words", "silent",      "signal",
                                              "hang", "status", "leak",        "half-written"};
    return names[static_cast<int>(verdict)];
}

bool IsGood(Verdict verdict) {
    return verdict == Verdict::kSame || verdict == Verdict::kTold;
}

std::string WithoutNumbers(const std::string& line) {
    std::string text;
    for (const char c : line) {
        const bool digit = c >= '0' && c <= '9';
        if (!digit) {
            text += c;
        } else if (text.empty() || text.back() != '9') {
            text += '9';
        }
    }
    return text;
}

std::string WithoutNames(const std::string& line) {
    std::string text;
    for (std::size_t start = 0; start < line.size();) {
        const std::size_t end = std::min(line.find_first_of(" :", start), line.size());
        const std::string word = line.substr(start, end - start);
        text += word.find(".stp") != std::string::npos ? "FILE" : word;
        if (end < line.size()) { text += line[end]; }
        start = end + 1;
    }
    return WithoutNumbers(text);
}

bool AddUndisturbed(const Case& one, const Ending& ending, const Plan& plan, bool isFirst, Undisturbed* all) {
    if (isFirst) {
        all->status = ending.status;
        all->output = ShownOutput(one, ending);
        all->files = ShownFiles(ending);
        all->blocks = plan.blocks;
        all->pageBytes = plan.pageBytes;
    }
    for (const std::string& line : LinesOf(ending.errors)) { all->errorLines.insert(WithoutNumbers(line)); }
    all->blocks = std::max<std::int64_t>(all->blocks, plan.blocks);
    all->pageBytes = std::max<std::int64_t>(all->pageBytes, plan.pageBytes);
    return !ending.hangs && ending.signal == 0 && all->status == ending.status &&
           all->output == ShownOutput(one, ending) && all->files == ShownFiles(ending) && plan.ended != 0;
}

Verdict Judge(const Case& one, const Undisturbed& undisturbed, const Ending& ending, const Plan& plan,
              std::string* line) {
    if (ending.hangs) { return Verdict::kHang; }
    if (ending.signal != 0) { return Verdict::kSignal; }
    if (ending.status > 2) { return Verdict::kStatus; }
    const std::map<std::string, std::string> files = ShownFiles(ending);
    if (IsHalfWritten(one, undisturbed, files)) { return Verdict::kHalfWritten; }
    // What another program gave at a second try may be other triangles of the same shape.
    const bool same = ending.status == undisturbed.status && ShownOutput(one, ending) == undisturbed.output &&
                      (!one.other.empty() || WithoutRecords(files) == WithoutRecords(undisturbed.files));
    const bool isPrepared = one.mayPrepare && ending.status == undisturbed.status && !files.empty() &&
                            ending.errors.find("missing") == std::string::npos;
    const Verdict verdict =
        same || isPrepared ? Verdict::kSame : Telling(one, undisturbed, ending, plan, line);
    const bool leaks =
        plan.ended != 0 && (plan.blocks > undisturbed.blocks || plan.pageBytes > undisturbed.pageBytes);
    return IsGood(verdict) && leaks ? Verdict::kLeak : verdict;
}

} // namespace tarnwick::faults
