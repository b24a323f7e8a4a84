#include "p21/keyword_codes.h"

#include <cstddef>
#include <cstring>

namespace tarnwick {

namespace {

// Whether the text begins with the first `Compared` characters of the literal. Where that is less than the
// literal, any longer name with that beginning matches: exporters abbreviate and extend these keywords.
template <std::size_t Compared, std::size_t Size>
bool Begins(const char* p, const char (&literal)[Size]) {
    static_assert(Compared < Size);
    return std::memcmp(p, literal, Compared) == 0;
}

} // namespace

std::int32_t ClassifyEntity(const char* p) {
    switch (*p) {
    case 'C':
        if (Begins<25>(p, "COMPLEX_TRIANGULATED_FACE")) { return code::kComplexTriangulatedFace; }
        if (Begins<14>(p, "COORDINATES_LI")) { return code::kCoordinatesList; }
        if (Begins<32>(p, "COMPLEX_TRIANGULATED_SURFACE_SET")) {
            return code::kComplexTriangulatedSurfaceSet;
        }
        if (Begins<12>(p, "CARTESIAN_PO")) { return code::kCartesianPoint; }
        if (Begins<12>(p, "CLOSED_SHELL")) { return code::kClosedShell; }
        if (Begins<10>(p, "COLOUR_RGB")) { return code::kColourRgb; }
        if (Begins<27>(p, "CONTEXT_DEPENDENT_SHAPE_REP")) {
            return code::kContextDependentShapeRepresentation;
        }
        return code::kUnknown;
    case 'D':
        return Begins<29>(p, "DRAUGHTING_PRE_DEFINED_COLOUR") ? code::kDraughtingPreDefinedColour
                                                              : code::kUnknown;
    case 'T':
        if (Begins<32>(p, "TESSELLATED_SHAPE_REPRESENTATION")) {
            return code::kTessellatedShapeRepresentation;
        }
        if (Begins<17>(p, "TESSELLATED_SOLID")) { return code::kTessellatedSolid; }
        if (Begins<17>(p, "TESSELLATED_SHELL")) { return code::kTessellatedShell; }
        if (Begins<16>(p, "TESSELLATED_WIRE")) { return code::kTessellatedWire; }
        if (Begins<17>(p, "TRIANGULATED_FACE")) { return code::kTriangulatedFace; }
        if (Begins<17>(p, "TRIANGULATED_SURFACE_SET")) { return code::kTriangulatedSurfaceSet; }
        return code::kUnknown;
    case 'M':
        if (Begins<12>(p, "MANIFOLD_SOL")) { return code::kManifoldSolid; }
        if (Begins<34>(p, "MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION")) {
            return code::kPresentationRepresentation;
        }
        if (Begins<21>(p, "MAKE_FROM_USAGE_OPTION")) { return code::kMakeFromUsageOption; }
        return code::kUnknown;
    case 'N':
        if (Begins<8>(p, "NEXT_ASS")) { return code::kNextAssemblyUsage; }
        if (Begins<5>(p, "NODE(")) { return code::kNode; }
        return code::kUnknown;
    case 'B':
        if (Begins<12>(p, "BREP_WITH_VO")) { return code::kBrepWithVoids; }
        if (Begins<13>(p, "B_SPLINE_SURF")) { return code::kBSplineSurface; }
        if (Begins<13>(p, "B_SPLINE_CURV")) { return code::kBSplineCurve; }
        if (Begins<8>(p, "B_SPLINE")) { return code::kBSpline; }
        return code::kUnknown;
    case 'O':
        return Begins<10>(p, "OPEN_SHELL") ? code::kOpenShell : code::kUnknown;
    case 'A':
        if (Begins<12>(p, "ADVANCED_FAC")) { return code::kAdvancedFace; }
        if (Begins<20>(p, "APPLIED_DOCUMENT_REF")) { return code::kAppliedDocumentReference; }
        return code::kUnknown;
    case 'E':
        if (Begins<10>(p, "EDGE_CURVE")) { return code::kEdgeCurve; }
        if (Begins<9>(p, "EDGE_LOOP")) { return code::kEdgeLoop; }
        return code::kUnknown;
    case 'V':
        return Begins<12>(p, "VERTEX_POINT") ? code::kVertexPoint : code::kUnknown;
    case 'F':
        return Begins<12>(p, "FACETED_BREP") ? code::kFacetedBrep : code::kUnknown;
    case 'S':
        if (Begins<18>(p, "SURFACE_STYLE_FILL")) { return code::kSurfaceStyleFillArea; }
        if (Begins<18>(p, "SURFACE_STYLE_REND")) { return code::kSurfaceStyleRendering; }
        if (Begins<33>(p, "SURFACE_3D_ELEMENT_REPRESENTATION")) { return code::kSurface3dElement; }
        if (Begins<29>(p, "SURFACE_SECTION_FIELD_VARYING")) { return code::kSurfaceSectionFieldVarying; }
        if (Begins<31>(p, "SHAPE_DEFINITION_REPRESENTATION")) { return code::kShapeDefinitionRepresentation; }
        return code::kUnknown;
    case 'P':
        if (Begins<8>(p, "PRODUCT(")) { return code::kProduct; }
        if (Begins<27>(p, "PRODUCT_RELATED_PRODUCT_CAT")) { return code::kProductRelatedProductCategory; }
        return code::kUnknown;
    case 'U':
        return Begins<19>(p, "UNIFORM_SURFACE_SEC") ? code::kUniformSurfaceSection : code::kUnknown;
    default:
        return code::kUnknown;
    }
}

} // namespace tarnwick
