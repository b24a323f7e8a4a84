// The one sentence that a report begins with.

#include "check/check_path.h"
#include "prepare/whole.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

namespace tarnwick {

namespace {

// Placed parts under `root`: products with a shape, and those that use no others. Circles count once.
template <class Products>
std::int64_t CountPlaced(const Products& products, std::size_t root) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / 2;
    std::vector<std::int64_t> counts(products.size(), -1);
    std::vector<std::pair<std::size_t, std::size_t>> open{{root, 0}};
    counts[root] = 0;
    while (!open.empty()) {
        auto& [place, next] = open.back();
        const auto& product = products[place];
        if (next < product.uses.size()) {
            const std::size_t child = product.uses[next++].child;
            if (counts[child] < 0) {
                counts[child] = 0;
                open.emplace_back(child, 0);
            }
            continue;
        }
        std::int64_t sum = !product.shape.empty() || product.uses.empty() ? 1 : 0;
        for (const auto& use : product.uses) { sum = std::min(kMost, sum + counts[use.child]); }
        counts[place] = sum;
        open.pop_back();
    }
    return counts[root];
}

const Finding* FirstOf(const CheckReport& report, std::initializer_list<FindingKind> kinds) {
    const auto found = std::find_if(report.findings.begin(), report.findings.end(), [&](const Finding& f) {
        return std::find(kinds.begin(), kinds.end(), f.kind) != kinds.end();
    });
    return found != report.findings.end() ? &*found : nullptr;
}

std::string Counted(std::int64_t count, const char* one, const char* many) {
    return Grouped(count) + " " + (count == 1 ? one : many);
}

std::string ShownSummary(const CheckReport& report) {
    const LoadOutcome& outcome = report.outcome;
    const std::string triangles = Counted(outcome.triangles, "triangle", "triangles");
    if (outcome.visible == 0) {
        return "Shows nothing that can be seen: " + triangles +
               (outcome.triangles == 1 ? " has" : ", all of") + " opacity 0";
    }
    if (report.elementsDrawn > 0) {
        return report.elementsDrawn < report.totals.elements
                   ? "Shows " + Grouped(report.elementsDrawn) + " of " +
                         Counted(report.totals.elements, "element", "elements")
                   : "Shows all of its " + Counted(report.elementsDrawn, "element", "elements");
    }
    const std::int64_t parts = report.totals.parts;
    if (outcome.parts < parts) {
        return "Shows " + Grouped(outcome.parts) + " of " + Counted(parts, "part", "parts") + ", " +
               triangles;
    }
    const bool isLossy = std::any_of(report.findings.begin(), report.findings.end(),
                                     [](const Finding& f) { return TextOf(f.kind).isLoss; });
    const std::string what = parts > 1 ? Counted(parts, "part", "parts") + ", " + triangles : triangles;
    if (isLossy) { return "Shows " + what + ", which isn't all that the file holds"; }
    return (parts > 1 ? "Shows all " : "Shows all of its ") + what;
}

std::string HiddenSummary(const CheckReport& report) {
    const ShapeTotals& totals = report.totals;
    const std::int64_t exact = totals.exactSolids + totals.exactSurfaces;
    if (totals.tessellated == 0 && exact > 0) {
        std::string text =
            "No tessellated shape: " + ExactShapeText(static_cast<std::size_t>(totals.exactSolids),
                                                      static_cast<std::size_t>(totals.exactSurfaces));
        return text + " in " + (totals.files == 1 ? "one file" : Counted(totals.files, "file", "files"));
    }
    if (totals.elements > 0) {
        return "Shows none of its " + Counted(totals.elements, "element", "elements");
    }
    if (totals.tessellated > 0) {
        return totals.parts > 1 ? "Shows none of its " + Counted(totals.parts, "part", "parts")
                                : "Shows none of its tessellated shape";
    }
    const auto lost = std::count_if(report.findings.begin(), report.findings.end(),
                                    [](const Finding& f) { return f.kind == FindingKind::kUnread; });
    if (lost > 0) {
        const std::string parts =
            totals.parts > 1 ? "none of its " + Grouped(totals.parts) + " parts" : "nothing";
        return "Shows " + parts + ": " + Counted(lost, "file", "files") + " can't be read";
    }
    return "Shows nothing: there is no shape in the file";
}

} // namespace

void CountShape(const prepare::ShapeItem& item, ShapeTotals* totals) {
    switch (item.kind) {
    case prepare::ShapeKind::kTessellated:
        ++totals->tessellated;
        break;
    case prepare::ShapeKind::kElements:
        ++totals->elements;
        break;
    case prepare::ShapeKind::kExact:
        ++(item.isSurface ? totals->exactSurfaces : totals->exactSolids);
    }
}

std::string Grouped(std::int64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3; i -= 3) { digits.insert(i - 3, ","); }
    return digits;
}

void CountParts(CheckReport* report) {
    ShapeTotals& totals = report->totals;
    const FileKind kind = KindToCheck(report->path);
    if (kind == FileKind::kArchive) { totals.parts = std::max<std::int64_t>(report->placedInTree, 0); }
    if (kind != FileKind::kStep && kind != FileKind::kStepXml) { return; }
    if (kind == FileKind::kStep && report->files.size() == 1) {
        const prepare::FileStructure& top = report->top;
        for (const std::size_t root : top.roots) {
            const prepare::FileProduct& product = top.products[root];
            const bool isBare = product.shape.empty() && product.uses.empty();
            if (!isBare || top.roots.size() == 1) { totals.parts += CountPlaced(top.products, root); }
        }
        return;
    }
    const prepare::Whole whole = prepare::LoadWhole(report->path, nullptr);
    if (whole.lacksMemory) { report->outcome.lacksMemory = true; }
    totals.parts = std::max<std::int64_t>(report->placedInTree, 0);
    if (whole.products.empty()) { return; }
    totals.parts = std::max(totals.parts, CountPlaced(whole.products, whole.root));
    if (totals.files > 0) { return; }
    // The readers didn't find the files of the parts.
    std::set<std::pair<std::size_t, std::uint64_t>> seen;
    std::set<std::size_t> files;
    for (const prepare::WholeProduct& product : whole.products) {
        for (const prepare::ShapeItem& item : product.shape) {
            if (!seen.emplace(product.file, item.item).second) { continue; }
            files.insert(product.file);
            CountShape(item, &totals);
        }
    }
    totals.files = static_cast<std::int64_t>(files.size());
}

std::string SummaryOf(const CheckReport& report) {
    const LoadOutcome& outcome = report.outcome;
    const Finding* first = FirstOf(report, {FindingKind::kTooLong});
    if (first != nullptr) { return "Ends the program: " + first->text; }
    first = FirstOf(report, {FindingKind::kStands});
    if (first != nullptr) { return "Stops the program for ever: " + first->text; }
    first = FirstOf(report, {FindingKind::kExtension});
    if (first != nullptr) {
        return outcome.triangles > 0 ? "Isn't taken under this name; a copy: " + ShownSummary(report)
                                     : "Isn't taken under this name, and a copy would show nothing";
    }
    if (outcome.triangles > 0) { return ShownSummary(report); }
    const bool isUntried = outcome.end == LoadOutcome::End::kUnknown;
    if (isUntried && report.findings.empty()) { return "No fault is found, but the load couldn't be tried"; }
    first = FirstOf(report, {FindingKind::kUnread, FindingKind::kHeader, FindingKind::kNoProduct,
                             FindingKind::kDocument});
    if (first != nullptr && first->file == 0 && report.totals.parts <= 1) {
        if (first->kind == FindingKind::kDocument) { return "Shows nothing: the document isn't read whole"; }
        return first->kind == FindingKind::kUnread ? "The file " + first->text
                                                   : "Shows nothing: " + first->text;
    }
    return HiddenSummary(report);
}

} // namespace tarnwick
