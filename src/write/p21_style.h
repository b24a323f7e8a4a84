#pragma once

#include "write/p21_writer.h"

#include <optional>

namespace tarnwick {

// Each from 0 to 1.
struct Colour {
    double red = 0;
    double green = 0;
    double blue = 0;
};

// A PRESENTATION_STYLE_ASSIGNMENT for surfaces. With a transparency, from 0 to 1, the style has rendering
// properties.
EntityId WriteStyle(P21Writer* out, const Colour& colour, std::optional<double> transparency);

EntityId WriteStyledItem(P21Writer* out, EntityId style, EntityId item);
// For a face of an item that is styled already: the face's style comes before that of the item.
EntityId WriteOverridingStyle(P21Writer* out, EntityId style, EntityId item, EntityId styledItem);

} // namespace tarnwick
