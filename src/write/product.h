#pragma once

#include "write/p21_writer.h"

#include <array>

// The entities around the geometry: contexts, units, products, placements and colours.
namespace tarnwick::make {

inline constexpr std::string_view kAp242Schema =
    "AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF { 1 0 10303 442 1 1 4 }";

// Names of the protocol that a file follows.
struct Protocol {
    std::string_view application;
    std::string_view definition;
    int year;
};
inline constexpr Protocol kAp242{"managed model based 3d engineering",
                                 "ap242_managed_model_based_3d_engineering", 2014};
inline constexpr Protocol kAp209{"multidisciplinary analysis and design",
                                 "ap209_multidisciplinary_analysis_and_design", 2014};

struct Context {
    Id productContext;
    Id definitionContext;
    Id geometry; // millimetres and radians
};
Context WriteContext(P21Writer* out, const Protocol& protocol = kAp242);

struct Product {
    Id product;
    Id definition;
    Id shape;
};
// `category` is 'part' for anything that is made or assembled here, 'raw material' for what it is made from.
Product WriteProduct(P21Writer* out, const Context& context, std::string_view id, std::string_view name,
                     std::string_view category);

// An AXIS2_PLACEMENT_3D with both directions.
Id WritePlacement(P21Writer* out, const Placement& at);

struct Colour {
    double red;
    double green;
    double blue;
};
// Any number of colours that can be told apart: paints and metals first, then hues.
Colour PaletteColour(int number);

// A PRESENTATION_STYLE_ASSIGNMENT for surfaces. With an alpha below 1 the style has rendering properties.
Id WriteStyle(P21Writer* out, const Colour& colour, double alpha);

} // namespace tarnwick::make
