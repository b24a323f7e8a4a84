#include "support/assembly_text.h"

#include <cstdio>

namespace tarnwick::test {

namespace {

std::string Hash(int id) {
    return "#" + std::to_string(id);
}

std::string Triple(const std::array<double, 3>& values) {
    return "(" + Real(values[0]) + "," + Real(values[1]) + "," + Real(values[2]) + ")";
}

} // namespace

Frame At(double x, double y, double z) {
    Frame frame;
    frame.location = {x, y, z};
    return frame;
}

std::string Real(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", value);
    std::string real = text;
    if (real.find_first_of(".e") == std::string::npos) { real += '.'; }
    return real;
}

int AssemblyText::Line(std::string_view entity) {
    const int id = nextId_++;
    lines_.push_back(Hash(id) + "=" + std::string(entity) + ";");
    return id;
}

int AssemblyText::Product(std::string_view name) {
    const int product = Line("PRODUCT('" + std::string(name) + "','another name',$,(#999999))");
    const int formation = Line("PRODUCT_DEFINITION_FORMATION('v','d'," + Hash(product) + ")");
    return Line("PRODUCT_DEFINITION('design','d'," + Hash(formation) + ",#999999)");
}

int AssemblyText::Placement(const Frame& frame) {
    const int location = Line("CARTESIAN_POINT(''," + Triple(frame.location) + ")");
    const int axis = Line("DIRECTION(''," + Triple(frame.axis) + ")");
    const int reference = Line("DIRECTION(''," + Triple(frame.reference) + ")");
    return Line("AXIS2_PLACEMENT_3D(''," + Hash(location) + "," + Hash(axis) + "," + Hash(reference) + ")");
}

int AssemblyText::Use(int parent, int child, const Frame& target, const Frame& source) {
    const int from = Placement(source);
    const int to = Placement(target);
    const int transform = Line("ITEM_DEFINED_TRANSFORMATION('',''," + Hash(from) + "," + Hash(to) + ")");
    return UseWith(parent, child, transform);
}

int AssemblyText::UseWith(int parent, int child, int transform) {
    const int usage =
        Line("NEXT_ASSEMBLY_USAGE_OCCURRENCE('u','name','d'," + Hash(parent) + "," + Hash(child) + ",$)");
    const int shape = Line("PRODUCT_DEFINITION_SHAPE('','d'," + Hash(usage) + ")");
    const int relationship =
        Line("(REPRESENTATION_RELATIONSHIP('','',#999998,#999997)REPRESENTATION_RELATIONSHIP_WITH_"
             "TRANSFORMATION(" +
             Hash(transform) + ")SHAPE_REPRESENTATION_RELATIONSHIP())");
    return Line("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(" + Hash(relationship) + "," + Hash(shape) + ")");
}

int AssemblyText::File(int definition, std::string_view fileName) {
    const int document = Line("DOCUMENT_FILE('" + std::string(fileName) + "','second text','',#999999,'',$)");
    return Line("APPLIED_DOCUMENT_REFERENCE(" + Hash(document) + ",'source',(" + Hash(definition) + "))");
}

void AssemblyText::MarkAsAssembly() {
    Line("NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',$,$,$)");
}

std::string PlateText(int triangles, const std::array<double, 6>& box) {
    const auto point = [&box](int x, int y, int z) {
        return Triple({box[static_cast<std::size_t>(x)], box[static_cast<std::size_t>(2 + y)],
                       box[static_cast<std::size_t>(4 + z)]});
    };
    std::string list = "(1,2,3)";
    for (int i = 1; i < triangles; ++i) { list += ",(1,2,3)"; }
    return PartText(
        "(#20)",
        {"#10=COORDINATES_LIST('',3,(" + point(0, 0, 0) + "," + point(1, 1, 1) + "," + point(0, 1, 0) + "));",
         "#20=TESSELLATED_SOLID('',(#30),$);",
         "#30=TRIANGULATED_FACE('',#10,$,$,$,(),(" + (triangles > 0 ? list : std::string()) + "));"});
}

} // namespace tarnwick::test
