#pragma once

#include "exchange/exchange_file.h"
#include "text/look_up.h"
#include "write/p21_style.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace tarnwick::prepare {

// How a surface looks.
struct SurfaceStyle {
    Colour colour;
    double transparency = 0; // 0 is opaque, 1 can't be seen
};

// The surface styles of the items of a file (ISO 10303-46): STYLED_ITEM and OVER_RIDING_STYLED_ITEM over
// their surface styles to a colour. Used by one thread.
class Styles {
public:
    explicit Styles(const ExchangeFile& file);

    // Of an item by itself, or in a context where that changes it; null where it has none.
    const SurfaceStyle* Of(std::uint64_t item, std::uint64_t context = 0);
    // The items that have another style in a context, a CONTEXT_DEPENDENT_SHAPE_REPRESENTATION, by their
    // numbers.
    std::vector<std::pair<std::uint64_t, SurfaceStyle>> In(std::uint64_t context) const;
    bool IsEmpty() const { return styles_.IsEmpty() && inContexts_.empty(); }

private:
    struct Assignment {
        std::optional<SurfaceStyle> style;
        std::uint64_t context = 0; // the use that it is for, 0 for all
    };
    void Add(std::string_view arguments, bool isOverriding);
    void AddStyle(std::uint64_t item, const Assignment& assignment, bool isOverriding);
    Assignment ReadAssignment(std::uint64_t number) const;
    std::optional<SurfaceStyle> Read(std::vector<std::uint64_t> open) const;
    std::optional<Colour> ReadColour(std::uint64_t number) const;

    struct ItemStyle {
        SurfaceStyle style;
        bool isOverriding = false;
    };
    const ExchangeFile& file_;
    LookUp<std::uint64_t, ItemStyle> styles_;                                    // by item
    LookUp<std::uint64_t, Assignment> byAssignment_;                             // of items that have one
    std::map<std::pair<std::uint64_t, std::uint64_t>, SurfaceStyle> inContexts_; // by context and item
};

} // namespace tarnwick::prepare
