#include "geometry/part_reader.h"
#include "p21/keyword_codes.h"
#include "text/parse_real.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnwick {

namespace {

constexpr std::int32_t kColourBits = 12; // of the index of styled items, at least
constexpr std::int32_t kStyleBits = 6;   // of the index of styles, at least
constexpr float kUnused = -1.0f;
constexpr std::int32_t kNoRow = -1;

struct NamedColour {
    char prefix[4];
    float red, green, blue;
};
constexpr NamedColour kNamedColours[] = {
    {"bla", 0, 0, 0}, {"whi", 1, 1, 1}, {"red", 1, 0, 0}, {"gre", 0, 1, 0},
    {"yel", 1, 1, 0}, {"blu", 0, 0, 1}, {"cya", 0, 1, 1}, {"mag", 1, 0, 1},
};

// By three characters, which must be readable; null for a name that isn't known.
const NamedColour* FindNamedColour(const char* name) {
    for (const NamedColour& colour : kNamedColours) {
        if (std::memcmp(name, colour.prefix, 3) == 0) { return &colour; }
    }
    return nullptr;
}

// COLOUR_RGB(name, red, green, blue): the numbers after the first three commas.
void AddRgbRow(TextWalk* walk, std::int32_t id, std::vector<ColourEntry>* rows) {
    double rgb[3];
    walk->GoTo('(');
    walk->PassCommas(1);
    ReadReals(walk, rgb, 3);
    if (walk->overrun) { return; }
    rows->push_back(
        {id, static_cast<float>(rgb[0]), static_cast<float>(rgb[1]), static_cast<float>(rgb[2]), kUnused});
}

// DRAUGHTING_PRE_DEFINED_COLOUR(name), by the first three characters of the name. Any other name makes no
// row.
void AddNamedRow(TextWalk* walk, std::int32_t id, std::vector<ColourEntry>* rows) {
    walk->Enter();
    walk->Step();
    const NamedColour* const colour = FindNamedColour(walk->at);
    if (colour != nullptr) { rows->push_back({id, colour->red, colour->green, colour->blue, kUnused}); }
}

// One row for each colour of the file. A number that isn't there ends the table, not just its own row.
bool ReadColourRows(PartReader& reader) {
    for (const std::int32_t id : reader.model.colourIds) {
        const P42Ent* const entity = reader.model.Find(id);
        if (entity == nullptr) { break; }
        TextWalk walk = reader.model.WalkFrom(entity);
        if (entity->code == code::kColourRgb) {
            AddRgbRow(&walk, id, &reader.scratch.colours);
        } else if (entity->code == code::kDraughtingPreDefinedColour) {
            AddNamedRow(&walk, id, &reader.scratch.colours);
        }
        if (walk.overrun) { return false; }
    }
    return true;
}

// The rows of a colour, in the table's order. Those that styles use stand first, since a style takes the
// first one that is free; which of them has an alpha is looked up, since a search for each style would cost
// the product of styles and rows.
struct ColourRows {
    std::vector<std::int32_t> places;
    std::size_t used = 0; // the rest is free
    std::unordered_map<float, std::int32_t> usedByAlpha;
};
using RowsOfColour = std::unordered_map<std::int32_t, ColourRows>;

// The row of a colour with an alpha: one that no style uses yet or that has this alpha, else a new one.
// kNoRow when the table doesn't have the colour.
std::int32_t RowOf(std::int32_t colourId, float alpha, std::vector<ColourEntry>* rows,
                   RowsOfColour* rowsOfColour) {
    const auto found = rowsOfColour->find(colourId);
    if (found == rowsOfColour->end()) { return kNoRow; }
    ColourRows& own = found->second;
    const auto known = own.usedByAlpha.find(alpha);
    if (known != own.usedByAlpha.end()) {
        (*rows)[static_cast<std::size_t>(known->second)].alpha = alpha; // zeros differ in their sign
        return known->second;
    }
    if (own.used == own.places.size()) {
        ColourEntry added = (*rows)[static_cast<std::size_t>(own.places.back())];
        added.alpha = kUnused;
        own.places.push_back(static_cast<std::int32_t>(rows->size()));
        rows->push_back(added);
    }
    const std::int32_t place = own.places[own.used];
    (*rows)[static_cast<std::size_t>(place)].alpha = alpha;
    if (alpha != kUnused) { // a row with that alpha stays free
        if (alpha == alpha) { own.usedByAlpha.emplace(alpha, place); }
        ++own.used;
    }
    return place;
}

// To the second argument of the line.
void GoToSecondArgument(TextWalk* walk) {
    walk->Enter();
    walk->SkipArguments(1);
    walk->SkipBlanksAndLineFeeds();
}

// The first reference after the first "(" of the line.
std::int32_t FirstReference(TextWalk* walk) {
    walk->GoTo('(');
    return ReadReference(walk);
}

constexpr int kResolved = 0;
constexpr int kOtherShape = 1; // also of a chain that leads past the end of the text

// SURFACE_STYLE_FILL_AREA, FILL_AREA_STYLE, FILL_AREA_STYLE_COLOUR.
int ResolveFillArea(const StepModel& model, TextWalk walk, std::int32_t* colourId) {
    for (int hop = 0; hop < 2; ++hop) {
        const std::int32_t next = FirstReference(&walk);
        if (walk.overrun) { return kOtherShape; }
        const P42Ent* const entity = model.Find(next);
        if (entity == nullptr) { return kOtherShape; }
        walk = model.WalkFrom(entity);
    }
    GoToSecondArgument(&walk);
    *colourId = ReadReference(&walk);
    return walk.overrun ? kOtherShape : kResolved;
}

// SURFACE_STYLE_RENDERING_WITH_PROPERTIES and the first of its properties.
int ResolveRendering(const StepModel& model, TextWalk walk, std::int32_t* colourId, float* alpha) {
    GoToSecondArgument(&walk);
    *colourId = ReadReference(&walk);
    // Without properties this is a comma of an entity further on, and what stands there becomes the alpha.
    walk.GoToArgumentComma();
    walk.Step();
    walk.SkipBlanksAndLineFeeds();
    walk.Step();
    const std::int32_t property = ReadReference(&walk);
    if (walk.overrun) { return kOtherShape; }
    const P42Ent* const entity = model.Find(property);
    if (entity == nullptr) { return kOtherShape; }
    walk = model.WalkFrom(entity);
    walk.Enter();
    walk.SkipBlanksAndLineFeeds();
    if (walk.overrun) { return kOtherShape; }
    *alpha = static_cast<float>(ParseReal(walk.at));
    return kResolved;
}

} // namespace

int ResolveStyle(const StepModel& model, std::int32_t styleId, std::int32_t* colourId, float* alpha) {
    const P42Ent* entity = model.Find(styleId);
    if (entity == nullptr) { return kOtherShape; }
    TextWalk walk = model.WalkFrom(entity);
    walk.Enter();
    walk.SkipBlanksAndLineFeeds();
    if (walk.overrun || walk.Current() != '(') { return kOtherShape; }
    const std::int32_t usageId = ReadReference(&walk);
    if (walk.overrun) { return kOtherShape; }

    entity = model.Find(usageId);
    if (entity == nullptr) { return kOtherShape; }
    walk = model.WalkFrom(entity);
    GoToSecondArgument(&walk);
    if (walk.overrun || walk.Current() != '#') { return kOtherShape; }
    const std::int32_t sideId = ReadReference(&walk);

    entity = model.Find(sideId);
    if (entity == nullptr) { return kOtherShape; }
    walk = model.WalkFrom(entity);
    GoToSecondArgument(&walk);
    if (walk.overrun || walk.Current() != '(') { return kOtherShape; }
    const std::int32_t first = ReadReference(&walk);
    walk.SkipBlanks();
    const std::int32_t second = walk.Current() == ',' ? ReadReference(&walk) : 0;
    if (walk.overrun) { return kOtherShape; }

    const P42Ent* chosen = model.Find(first);
    if (chosen == nullptr) { return kOtherShape; }
    if (chosen->code != code::kSurfaceStyleRendering && second != 0) {
        const P42Ent* const other = model.Find(second);
        if (other == nullptr) { return kOtherShape; }
        if (other->code == code::kSurfaceStyleRendering) { chosen = other; }
    }
    *alpha = 1.0f;
    return chosen->code == code::kSurfaceStyleFillArea
               ? ResolveFillArea(model, model.WalkFrom(chosen), colourId)
               : ResolveRendering(model, model.WalkFrom(chosen), colourId, alpha);
}

bool IsKnownColourName(std::string_view name) {
    return name.size() >= 3 && FindNamedColour(name.data()) != nullptr;
}

bool ReadColours(PartReader& reader) {
    StepModel& model = reader.model;
    if (model.presentationId < 1) { return true; }
    if (!ReadColourRows(reader)) { return false; }
    const P42Ent* const presentation = model.Find(model.presentationId);
    if (presentation == nullptr) { return true; }
    TextWalk walk = model.WalkFrom(presentation);
    walk.GoTo('(');
    walk.GoTo(',');
    walk.GoTo('(');
    std::vector<std::int32_t> itemIds;
    ParseIdList(&walk, &itemIds);
    if (walk.overrun) { return false; }

    RowsOfColour rowsOfColour;
    std::vector<ColourEntry>& rows = reader.scratch.colours;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rowsOfColour[rows[i].colourId].places.push_back(static_cast<std::int32_t>(i));
    }
    Arena* const arena = model.IndexArena();
    const std::int32_t bits = HashBits(static_cast<std::int32_t>(itemIds.size()));
    reader.colourIndex = ColourIndex(arena, std::max(bits, kColourBits));
    ColourIndex styleRows(arena, std::max(bits, kStyleBits));
    const auto add = [arena](ColourIndex& index, std::int32_t id, std::int32_t row) {
        ColourRow* const entry = arena->New<ColourRow>();
        if (entry == nullptr) { return false; }
        *entry = {id, row};
        return index.Add(entry);
    };
    for (const std::int32_t id : itemIds) {
        // STYLED_ITEM(name, (#style), #item), by position: whatever stands in the list is read like one.
        const P42Ent* const styled = model.Find(id);
        if (styled == nullptr) { break; }
        walk = model.WalkFrom(styled);
        walk.Step();
        walk.GoTo('=');
        walk.GoTo('#');
        walk.Step();
        const std::int32_t styleId = StringToInteger(walk.at);
        walk.GoTo(',');
        walk.Step();
        walk.Step();
        if (walk.overrun) { return false; }
        const std::int32_t itemId = StringToInteger(walk.at);
        const ColourRow* const known = styleRows.Find(styleId);
        std::int32_t row = known != nullptr ? known->row : kNoRow;
        if (known == nullptr) {
            std::int32_t colourId = 0;
            float alpha = 0;
            if (ResolveStyle(model, styleId, &colourId, &alpha) == kResolved) {
                row = RowOf(colourId, alpha, &rows, &rowsOfColour);
            }
            if (!add(styleRows, styleId, row)) { return false; }
        }
        if (row != kNoRow && !add(reader.colourIndex, itemId, row)) { return false; }
    }
    return true;
}

} // namespace tarnwick
