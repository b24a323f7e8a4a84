#include "prepare/structure/shape_kinds.h"

#include <algorithm>
#include <array>
#include <span>

namespace tarnwick::prepare {

namespace {

bool Has(std::span<const std::string_view> names, std::string_view keyword) {
    return std::find(names.begin(), names.end(), keyword) != names.end();
}

} // namespace

bool IsTessellated(std::string_view keyword) {
    static constexpr std::array<std::string_view, 9> kNames{"TRIANGULATED_FACE",
                                                            "COMPLEX_TRIANGULATED_FACE",
                                                            "TRIANGULATED_SURFACE_SET",
                                                            "COMPLEX_TRIANGULATED_SURFACE_SET",
                                                            "CUBIC_BEZIER_TRIANGULATED_FACE",
                                                            "TESSELLATED_SOLID",
                                                            "TESSELLATED_SHELL",
                                                            "TESSELLATED_GEOMETRIC_SET",
                                                            "REPOSITIONED_TESSELLATED_ITEM"};
    return Has(kNames, keyword);
}

bool IsExactBody(std::string_view keyword) {
    static constexpr std::array<std::string_view, 18> kNames{"MANIFOLD_SOLID_BREP",
                                                             "BREP_WITH_VOIDS",
                                                             "FACETED_BREP",
                                                             "SHELL_BASED_SURFACE_MODEL",
                                                             "FACE_BASED_SURFACE_MODEL",
                                                             "GEOMETRIC_SET",
                                                             "OPEN_SHELL",
                                                             "CLOSED_SHELL",
                                                             "ORIENTED_CLOSED_SHELL",
                                                             "ORIENTED_OPEN_SHELL",
                                                             "CONNECTED_FACE_SET",
                                                             "ADVANCED_FACE",
                                                             "FACE_SURFACE",
                                                             "RECTANGULAR_TRIMMED_SURFACE",
                                                             "CURVE_BOUNDED_SURFACE",
                                                             "B_SPLINE_SURFACE_WITH_KNOTS",
                                                             "RECTANGULAR_COMPOSITE_SURFACE",
                                                             "BEZIER_SURFACE"};
    return Has(kNames, keyword);
}

bool IsConstructiveSolid(std::string_view keyword) {
    static constexpr std::array<std::string_view, 14> kNames{"CSG_SOLID",
                                                             "BLOCK",
                                                             "SPHERE",
                                                             "TORUS",
                                                             "RIGHT_CIRCULAR_CONE",
                                                             "RIGHT_CIRCULAR_CYLINDER",
                                                             "RIGHT_ANGULAR_WEDGE",
                                                             "BOOLEAN_RESULT",
                                                             "EXTRUDED_AREA_SOLID",
                                                             "REVOLVED_AREA_SOLID",
                                                             "EXTRUDED_FACE_SOLID",
                                                             "REVOLVED_FACE_SOLID",
                                                             "SWEPT_DISK_SOLID",
                                                             "SOLID_REPLICA"};
    return Has(kNames, keyword);
}

} // namespace tarnwick::prepare
