#include "models.h"

namespace tarnwick::test {

namespace {

std::string File(const std::string& data) {
    return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
           "FILE_SCHEMA(('AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF'));\nENDSEC;\nDATA;\n" +
           data + "ENDSEC;\nEND-ISO-10303-21;\n";
}

std::string Number(int id) {
    return "#" + std::to_string(id);
}

// The chain from a styled face to its colour, from entity `id` on.
std::string Style(int id, const std::string& face, const std::string& colour, const std::string& more = "") {
    const auto next = [id](int step) { return Number(id + step); };
    return next(0) + "=STYLED_ITEM('',(" + next(1) + ")," + face + ");\n" +   //
           next(1) + "=PRESENTATION_STYLE_ASSIGNMENT((" + next(2) + "));\n" + //
           next(2) + "=SURFACE_STYLE_USAGE(.BOTH.," + next(3) + ");\n" +      //
           next(3) + "=SURFACE_SIDE_STYLE('',(" + next(4) + more + "));\n" +  //
           next(4) + "=SURFACE_STYLE_FILL_AREA(" + next(5) + ");\n" +         //
           next(5) + "=FILL_AREA_STYLE('',(" + next(6) + "));\n" +            //
           next(6) + "=FILL_AREA_STYLE_COLOUR(''," + next(7) + ");\n" +       //
           next(7) + "=COLOUR_RGB(''," + colour + ");\n";
}

std::string Corners(int id, int left, int bottom) {
    const auto corner = [](int x, int y) {
        std::string text = "(";
        text += std::to_string(x) + ".,";
        text += std::to_string(y) + ".,0.)";
        return text;
    };
    return Number(id) + "=COORDINATES_LIST('',4,(" + corner(left, bottom) + ',' + corner(left + 10, bottom) +
           ',' + corner(left + 10, bottom + 5) + ',' + corner(left, bottom + 5) + "));\n";
}

std::string Face(int id, int corners) {
    return Number(id) + "=TRIANGULATED_FACE(''," + Number(corners) +
           ",4,((0.,0.,1.)),$,(1,2,3,4),((1,2,3),(1,3,4)));\n";
}

// A product that stands in a file of its own, from entity `id` on.
std::string Product(int id, const std::string& name, const std::string& file) {
    const auto next = [id](int step) { return Number(id + step); };
    return next(0) + "=PRODUCT('" + name + "','','',(#3));\n" +                               //
           next(1) + "=PRODUCT_DEFINITION_FORMATION('',''," + next(0) + ");\n" +              //
           next(2) + "=PRODUCT_DEFINITION('',''," + next(1) + ",#4);\n" +                     //
           next(3) + "=PRODUCT_DEFINITION_SHAPE('',''," + next(2) + ");\n" +                  //
           next(4) + "=SHAPE_REPRESENTATION('',(#29),#9);\n" +                                //
           next(5) + "=SHAPE_DEFINITION_REPRESENTATION(" + next(3) + ',' + next(4) + ");\n" + //
           next(6) + "=DOCUMENT_FILE('" + file + "','','',#5,'',$);\n" +                      //
           next(7) + "=APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT('" + file + "',#6,#7,(" + next(6) +
           "));\n" + //
           next(8) + "=APPLIED_DOCUMENT_REFERENCE(" + next(6) + ",'',(" + next(2) + "));\n";
}

// A use of the product at `child` under the root, from entity `id` on.
std::string Use(int id, int child, int y) {
    const auto next = [id](int step) { return Number(id + step); };
    const std::string childShape = Number(child + 4);
    return next(0) + "=CARTESIAN_POINT('',(0.," + std::to_string(y) + ".,0.));\n" + //
           next(1) + "=AXIS2_PLACEMENT_3D(''," + next(0) + ",#27,#28);\n" +         //
           next(2) + "=ITEM_DEFINED_TRANSFORMATION('','',#29," + next(1) + ");\n" + //
           next(3) + "=(REPRESENTATION_RELATIONSHIP('',''," + childShape +
           ",#18)REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(" + next(2) +
           ")SHAPE_REPRESENTATION_RELATIONSHIP());\n" +                                               //
           next(4) + "=NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',#16," + Number(child + 2) + ",$);\n" + //
           next(5) + "=PRODUCT_DEFINITION_SHAPE('',''," + next(4) + ");\n" +                          //
           next(6) + "=CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(" + next(3) + ',' + next(5) + ");\n";
}

const char* const kRoot = "#14=PRODUCT('ROOT','','',(#3));\n"
                          "#15=PRODUCT_DEFINITION_FORMATION('','',#14);\n"
                          "#16=PRODUCT_DEFINITION('','',#15,#4);\n"
                          "#17=PRODUCT_DEFINITION_SHAPE('','',#16);\n"
                          "#18=SHAPE_REPRESENTATION('',(#29),#9);\n"
                          "#19=SHAPE_DEFINITION_REPRESENTATION(#17,#18);\n"
                          "#26=CARTESIAN_POINT('',(0.,0.,0.));\n"
                          "#27=DIRECTION('',(0.,0.,1.));\n"
                          "#28=DIRECTION('',(1.,0.,0.));\n"
                          "#29=AXIS2_PLACEMENT_3D('',#26,#27,#28);\n";

} // namespace

std::string PlateText() {
    return File("#1=PRODUCT('PLATE','','',(#9));\n"
                "#2=TESSELLATED_SHAPE_REPRESENTATION('',(#20,#21,#22),#9);\n" +
                Corners(10, -10, 0) + Corners(11, 0, 0) + Corners(12, -10, -5) + Corners(13, 0, -5) +
                "#20=TESSELLATED_SOLID('',(#30,#32),#91);\n"
                "#21=TESSELLATED_SHELL('',(#31),$);\n"
                "#22=COMPLEX_TRIANGULATED_SURFACE_SET('',#13,4,((0.,0.,1.)),(1,2,3,4),((1,2,4,3)),$);\n" +
                Face(30, 10) + Face(31, 11) + Face(32, 12) +
                "#40=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(#100,#110,#120),#9);\n" +
                Style(100, "#30", "1.,0.,0.") + Style(110, "#31", "0.,1.,0.") +
                Style(120, "#32", "0.,0.,1.", ",#128") +
                "#128=SURFACE_STYLE_RENDERING_WITH_PROPERTIES(.NORMAL.,#127,(#129));\n"
                "#129=SURFACE_STYLE_TRANSPARENT(0.5);\n"
                "#70=PRODUCT_RELATED_PRODUCT_CATEGORY('raw material','',(#71));\n"
                "#71=PRODUCT('M1','steel','',(#9));\n"
                "#72=PRODUCT_DEFINITION_FORMATION('','',#71);\n"
                "#73=PRODUCT_DEFINITION('','',#72,#9);\n"
                "#74=MAKE_FROM_USAGE_OPTION('','','',#9,#73,$,1,'',$);\n"
                "#75=PRODUCT_DEFINITION_SHAPE('','',#74);\n"
                "#76=SHAPE_REPRESENTATION('',(#91),#9);\n"
                "#77=SHAPE_DEFINITION_REPRESENTATION(#75,#76);\n"
                "#78=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#1));\n");
}

std::string TwoPlatesText() {
    return File(std::string(kRoot) + Product(50, "PLATE", "plate.stp") + Use(60, 50, 6) + Use(70, 50, -6));
}

std::string MissingPartsText(int count) {
    std::string data = kRoot;
    for (int i = 0; i < count; ++i) {
        std::string name = "PART-";
        name += std::to_string(i);
        std::string file = "missing-";
        file += std::to_string(i);
        data += Product(100 + 20 * i, name, file + ".stp");
        data += Use(110 + 20 * i, 100 + 20 * i, i);
    }
    return File(data);
}

std::string SummaryText() {
    const auto product = [](int index, const std::string& name, const std::string& box) {
        return "{\"idx\": " + std::to_string(index) + ", \"name\": \"" + name + "\", \"bbox\": [" + box +
               "]}";
    };
    const auto occurrence = [](int depth, int index) {
        return "{\"depth\": " + std::to_string(depth) + ", \"idx_prd\": " + std::to_string(index) +
               ", \"rotation\": [1. 0. 0. 0. 1. 0. 0. 0. 1.], \"translation\": [0. 0. 0.]}";
    };
    return "{\"products_table\": {\"nb_products\": 3, \"products\": [\n" +
           product(1, "TOP", "-10. 10. -5. 5. 0. 1.") + ",\n" + product(2, "LEFT", "-10. -2. -5. 5. 0. 1.") +
           ",\n" + product(3, "RIGHT", "2. 10. -5. 5. 0. 1.") +
           "]},\n\"occurrences_table\": {\"nb_occurrences\": 3, \"max_depth\": 1, \"occurrences\": [\n" +
           occurrence(0, 1) + ",\n" + occurrence(1, 2) + ",\n" + occurrence(1, 3) + "]}}\n";
}

} // namespace tarnwick::test
