#include "prepare/shape/styles.h"

#include "exchange/arguments.h"
#include "exchange/string_text.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace tarnwick::prepare {

namespace {

// What leads from a styled item to a colour; curves, points and texts have styles of their own.
bool LeadsOn(std::string_view keyword) {
    static constexpr std::array<std::string_view, 8> kNames{
        "PRESENTATION_STYLE_ASSIGNMENT", "PRESENTATION_STYLE_BY_CONTEXT",
        "SURFACE_STYLE_USAGE",           "SURFACE_SIDE_STYLE",
        "SURFACE_STYLE_FILL_AREA",       "FILL_AREA_STYLE",
        "SURFACE_STYLE_RENDERING",       "SURFACE_STYLE_RENDERING_WITH_PROPERTIES"};
    return std::find(kNames.begin(), kNames.end(), keyword) != kNames.end();
}

// The most entities of one style that are looked at.
constexpr int kMostEntities = 256;

double Part(double value) {
    return std::clamp(value, 0.0, 1.0);
}

} // namespace

Styles::Styles(const ExchangeFile& file) : file_(file) {
    const auto addAll = [&](std::string_view keyword, bool isOverriding) {
        for (const std::uint32_t place : file.OfKeyword(keyword)) {
            Add(RecordOf(file.TextOf(file.Instances()[place])).arguments, isOverriding);
        }
    };
    addAll("STYLED_ITEM", false);
    addAll("OVER_RIDING_STYLED_ITEM", true);
    for (const std::uint32_t place : file.ComplexInstances()) {
        const std::string_view text = file.TextOf(file.Instances()[place]);
        const Record record = FindRecord(text, "STYLED_ITEM");
        if (!record.IsFound()) { continue; }
        // The name is in another record.
        std::string arguments = "'',";
        arguments += record.arguments;
        const std::size_t size = arguments.size();
        arguments.append(kBytesPadding, ' ');
        Add(std::string_view(arguments).substr(0, size),
            FindRecord(text, "OVER_RIDING_STYLED_ITEM").IsFound());
    }
}

void Styles::Add(std::string_view arguments, bool isOverriding) {
    const Arguments parts(arguments);
    const std::uint64_t item = ReferenceOf(parts[2]);
    if (item == 0) { return; }
    std::vector<std::uint64_t> references;
    AppendReferences(parts[1], &references);
    if (references.empty()) { return; }
    if (references.size() > 1) {
        std::vector<std::uint64_t> forAll;
        for (const std::uint64_t reference : references) {
            const Assignment assignment = ReadAssignment(reference);
            if (assignment.context != 0) {
                AddStyle(item, assignment, isOverriding);
            } else {
                forAll.push_back(reference);
            }
        }
        return AddStyle(item, {Read(std::move(forAll)), 0}, isOverriding);
    }
    // Millions of faces share a few assignments.
    const Assignment* known = byAssignment_.Find(references[0]);
    if (known == nullptr) {
        byAssignment_.Add(references[0], ReadAssignment(references[0]));
        known = byAssignment_.Find(references[0]);
    }
    AddStyle(item, *known, isOverriding);
}

void Styles::AddStyle(std::uint64_t item, const Assignment& assignment, bool isOverriding) {
    if (!assignment.style) { return; }
    if (assignment.context != 0) {
        inContexts_.try_emplace({assignment.context, item}, *assignment.style);
    } else if (ItemStyle* const known = styles_.Find(item); known == nullptr) {
        styles_.Add(item, {*assignment.style, isOverriding});
    } else if (isOverriding && !known->isOverriding) {
        *known = {*assignment.style, true};
    }
}

Styles::Assignment Styles::ReadAssignment(std::uint64_t number) const {
    Assignment assignment{Read({number}), 0};
    const Instance* const instance = file_.Find(number);
    if (instance == nullptr || file_.KeywordOf(*instance) != "PRESENTATION_STYLE_BY_CONTEXT") {
        return assignment;
    }
    const std::uint64_t context = ReferenceOf(Arguments(RecordOf(file_.TextOf(*instance)).arguments)[1]);
    const Instance* const use = file_.Find(context);
    if (use != nullptr && file_.KeywordOf(*use) == "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION") {
        assignment.context = context;
    }
    return assignment;
}

const SurfaceStyle* Styles::Of(std::uint64_t item, std::uint64_t context) {
    if (context != 0) {
        const auto found = inContexts_.find({context, item});
        if (found != inContexts_.end()) { return &found->second; }
    }
    const ItemStyle* const style = styles_.Find(item);
    return style != nullptr ? &style->style : nullptr;
}

std::vector<std::pair<std::uint64_t, SurfaceStyle>> Styles::In(std::uint64_t context) const {
    std::vector<std::pair<std::uint64_t, SurfaceStyle>> items;
    for (auto at = inContexts_.lower_bound({context, 0});
         at != inContexts_.end() && at->first.first == context; ++at) {
        items.emplace_back(at->first.second, at->second);
    }
    return items;
}

std::optional<SurfaceStyle> Styles::Read(std::vector<std::uint64_t> open) const {
    std::reverse(open.begin(), open.end());
    std::optional<Colour> rendered;
    std::optional<Colour> filled;
    double transparency = 0;
    for (int i = 0; i < kMostEntities && !open.empty(); ++i) {
        const Instance* const instance = file_.Find(open.back());
        open.pop_back();
        if (instance == nullptr) { continue; }
        const std::string_view keyword = file_.KeywordOf(*instance);
        const Arguments arguments(RecordOf(file_.TextOf(*instance)).arguments);
        if (keyword == "SURFACE_STYLE_TRANSPARENT") {
            transparency = Part(RealOf(arguments[0]).value_or(0));
        } else if (keyword == "FILL_AREA_STYLE_COLOUR") {
            if (!filled) { filled = ReadColour(ReferenceOf(arguments[1])); }
        } else if (LeadsOn(keyword)) {
            if (keyword.starts_with("SURFACE_STYLE_RENDERING") && !rendered) {
                rendered = ReadColour(ReferenceOf(arguments[1]));
            }
            std::vector<std::uint64_t> next;
            AppendReferences(RecordOf(file_.TextOf(*instance)).arguments, &next);
            open.insert(open.end(), next.rbegin(), next.rend());
        }
    }
    const std::optional<Colour> colour = rendered ? rendered : filled;
    if (!colour) { return std::nullopt; }
    return SurfaceStyle{*colour, transparency};
}

std::optional<Colour> Styles::ReadColour(std::uint64_t number) const {
    const Instance* const instance = file_.Find(number);
    if (instance == nullptr) { return std::nullopt; }
    const std::string_view keyword = file_.KeywordOf(*instance);
    const Arguments arguments(RecordOf(file_.TextOf(*instance)).arguments);
    if (keyword == "COLOUR_RGB") {
        const auto red = RealOf(arguments[1]);
        const auto green = RealOf(arguments[2]);
        const auto blue = RealOf(arguments[3]);
        if (!red || !green || !blue) { return std::nullopt; }
        return Colour{Part(*red), Part(*green), Part(*blue)};
    }
    if (!keyword.ends_with("PRE_DEFINED_COLOUR")) { return std::nullopt; }
    static constexpr std::array<std::pair<std::string_view, Colour>, 8> kNamed{{{"red", {1, 0, 0}},
                                                                                {"green", {0, 1, 0}},
                                                                                {"blue", {0, 0, 1}},
                                                                                {"yellow", {1, 1, 0}},
                                                                                {"magenta", {1, 0, 1}},
                                                                                {"cyan", {0, 1, 1}},
                                                                                {"black", {0, 0, 0}},
                                                                                {"white", {1, 1, 1}}}};
    const std::string name = StringOf(arguments[0]);
    for (const auto& [known, colour] : kNamed) {
        if (known == name) { return colour; }
    }
    return std::nullopt;
}

} // namespace tarnwick::prepare
