#include "prepare/exchange_text.h"

namespace tarnwick::test {

namespace {

// Joins pieces without the concatenations that make a test hard to read.
std::string Join(std::initializer_list<std::string_view> pieces) {
    std::string text;
    for (const std::string_view piece : pieces) { text += piece; }
    return text;
}

} // namespace

std::string ExchangeText::Add(std::string_view record) {
    const std::string reference = Next();
    ++count_;
    data_ += Join({reference, "=", record, ";\n"});
    return reference;
}

std::string ExchangeText::Context(std::string_view prefix) {
    const std::string unit = Add(Join({"(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(", prefix, ",.METRE.))"}));
    const std::string angle = Add("(NAMED_UNIT(*)PLANE_ANGLE_UNIT()SI_UNIT($,.RADIAN.))");
    return Add(Join({"(GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNIT_ASSIGNED_CONTEXT((", angle, ",", unit,
                     "))REPRESENTATION_CONTEXT('',''))"}));
}

std::string ExchangeText::InchContext() {
    const std::string millimetre = Add("(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.))");
    const std::string measure =
        Add(Join({"LENGTH_MEASURE_WITH_UNIT(LENGTH_MEASURE(25.4),", millimetre, ")"}));
    const std::string inch =
        Add(Join({"(CONVERSION_BASED_UNIT('INCH',", measure, ")LENGTH_UNIT()NAMED_UNIT(*))"}));
    return Add(Join({"(GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNIT_ASSIGNED_CONTEXT((", inch,
                     "))REPRESENTATION_CONTEXT('',''))"}));
}

std::string ExchangeText::Product(std::string_view id) {
    const std::string product = Add(Join({"PRODUCT('", id, "','name of it','',())"}));
    const std::string formation = Add(Join({"PRODUCT_DEFINITION_FORMATION('','',", product, ")"}));
    return Add(Join({"PRODUCT_DEFINITION('','',", formation, ",$)"}));
}

std::string ExchangeText::Shape(std::string_view definition, std::string_view items, std::string_view context,
                                std::string_view keyword) {
    const std::string representation = Add(Join({keyword, "('',(", items, "),", context, ")"}));
    const std::string shape = Add(Join({"PRODUCT_DEFINITION_SHAPE('','',", definition, ")"}));
    Add(Join({"SHAPE_DEFINITION_REPRESENTATION(", shape, ",", representation, ")"}));
    return representation;
}

std::string ExchangeText::Axes(std::string_view origin, std::string_view z, std::string_view x) {
    const std::string point = Add(Join({"CARTESIAN_POINT('',", origin, ")"}));
    const std::string axis = z.empty() ? "$" : Add(Join({"DIRECTION('',", z, ")"}));
    const std::string direction = x.empty() ? "$" : Add(Join({"DIRECTION('',", x, ")"}));
    return Add(Join({"AXIS2_PLACEMENT_3D('',", point, ",", axis, ",", direction, ")"}));
}

std::string ExchangeText::Use(std::string_view parent, std::string_view child, std::string_view parentShape,
                              std::string_view childShape, std::string_view source, std::string_view target) {
    const std::string transformation =
        Add(Join({"ITEM_DEFINED_TRANSFORMATION('','',", source, ",", target, ")"}));
    const std::string relationship =
        Add(Join({"(REPRESENTATION_RELATIONSHIP('','',", childShape, ",", parentShape,
                  ")REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(", transformation,
                  ")SHAPE_REPRESENTATION_RELATIONSHIP())"}));
    const std::string use =
        Add(Join({"NEXT_ASSEMBLY_USAGE_OCCURRENCE('1','use','',", parent, ",", child, ",$)"}));
    const std::string shape = Add(Join({"PRODUCT_DEFINITION_SHAPE('','',", use, ")"}));
    Add(Join({"CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(", relationship, ",", shape, ")"}));
    return use;
}

std::string ExchangeText::Triangle(std::string_view height) {
    const std::string points = Add(
        Join({"COORDINATES_LIST('',3,((0.,0.,", height, "),(1.,0.,", height, "),(0.,1.,", height, ")))"}));
    return Add(Join({"TRIANGULATED_FACE('',", points, ",3,((0.,0.,1.)),$,(),((1,2,3)))"}));
}

std::string ExchangeText::Styled(std::string_view item, std::string_view rgb) {
    const std::string colour = Add(Join({"COLOUR_RGB('',", rgb, ")"}));
    const std::string areaColour = Add(Join({"FILL_AREA_STYLE_COLOUR('',", colour, ")"}));
    const std::string area = Add(Join({"FILL_AREA_STYLE('',(", areaColour, "))"}));
    const std::string fill = Add(Join({"SURFACE_STYLE_FILL_AREA(", area, ")"}));
    const std::string side = Add(Join({"SURFACE_SIDE_STYLE('',(", fill, "))"}));
    const std::string usage = Add(Join({"SURFACE_STYLE_USAGE(.BOTH.,", side, ")"}));
    const std::string assignment = Add(Join({"PRESENTATION_STYLE_ASSIGNMENT((", usage, "))"}));
    return Add(Join({"STYLED_ITEM('',(", assignment, "),", item, ")"}));
}

std::string ExchangeText::Text(std::string_view schema) const {
    return Join({"ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
                 "FILE_NAME('','',(''),(''),'','','');\nFILE_SCHEMA(('",
                 schema, "'));\nENDSEC;\nDATA;\n", data_, "ENDSEC;\nEND-ISO-10303-21;\n"});
}

} // namespace tarnwick::test
