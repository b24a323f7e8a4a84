#include "write/product.h"

#include <algorithm>

namespace tarnwick::make {

Context WriteContext(P21Writer* out, const Protocol& protocol) {
    const Id application = out->Add("APPLICATION_CONTEXT", protocol.application);
    out->Add("APPLICATION_PROTOCOL_DEFINITION", "international standard", protocol.definition, protocol.year,
             application);
    Context context;
    context.productContext = out->Add("PRODUCT_CONTEXT", "", application, "mechanical");
    context.definitionContext =
        out->Add("PRODUCT_DEFINITION_CONTEXT", "part definition", application, "design");
    const Id millimetre = out->AddComplex("LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.)");
    const Id radian = out->AddComplex("NAMED_UNIT(*)PLANE_ANGLE_UNIT()SI_UNIT($,.RADIAN.)");
    const Id steradian = out->AddComplex("NAMED_UNIT(*)SI_UNIT($,.STERADIAN.)SOLID_ANGLE_UNIT()");
    const Id accuracy = out->Add("UNCERTAINTY_MEASURE_WITH_UNIT", Literal{"LENGTH_MEASURE(0.001)"},
                                 millimetre, "distance_accuracy_value", "");
    context.geometry = out->Begin("");
    out->Put(Literal{"GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNCERTAINTY_ASSIGNED_CONTEXT("});
    out->Put(std::vector{accuracy});
    out->Put(Literal{")GLOBAL_UNIT_ASSIGNED_CONTEXT("});
    out->Put(std::vector{millimetre, radian, steradian});
    out->Put(Literal{")REPRESENTATION_CONTEXT('','3D')"});
    out->End();
    return context;
}

Product WriteProduct(P21Writer* out, const Context& context, std::string_view id, std::string_view name,
                     std::string_view category) {
    Product p;
    p.product = out->Add("PRODUCT", id, name, "", std::vector{context.productContext});
    out->Add("PRODUCT_RELATED_PRODUCT_CATEGORY", category, Id{}, std::vector{p.product});
    const Id formation = out->Add("PRODUCT_DEFINITION_FORMATION", "A", "", p.product);
    p.definition = out->Add("PRODUCT_DEFINITION", "design", "", formation, context.definitionContext);
    p.shape = out->Add("PRODUCT_DEFINITION_SHAPE", "", "", p.definition);
    return p;
}

Id WritePlacement(P21Writer* out, const Placement& at) {
    const Id origin = out->Add("CARTESIAN_POINT", "", at.origin);
    const Id axis = out->Add("DIRECTION", "", at.z);
    const Id reference = out->Add("DIRECTION", "", at.x);
    return out->Add("AXIS2_PLACEMENT_3D", "", origin, axis, reference);
}

namespace {

// Hue in turns, 0 and 1 being red.
Colour FromHue(double hue, double saturation, double value) {
    const auto channel = [&](double shift) {
        const double k = std::fmod(hue + shift, 1.0) * 6;
        return value * (1 - saturation * std::clamp(std::min(k, 4 - k), 0.0, 1.0));
    };
    return {channel(5.0 / 6), channel(3.0 / 6), channel(1.0 / 6)};
}

} // namespace

Colour PaletteColour(int number) {
    static constexpr std::array<Colour, 8> first{{{0.62, 0.65, 0.70},
                                                  {0.80, 0.62, 0.28},
                                                  {0.24, 0.42, 0.68},
                                                  {0.72, 0.24, 0.20},
                                                  {0.30, 0.55, 0.36},
                                                  {0.86, 0.52, 0.16},
                                                  {0.36, 0.38, 0.42},
                                                  {0.50, 0.34, 0.62}}};
    if (number < static_cast<int>(first.size())) { return first[static_cast<std::size_t>(number)]; }
    // Steps of the golden ratio never come back to a hue.
    return FromHue(std::fmod(number * 0.6180339887498949, 1.0), 0.45 + 0.1 * (number % 4),
                   0.9 - 0.1 * (number % 3));
}

Id WriteStyle(P21Writer* out, const Colour& colour, double alpha) {
    const Id rgb = out->Add("COLOUR_RGB", "", colour.red, colour.green, colour.blue);
    const Id areaColour = out->Add("FILL_AREA_STYLE_COLOUR", "", rgb);
    const Id area = out->Add("FILL_AREA_STYLE", "", std::vector{areaColour});
    std::vector<Id> styles{out->Add("SURFACE_STYLE_FILL_AREA", area)};
    if (alpha < 1) {
        const Id transparent = out->Add("SURFACE_STYLE_TRANSPARENT", alpha);
        styles.push_back(out->Add("SURFACE_STYLE_RENDERING_WITH_PROPERTIES", Literal{".NORMAL_SHADING."}, rgb,
                                  std::vector{transparent}));
    }
    const Id side = out->Add("SURFACE_SIDE_STYLE", "", styles);
    const Id usage = out->Add("SURFACE_STYLE_USAGE", Literal{".BOTH."}, side);
    return out->Add("PRESENTATION_STYLE_ASSIGNMENT", std::vector{usage});
}

} // namespace tarnwick::make
