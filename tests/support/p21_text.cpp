#include "support/p21_text.h"

namespace tarnwick::test {

std::string P21Header(std::string_view schema) {
    return "ISO-10303-21;\n"
           "HEADER;\n"
           "FILE_DESCRIPTION((''),'2;1');\n"
           "FILE_NAME('','',(''),(''),'','','');\n"
           "FILE_SCHEMA(('" +
           std::string(schema) +
           "'));\n"
           "ENDSEC;\n"
           "DATA;\n";
}

std::string P21Text(const Lines& data, std::string_view schema) {
    std::string text = P21Header(schema);
    for (const std::string& line : data) {
        text += line;
        text += '\n';
    }
    return text + "ENDSEC;\nEND-ISO-10303-21;\n";
}

std::string PartText(std::string_view items, const Lines& lines) {
    Lines data{"#1=PRODUCT('P1','part one','',(#9));",
               "#2=TESSELLATED_SHAPE_REPRESENTATION(''," + std::string(items) + ",#9);"};
    Append(data, lines);
    return P21Text(data);
}

void Append(Lines& lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
}

Lines TwoStyles() {
    return {
        "#50=PRESENTATION_STYLE_ASSIGNMENT((#52));",
        "#51=PRESENTATION_STYLE_ASSIGNMENT((#53));",
        "#52=SURFACE_STYLE_USAGE(.BOTH.,#54);",
        "#53=SURFACE_STYLE_USAGE(.BOTH.,#55);",
        "#54=SURFACE_SIDE_STYLE('',(#56));",
        "#55=SURFACE_SIDE_STYLE('',(#56,#60));",
        "#56=SURFACE_STYLE_FILL_AREA(#57);",
        "#57=FILL_AREA_STYLE('',(#58));",
        "#58=FILL_AREA_STYLE_COLOUR('',#59);",
        "#59=COLOUR_RGB('',0.1,0.2,0.3);",
        "#60=SURFACE_STYLE_RENDERING_WITH_PROPERTIES(.NORMAL.,#61,(#62));",
        "#61=DRAUGHTING_PRE_DEFINED_COLOUR('red');",
        "#62=SURFACE_STYLE_TRANSPARENT(0.5);",
    };
}

std::string SmallPartText() {
    Lines lines{
        "#10=COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.),(0.,1.5E1,-2.25)));",
        "#20=TESSELLATED_SOLID('',(#30,#31),#91);",
        "#21=TESSELLATED_SHELL('',(#32),$);",
        "#22=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4,((0.,0.,1.)),(4,3,2,1),((1,2,3,4)),$);",
        "#30=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),#92,(1,2,3,4),((1,2,3),(1,3,4)));",
        "#31=COMPLEX_TRIANGULATED_FACE('',#10,3,((0.,0.,1.),(0.,1.,0.)),$,(1,2,4),((1,2,3)),((3,2,1)));",
        "#32=TRIANGULATED_FACE('',#10,$,$,$,(),((1,2,3),(4,3,2)));",
        "#40=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(#41,#42,#43),#9);",
        "#41=STYLED_ITEM('',(#50),#20);",
        "#42=STYLED_ITEM('',(#51),#32);",
        "#43=STYLED_ITEM('',(#50),#31);",
    };
    Append(lines, TwoStyles());
    Append(lines, {
                      "#70=PRODUCT_RELATED_PRODUCT_CATEGORY('raw material','',(#71));",
                      "#71=PRODUCT('M1','steel','',(#9));",
                      "#72=PRODUCT_DEFINITION_FORMATION('','',#71);",
                      "#73=PRODUCT_DEFINITION('','',#72,#9);",
                      "#74=MAKE_FROM_USAGE_OPTION('','','',#9,#73,$,1,'',$);",
                      "#75=PRODUCT_DEFINITION_SHAPE('','',#74);",
                      "#76=SHAPE_REPRESENTATION('',(#91),#9);",
                      "#77=SHAPE_DEFINITION_REPRESENTATION(#75,#76);",
                      "#78=PRODUCT_RELATED_PRODUCT_CATEGORY('part','',(#1));",
                  });
    return PartText("(#20,#21,#22)", lines);
}

} // namespace tarnwick::test
