#include "geometry/part_reader.h"
#include "p21/keyword_codes.h"
#include "text/parse_real.h"

#include <bit>
#include <cstring>
#include <string_view>
#include <vector>

namespace tarnwick {

namespace {

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

// By the first three characters, which must be readable; null for an unknown name.
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

// One row for each colour of the file. False when a line runs past the end of the text.
bool ReadColourRows(PartReader& reader) {
    for (const std::int32_t id : reader.model.colourIds) {
        const P42Ent* const entity = reader.model.Find(id);
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

// Gives styles their rows of the colour table. Of a colour's rows, those that styles use come first, since a
// style takes the first one that is free. The row with an alpha is looked up: a search for each style would
// take time in proportion to styles times rows.
class StyleRows {
public:
    explicit StyleRows(std::vector<ColourEntry>* rows) : rows_(*rows) {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            rowsOfColour_.At(rows_[i].colourId).places.push_back(static_cast<std::int32_t>(i));
        }
    }

    // The row of a colour with an alpha: one that no style uses yet or that has this alpha, else a new one.
    // kNoRow when the table doesn't have the colour.
    std::int32_t RowOf(std::int32_t colourId, float alpha) {
        RowsOfColour* const own = rowsOfColour_.Find(colourId);
        if (own == nullptr) { return kNoRow; }
        const std::uint64_t key = KeyOf(colourId, alpha);
        if (const std::int32_t* const known = usedByAlpha_.Find(key)) {
            // 0 and -0 are equal; the row takes the last of them.
            rows_[static_cast<std::size_t>(*known)].alpha = alpha;
            return *known;
        }
        if (own->used == own->places.size()) {
            ColourEntry added = rows_[static_cast<std::size_t>(own->places.back())];
            added.alpha = kUnused;
            own->places.push_back(static_cast<std::int32_t>(rows_.size()));
            rows_.push_back(added);
        }
        const std::int32_t place = own->places[own->used];
        rows_[static_cast<std::size_t>(place)].alpha = alpha;
        if (alpha != kUnused) { // that alpha leaves the row free
            usedByAlpha_.Add(key, place);
            ++own->used;
        }
        return place;
    }

private:
    struct RowsOfColour {
        std::vector<std::int32_t> places;
        std::size_t used = 0; // the rest is free
    };

    static std::uint64_t KeyOf(std::int32_t colourId, float alpha) {
        const auto bits = std::bit_cast<std::uint32_t>(alpha == 0.0f ? 0.0f : alpha);
        return std::uint64_t{static_cast<std::uint32_t>(colourId)} << 32 | bits;
    }

    std::vector<ColourEntry>& rows_;
    LookUp<std::int32_t, RowsOfColour> rowsOfColour_;
    LookUp<std::uint64_t, std::int32_t> usedByAlpha_;
};

// From the start of the line to its second argument.
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
constexpr int kOtherShape = 1; // also for a chain that leads past the end of the text

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
    // Without properties the walk comes to a comma of a later entity, and takes the alpha from there.
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

namespace {

// What the presentation lists, its second argument; nothing when it isn't there. False when its line runs
// past the end of the text.
bool ReadStyledIds(const StepModel& model, std::vector<std::int32_t>* ids) {
    TextWalk walk;
    if (!model.OpenAfterCommas(model.presentationId, 1, &walk)) { return true; }
    ParseIdList(&walk, ids);
    return !walk.overrun;
}

// The two references of a STYLED_ITEM(name, (#style), #item), by position: whatever is in the list is
// read as one. False when they run past the end of the text.
bool ReadStyledItem(TextWalk walk, std::int32_t* styleId, std::int32_t* itemId) {
    walk.GoTo('=');
    walk.GoTo('#');
    walk.Step();
    *styleId = StringToInteger(walk.at);
    walk.PassCommas(1);
    walk.Step();
    *itemId = StringToInteger(walk.at);
    return !walk.overrun;
}

} // namespace

bool ReadColours(PartReader& reader) {
    const StepModel& model = reader.model;
    if (model.presentationId < 1) { return true; }
    std::vector<std::int32_t> ids;
    if (!ReadColourRows(reader) || !ReadStyledIds(model, &ids)) { return false; }
    StyleRows styleRows(&reader.scratch.colours);
    ColourIndex rowOfStyle;
    for (const std::int32_t id : ids) {
        const P42Ent* const styled = model.Find(id);
        if (styled == nullptr) { break; }
        std::int32_t styleId = 0;
        std::int32_t itemId = 0;
        if (!ReadStyledItem(model.WalkFrom(styled), &styleId, &itemId)) { return false; }
        const std::int32_t* const known = rowOfStyle.Find(styleId);
        std::int32_t row = known != nullptr ? *known : kNoRow;
        if (known == nullptr) {
            std::int32_t colourId = 0;
            float alpha = 0;
            if (ResolveStyle(model, styleId, &colourId, &alpha) == kResolved) {
                row = styleRows.RowOf(colourId, alpha);
            }
            rowOfStyle.Add(styleId, row);
        }
        if (row != kNoRow) { reader.colourIndex.Add(itemId, row); }
    }
    return true;
}

} // namespace tarnwick
