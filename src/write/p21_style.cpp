#include "write/p21_style.h"

namespace tarnwick {

EntityId WriteStyle(P21Writer* out, const Colour& colour, std::optional<double> transparency) {
    const EntityId rgb = out->Add("COLOUR_RGB", "", colour.red, colour.green, colour.blue);
    const EntityId areaColour = out->Add("FILL_AREA_STYLE_COLOUR", "", rgb);
    const EntityId area = out->Add("FILL_AREA_STYLE", "", std::vector{areaColour});
    std::vector<EntityId> styles{out->Add("SURFACE_STYLE_FILL_AREA", area)};
    if (transparency) {
        const EntityId transparent = out->Add("SURFACE_STYLE_TRANSPARENT", *transparency);
        styles.push_back(out->Add("SURFACE_STYLE_RENDERING_WITH_PROPERTIES", P21Literal{".NORMAL_SHADING."},
                                  rgb, std::vector{transparent}));
    }
    const EntityId side = out->Add("SURFACE_SIDE_STYLE", "", styles);
    const EntityId usage = out->Add("SURFACE_STYLE_USAGE", P21Literal{".BOTH."}, side);
    return out->Add("PRESENTATION_STYLE_ASSIGNMENT", std::vector{usage});
}

EntityId WriteStyledItem(P21Writer* out, EntityId style, EntityId item) {
    return out->Add("STYLED_ITEM", "", std::vector{style}, item);
}

EntityId WriteOverridingStyle(P21Writer* out, EntityId style, EntityId item, EntityId styledItem) {
    return out->Add("OVER_RIDING_STYLED_ITEM", "", std::vector{style}, item, styledItem);
}

} // namespace tarnwick
