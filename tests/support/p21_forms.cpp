#include "support/p21_forms.h"

#include <algorithm>
#include <map>
#include <set>

namespace tarnwick::test {

namespace {

// A letter for each argument: s string, i integer, r real, e enumeration, n reference, t typed value,
// d derived. (..) is a list of just these, [..] one of any number of them, [..+] one of at least one, and ?
// after an argument allows for its absence.
const std::map<std::string_view, std::string_view> kForms{
    {"ADVANCED_BREP_SHAPE_REPRESENTATION", "s[n+]n"},
    {"ADVANCED_FACE", "s[n+]ne"},
    {"APPLICATION_CONTEXT", "s"},
    {"APPLICATION_PROTOCOL_DEFINITION", "ssin"},
    {"APPLIED_DOCUMENT_REFERENCE", "ns[n+]"},
    {"APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT", "snn[n+]"},
    {"AXIS2_PLACEMENT_3D", "snn?n?"},
    {"CARTESIAN_POINT", "s(rrr)"},
    {"CHARACTERIZED_OBJECT", "ss?"},
    {"CIRCLE", "snr"},
    {"CLOSED_SHELL", "s[n+]"},
    {"COLOUR_RGB", "srrr"},
    {"COMPLEX_TRIANGULATED_FACE", "sni[(rrr)]n?[i][[i+]][[i+]]"},
    {"COMPLEX_TRIANGULATED_SURFACE_SET", "sni[(rrr)][i][[i+]][[i+]]"},
    {"CONICAL_SURFACE", "snrr"},
    {"CONTEXT_DEPENDENT_SHAPE_REPRESENTATION", "nn"},
    {"COORDINATES_LIST", "si[(rrr)+]"},
    {"CYLINDRICAL_SURFACE", "snr"},
    {"DATA_ENVIRONMENT", "ss[n+]"},
    {"DIRECTION", "s(rrr)"},
    {"DOCUMENT_FILE", "sss?nss?"},
    {"DOCUMENT_REPRESENTATION_TYPE", "sn"},
    {"DOCUMENT_TYPE", "s"},
    {"EDGE_CURVE", "snnne"},
    {"EDGE_LOOP", "s[n+]"},
    {"ELEMENT_MATERIAL", "ss[n+]"},
    {"EXTERNAL_SOURCE", "t"},
    {"FACE_BOUND", "sne"},
    {"FACE_OUTER_BOUND", "sne"},
    {"FEA_AXIS2_PLACEMENT_3D", "snn?n?es"},
    {"FEA_LINEAR_ELASTICITY", "st"},
    {"FEA_MATERIAL_PROPERTY_REPRESENTATION", "nnn"},
    {"FEA_MODEL_3D", "s[n+]ns[s+]ss"},
    {"FEA_MODEL_DEFINITION", "ss?ne"},
    {"FILE_DESCRIPTION", "[s+]s"},
    {"FILE_NAME", "ss[s+][s+]sss"},
    {"FILE_SCHEMA", "[s+]"},
    {"FILL_AREA_STYLE", "s[n+]"},
    {"FILL_AREA_STYLE_COLOUR", "sn"},
    {"GEOMETRIC_REPRESENTATION_CONTEXT", "i"},
    {"GLOBAL_UNCERTAINTY_ASSIGNED_CONTEXT", "[n+]"},
    {"GLOBAL_UNIT_ASSIGNED_CONTEXT", "[n+]"},
    {"IDENTIFICATION_ROLE", "ss?"},
    {"ITEM_DEFINED_TRANSFORMATION", "ss?nn"},
    {"LENGTH_UNIT", ""},
    {"MAKE_FROM_USAGE_OPTION", "sss?nnisn"},
    {"MANIFOLD_SOLID_BREP", "sn"},
    {"MASS_MEASURE_WITH_UNIT", "tn"},
    {"MASS_UNIT", ""},
    {"MATERIAL_PROPERTY", "ss?n"},
    {"MEASURE_REPRESENTATION_ITEM", "stn"},
    {"MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION", "s[n+]n"},
    {"NAMED_UNIT", "d"},
    {"NEXT_ASSEMBLY_USAGE_OCCURRENCE", "sss?nns?"},
    {"NODE", "s[n+]nn"},
    {"NODE_SET", "s[n+]"},
    {"OBJECT_ROLE", "ss?"},
    {"ORIENTED_EDGE", "sddne"},
    {"OVER_RIDING_STYLED_ITEM", "s[n+]nn"},
    {"PARAMETRIC_REPRESENTATION_CONTEXT", "ss"},
    {"PARAMETRIC_SURFACE_3D_ELEMENT_COORDINATE_SYSTEM", "sir"},
    {"PLANE", "sn"},
    {"PLANE_ANGLE_UNIT", ""},
    {"POINT_REPRESENTATION", "s[n+]n"},
    {"PRESENTATION_STYLE_ASSIGNMENT", "[n+]"},
    {"PRODUCT", "sss?[n+]"},
    {"PRODUCT_CONTEXT", "sns"},
    {"PRODUCT_DEFINITION", "ss?nn"},
    {"PRODUCT_DEFINITION_CONTEXT", "sns"},
    {"PRODUCT_DEFINITION_FORMATION", "ss?n"},
    {"PRODUCT_DEFINITION_SHAPE", "ss?n"},
    {"PRODUCT_RELATED_PRODUCT_CATEGORY", "ss?[n+]"},
    {"PROPERTY_DEFINITION", "ss?n"},
    {"PROPERTY_DEFINITION_REPRESENTATION", "nn"},
    {"REPRESENTATION", "s[n+]n"},
    {"REPRESENTATION_CONTEXT", "ss"},
    {"REPRESENTATION_RELATIONSHIP", "ss?nn"},
    {"REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION", "n"},
    {"ROLE_ASSOCIATION", "nn"},
    {"SHAPE_DEFINITION_REPRESENTATION", "nn"},
    {"SHAPE_REPRESENTATION", "s[n+]n"},
    {"SI_UNIT", "e?e"},
    {"SOLID_ANGLE_UNIT", ""},
    {"STRUCTURAL_RESPONSE_PROPERTY", "ss?n"},
    {"STRUCTURAL_RESPONSE_PROPERTY_DEFINITION_REPRESENTATION", "nn"},
    {"STYLED_ITEM", "s[n+]n"},
    {"SURFACE_3D_ELEMENT_DESCRIPTOR", "es[[t+]+]e"},
    {"SURFACE_3D_ELEMENT_REPRESENTATION", "s[n+]n[n+]nnnn"},
    {"SURFACE_ELEMENT_PROPERTY", "ssn"},
    {"SURFACE_SECTION_FIELD_VARYING", "[n+]e"},
    {"SURFACE_SIDE_STYLE", "s[n+]"},
    {"SURFACE_STYLE_FILL_AREA", "n"},
    {"SURFACE_STYLE_RENDERING_WITH_PROPERTIES", "en[n+]"},
    {"SURFACE_STYLE_TRANSPARENT", "r"},
    {"SURFACE_STYLE_USAGE", "en"},
    {"TESSELLATED_SHAPE_REPRESENTATION", "s[n+]n"},
    {"TESSELLATED_SOLID", "s[n+]n?"},
    {"THERMODYNAMIC_TEMPERATURE_UNIT", ""},
    {"TRIANGULATED_FACE", "sni[(rrr)]n?[i][(iii)+]"},
    {"UNCERTAINTY_MEASURE_WITH_UNIT", "tnss"},
    {"UNIFORM_SURFACE_SECTION", "tttrtt"},
    {"VERTEX_POINT", "sn"},
};

// Of these types: logical, surface_side, shading_surface_method, si_prefix and si_unit_name,
// coordinate_system_type, element_order and element_2d_shape.
const std::set<std::string_view> kEnumerations{
    ".T.",     ".F.",      ".U.",         ".BOTH.",   ".NORMAL_SHADING.",
    ".MILLI.", ".KILO.",   ".METRE.",     ".RADIAN.", ".STERADIAN.",
    ".GRAM.",  ".KELVIN.", ".CARTESIAN.", ".LINEAR.", ".QUADRILATERAL."};

// In an entity with a transformation this record is empty: another one has its arguments.
constexpr std::string_view kRelationship = "SHAPE_REPRESENTATION_RELATIONSHIP";

char LetterOf(P21Value::Kind kind) {
    switch (kind) {
    case P21Value::Kind::kDerived:
        return 'd';
    case P21Value::Kind::kInteger:
        return 'i';
    case P21Value::Kind::kReal:
        return 'r';
    case P21Value::Kind::kString:
        return 's';
    case P21Value::Kind::kEnumeration:
        return 'e';
    case P21Value::Kind::kReference:
        return 'n';
    case P21Value::Kind::kTyped:
        return 't';
    default:
        return '\0';
    }
}

// The first item of a form, with the brackets of a list; cut off its front.
std::string_view TakeItem(std::string_view* form) {
    std::size_t end = 0;
    int depth = 0;
    do {
        const char c = (*form)[end++];
        depth += c == '(' || c == '[' ? 1 : c == ')' || c == ']' ? -1 : 0;
    } while (depth > 0);
    const std::string_view item = form->substr(0, end);
    form->remove_prefix(end);
    return item;
}

bool Fits(const P21Value& value, std::string_view item);

bool FitsAll(const std::vector<P21Value>& values, std::string_view form) {
    for (const P21Value& value : values) {
        if (form.empty()) { return false; }
        const std::string_view item = TakeItem(&form);
        const bool optional = form.starts_with('?');
        if (optional) { form.remove_prefix(1); }
        const bool absent = optional && value.kind == P21Value::Kind::kMissing;
        if (!absent && !Fits(value, item)) { return false; }
    }
    return form.empty();
}

bool Fits(const P21Value& value, std::string_view item) {
    if (item == "e" && !kEnumerations.contains(value.text)) { return false; }
    if (item.size() == 1) { return LetterOf(value.kind) == item[0]; }
    if (value.kind != P21Value::Kind::kList) { return false; }
    const bool anyNumber = item[0] == '[';
    std::string_view inner = item.substr(1, item.size() - 2);
    if (!anyNumber) { return FitsAll(value.items, inner); }
    if (inner.ends_with('+')) {
        if (value.items.empty()) { return false; }
        inner.remove_suffix(1);
    }
    return std::all_of(value.items.begin(), value.items.end(),
                       [inner](const P21Value& each) { return Fits(each, inner); });
}

} // namespace

bool HasItsForm(const P21Record& record) {
    if (record.keyword == kRelationship) {
        return record.arguments.empty() || FitsAll(record.arguments, "ss?nn");
    }
    const auto form = kForms.find(record.keyword);
    return form != kForms.end() && FitsAll(record.arguments, form->second);
}

} // namespace tarnwick::test
