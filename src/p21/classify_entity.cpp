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
        if (Begins<25>(p, "COMPLEX_TRIANGULATED_FACE")) { return 18; }
        if (Begins<14>(p, "COORDINATES_LI")) { return 16; }
        if (Begins<32>(p, "COMPLEX_TRIANGULATED_SURFACE_SET")) { return 20; }
        if (Begins<12>(p, "CARTESIAN_PO")) { return 10; }
        if (Begins<12>(p, "CLOSED_SHELL")) { return 4; }
        if (Begins<10>(p, "COLOUR_RGB")) { return 23; }
        if (Begins<27>(p, "CONTEXT_DEPENDENT_SHAPE_REP")) { return 25; }
        return 0;
    case 'D':
        return Begins<29>(p, "DRAUGHTING_PRE_DEFINED_COLOUR") ? 24 : 0;
    case 'T':
        if (Begins<32>(p, "TESSELLATED_SHAPE_REPRESENTATION")) { return 12; }
        if (Begins<17>(p, "TESSELLATED_SOLID")) { return 13; }
        if (Begins<17>(p, "TESSELLATED_SHELL")) { return 14; }
        if (Begins<16>(p, "TESSELLATED_WIRE")) { return 15; }
        if (Begins<17>(p, "TRIANGULATED_FACE")) { return 17; }
        if (Begins<17>(p, "TRIANGULATED_SURFACE_SET")) { return 19; }
        return 0;
    case 'M':
        if (Begins<12>(p, "MANIFOLD_SOL")) { return 1; }
        if (Begins<34>(p, "MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION")) { return 22; }
        if (Begins<21>(p, "MAKE_FROM_USAGE_OPTION")) { return 42; }
        return 0;
    case 'N':
        if (Begins<8>(p, "NEXT_ASS")) { return 26; }
        if (Begins<5>(p, "NODE(")) { return 39; }
        return 0;
    case 'B':
        if (Begins<12>(p, "BREP_WITH_VO")) { return 2; }
        if (Begins<13>(p, "B_SPLINE_SURF")) { return 31; }
        if (Begins<13>(p, "B_SPLINE_CURV")) { return 32; }
        if (Begins<8>(p, "B_SPLINE")) { return 30; }
        return 0;
    case 'O':
        return Begins<10>(p, "OPEN_SHELL") ? 5 : 0;
    case 'A':
        if (Begins<12>(p, "ADVANCED_FAC")) { return 6; }
        if (Begins<20>(p, "APPLIED_DOCUMENT_REF")) { return 29; }
        return 0;
    case 'E':
        if (Begins<10>(p, "EDGE_CURVE")) { return 9; }
        if (Begins<9>(p, "EDGE_LOOP")) { return 7; }
        return 0;
    case 'V':
        return Begins<12>(p, "VERTEX_POINT") ? 11 : 0;
    case 'F':
        return Begins<12>(p, "FACETED_BREP") ? 3 : 0;
    case 'S':
        if (Begins<18>(p, "SURFACE_STYLE_FILL")) { return 33; }
        if (Begins<18>(p, "SURFACE_STYLE_REND")) { return 34; }
        if (Begins<33>(p, "SURFACE_3D_ELEMENT_REPRESENTATION")) { return 37; }
        if (Begins<29>(p, "SURFACE_SECTION_FIELD_VARYING")) { return 38; }
        if (Begins<31>(p, "SHAPE_DEFINITION_REPRESENTATION")) { return 41; }
        return 0;
    case 'P':
        if (Begins<8>(p, "PRODUCT(")) { return 27; }
        if (Begins<27>(p, "PRODUCT_RELATED_PRODUCT_CAT")) { return 28; }
        return 0;
    case 'U':
        return Begins<19>(p, "UNIFORM_SURFACE_SEC") ? 40 : 0;
    default:
        return 0;
    }
}

} // namespace tarnwick
