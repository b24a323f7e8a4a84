#pragma once

#include "exchange/exchange_file.h"
#include "text/look_up.h"
#include "write/p21_style.h"

#include <cstdint>
#include <optional>
#include <span>

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

    // Of an item by itself; null where it has none.
    const SurfaceStyle* Of(std::uint64_t item);
    bool IsEmpty() const { return styles_.IsEmpty(); }

private:
    void Add(std::string_view arguments, bool isOverriding);
    std::optional<SurfaceStyle> Read(std::string_view styles) const;
    std::optional<Colour> ReadColour(std::uint64_t number) const;

    struct ItemStyle {
        SurfaceStyle style;
        bool isOverriding = false;
    };
    const ExchangeFile& file_;
    LookUp<std::uint64_t, ItemStyle> styles_;                         // by item
    LookUp<std::uint64_t, std::optional<SurfaceStyle>> byAssignment_; // by the first reference of the styles
};

} // namespace tarnwick::prepare
