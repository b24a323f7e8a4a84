#include "growth_cases.h"

#include <cstdint>
#include <unordered_set>

namespace tarnwick::growth {

namespace {

std::string Id(std::int64_t id) {
    return "#" + std::to_string(id);
}

std::string Line(std::int64_t id, const std::string& entity) {
    return Id(id) + "=" + entity + ";\n";
}

std::string File(const std::string& lines) {
    return "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF'));"
           "\nENDSEC;\n"
           "DATA;\n" +
           lines + "ENDSEC;\nEND-ISO-10303-21;\n";
}

// "#10,#11,#12" and so on.
std::string Ids(std::int64_t first, int count) {
    std::string ids;
    for (int i = 0; i < count; ++i) { ids += (i > 0 ? "," : "") + Id(first + i); }
    return ids;
}

const std::string kPoints = "COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.)))";
const std::string kFace = "TRIANGULATED_FACE('',#2,3,$,$,$,((1,2,3)))";

// A part of one shell with these faces. Lines from 10 on are free.
std::string Part(const std::string& faceIds, const std::string& lines) {
    return File(Line(1, "PRODUCT('P','','',())") + Line(2, kPoints) +
                Line(3, "TESSELLATED_SHELL('',(" + faceIds + "),$)") +
                Line(4, "TESSELLATED_SHAPE_REPRESENTATION('',(#3),#9)") + lines);
}

// Numbers that meet in one bucket of a table of 2 to the power `bits`: their digits have one sum.
std::int64_t Meeting(int bits, int i) {
    const std::int64_t mask = (std::int64_t{1} << bits) - 1;
    return static_cast<std::int64_t>(i) << bits | ((mask - 5 - i) & mask);
}

// The bits of an entity table with so many entries.
int BitsFor(int entries) {
    int bits = 2;
    for (; entries > 5; entries /= 2) { ++bits; }
    return bits;
}

// Styled items whose styles aren't there.
std::string StylesThatMeet(int n) {
    std::string lines =
        Line(10, kFace) +
        Line(11, "MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(" + Ids(20, n) + "),#9)");
    for (int i = 0; i < n; ++i) {
        lines += Line(20 + i, "STYLED_ITEM('',(" + Id(Meeting(BitsFor(n), i)) + "),#10)");
    }
    return Part("#10", lines);
}

// One style for each colour; the numbers of the colours are multiples of the bucket count that a hash table
// of the standard library has for as many of them.
std::string ColoursThatMeet(int n) {
    std::unordered_set<std::int32_t> table;
    for (int i = 0; i < n; ++i) { table.insert(i); }
    const auto step = static_cast<std::int64_t>(table.bucket_count());
    std::string lines = Line(10, kFace);
    std::string items;
    for (int i = 0; i < n; ++i) {
        const std::int64_t colour = step * (30 + i);
        const std::int64_t own = 1000000000 + 8 * i;
        lines += Line(own, "STYLED_ITEM('',(" + Id(own + 1) + "),#10)") +
                 Line(own + 1, "PRESENTATION_STYLE_ASSIGNMENT((" + Id(own + 2) + "))") +
                 Line(own + 2, "SURFACE_STYLE_USAGE(.BOTH.," + Id(own + 3) + ")") +
                 Line(own + 3, "SURFACE_SIDE_STYLE('',(" + Id(own + 4) + "))") +
                 Line(own + 4, "SURFACE_STYLE_FILL_AREA(" + Id(own + 5) + ")") +
                 Line(own + 5, "FILL_AREA_STYLE('',(" + Id(own + 6) + "))") +
                 Line(own + 6, "FILL_AREA_STYLE_COLOUR(''," + Id(colour) + ")") +
                 Line(colour, "COLOUR_RGB('',1.,0.5,0.)");
        items += (i > 0 ? "," : "") + Id(own);
    }
    return Part("#10", lines + Line(11, "MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(" +
                                            items + "),#9)"));
}

// The use of a product by product 1; `own` is the first of its numbers, of which it takes five.
std::string Use(std::int64_t own, std::int64_t definition, const std::string& name) {
    return Line(own, "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(#5," + Id(own + 1) + ")") +
           Line(own + 1, "PRODUCT_DEFINITION_SHAPE('',''," + Id(own + 2) + ")") +
           Line(own + 2, "NEXT_ASSEMBLY_USAGE_OCCURRENCE('','','',#3," + Id(definition) + ",$)") +
           Line(definition, "PRODUCT_DEFINITION('',''," + Id(own + 3) + ",#9)") +
           Line(own + 3, "PRODUCT_DEFINITION_FORMATION('',''," + Id(own + 4) + ")") +
           Line(own + 4, "PRODUCT('" + name + "','','',())");
}
const std::string kTop =
    Line(1, "PRODUCT('top','','',())") + Line(2, "PRODUCT_DEFINITION_FORMATION('','',#1)") +
    Line(3, "PRODUCT_DEFINITION('','',#2,#9)") +
    Line(5, "(REPRESENTATION_RELATIONSHIP('','',#9,#9)REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION(#6)"
            "SHAPE_REPRESENTATION_RELATIONSHIP())") +
    Line(6, "ITEM_DEFINED_TRANSFORMATION('','',#7,#7)") + Line(7, "AXIS2_PLACEMENT_3D('',#8,#10,#11)") +
    Line(8, "CARTESIAN_POINT('',(0.,0.,0.))") + Line(10, "DIRECTION('',(0.,0.,1.))") +
    Line(11, "DIRECTION('',(1.,0.,0.))");

std::string DefinitionsThatMeet(int n) {
    std::string lines = kTop;
    for (int i = 0; i < n; ++i) {
        lines += Use(1000000000 + 5 * i, Meeting(BitsFor(6 * n / 40), i + 1), "p" + std::to_string(i));
    }
    return File(lines);
}

// Documents whose names lack their end: the nearest quote is far away, or nowhere.
std::string NamesWithoutEnd(int n) {
    std::string lines = kTop + Use(20, 30, "part") + Line(12, "DOCUMENT_FILE('part.stp");
    for (int i = 0; i < n; ++i) { lines += Line(40 + i, "APPLIED_DOCUMENT_REFERENCE(#12,$,(#30))"); }
    return File(lines);
}

// Faces without a comma; the line that has them all stands last.
std::string FacesThatWalkFar(int n) {
    std::string lines;
    for (int i = 0; i < n; ++i) { lines += Line(10 + i, "TRIANGULATED_FACE(#1)"); }
    return Part(Ids(10, n), lines + Line(10 + n, "FAR('',#2,3,$,$,$,((1,2,3)))"));
}

// The same with blanks on the way, and no delimiter after the first index.
std::string FacesThatSkipFar(int n) {
    std::string lines;
    for (int i = 0; i < n; ++i) { lines += Line(10 + i, "COMPLEX_TRIANGULATED_FACE(#1)"); }
    const std::string gap(static_cast<std::size_t>(10 * n), ' ');
    const std::string text(static_cast<std::size_t>(10 * n), 'x');
    return Part(Ids(10, n), lines + Line(10 + n, "FAR('',#2,3,$,$," + gap + "$," + text + ",(" + gap + "(1" +
                                                     text + ",2,3)),$)"));
}

std::string TrianglesWithoutCommas(int n) {
    std::string triangles;
    for (int i = 0; i < n; ++i) { triangles += "(1)"; }
    return Part("#10", Line(10, "TRIANGULATED_FACE('',#2,3,$,$,$,(" + triangles + "))") + Line(11, kFace));
}

// Faces that take turns with two lists of points.
std::string FacesOfTwoLists(int n) {
    std::string points;
    for (int i = 0; i < n; ++i) { points += (i > 0 ? ",(" : "(") + std::to_string(i) + ".,0.,1.)"; }
    std::string lines = Line(5, "COORDINATES_LIST('',3,(" + points + "))") +
                        Line(6, "COORDINATES_LIST('',3,(" + points + "))");
    for (int i = 0; i < n; ++i) {
        lines += Line(10 + i, std::string("TRIANGULATED_FACE('',") + (i % 2 == 0 ? "#5" : "#6") +
                                  ",3,$,$,(1,2,3),((1,2,3)))");
    }
    return Part(Ids(10, n), lines);
}

// Shells whose list stands far away, with a long gap in it.
std::string ShellsThatWalkFar(int n) {
    std::string lines = Line(1, "PRODUCT('P','','',())") + Line(2, kPoints) + Line(3, kFace);
    for (int i = 0; i < n; ++i) { lines += Line(10 + i, "TESSELLATED_SHELL"); }
    const std::string text(static_cast<std::size_t>(10 * n), 'x');
    return File(lines + Line(10 + n, "FAR('',(#3," + text + "#3)," + text + "$)") +
                Line(11 + n, "TESSELLATED_SHAPE_REPRESENTATION('',(" + Ids(10, n) + "),#9)"));
}

// Materials, each with a shape definition of its own, for one solid.
std::string Materials(int n) {
    std::string lines =
        Line(10, kFace) + Line(11, "PRODUCT_RELATED_PRODUCT_CATEGORY('raw material',$,(#12))") +
        Line(12, "PRODUCT('steel','steel','',())") + Line(13, "PRODUCT_DEFINITION_FORMATION('','',#12)") +
        Line(14, "PRODUCT_DEFINITION('','',#13,#9)") + Line(15, "SHAPE_REPRESENTATION('',(#3),#9)");
    for (int i = 0; i < n; ++i) {
        const std::int64_t own = 20 + 3 * i;
        lines += Line(own, "MAKE_FROM_USAGE_OPTION('','','',#9,#14,1,'',$)") +
                 Line(own + 1, "PRODUCT_DEFINITION_SHAPE('',''," + Id(own) + ")") +
                 Line(own + 2, "SHAPE_DEFINITION_REPRESENTATION(" + Id(own + 1) + ",#15)");
    }
    return Part("#10", lines);
}

// One material with many items, for as many solids, by as many shape definitions.
std::string MaterialOfManyItems(int n) {
    std::string solids;
    for (int i = 0; i < n; ++i) { solids += Line(30 + i, "TESSELLATED_SOLID('',(#10),$)"); }
    std::string lines = Line(1, "PRODUCT('P','','',())") + Line(2, kPoints) + Line(10, kFace) +
                        Line(4, "TESSELLATED_SHAPE_REPRESENTATION('',(" + Ids(30, n) + "),#9)") +
                        Line(11, "PRODUCT_RELATED_PRODUCT_CATEGORY('raw material',$,(#12))") +
                        Line(12, "PRODUCT('steel','steel','',())") +
                        Line(13, "PRODUCT_DEFINITION_FORMATION('','',#12)") +
                        Line(14, "PRODUCT_DEFINITION('','',#13,#9)") +
                        Line(15, "SHAPE_REPRESENTATION('',(" + Ids(30, n) + "),#9)") +
                        Line(16, "MAKE_FROM_USAGE_OPTION('','','',#9,#14,1,'',$)") +
                        Line(17, "PRODUCT_DEFINITION_SHAPE('','',#16)") + solids;
    for (int i = 0; i < n; ++i) { lines += Line(30 + n + i, "SHAPE_DEFINITION_REPRESENTATION(#17,#15)"); }
    return File(lines);
}

// A statement without an end, with a long number, that swallows the lines after it.
std::string SwallowedLines(int n) {
    std::string lines = "#" + std::string(static_cast<std::size_t>(10 * n), '0') + "20=X('')\n";
    for (int i = 0; i < n; ++i) { lines += Id(30 + i) + "=X('')\n"; }
    return Part("#10", Line(10, kFace) + lines);
}

// Many uses that share the lines of their chain, which are long.
std::string UsesOfLongLines(int n) {
    const std::string text(static_cast<std::size_t>(10 * n), 'x');
    std::string lines = kTop + Line(20, "PRODUCT_DEFINITION_SHAPE('" + text + "','',#21)") +
                        Line(21, "NEXT_ASSEMBLY_USAGE_OCCURRENCE('','" + text + "','',#3,#22,$)") +
                        Line(22, "PRODUCT_DEFINITION('','" + text + "',#23,#9)") +
                        Line(23, "PRODUCT_DEFINITION_FORMATION('','" + text + "',#24)") +
                        Line(24, "PRODUCT('part','','',())") +
                        Line(25, "DOCUMENT_FILE('part.stp','" + text + "')");
    for (int i = 0; i < n; ++i) {
        lines += Line(30 + 2 * i, "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(#5,#20)") +
                 Line(31 + 2 * i, "APPLIED_DOCUMENT_REFERENCE(#25,'',(#22))");
    }
    return File(lines);
}

// Names of one sum in base 31: "Aa" has that of "BB".
std::string MeetingName(int i) {
    std::string name;
    for (int bit = 0; bit < 18; ++bit) { name += (i >> bit & 1) != 0 ? "BB" : "Aa"; }
    return name;
}

std::string OccurrencesThatMeet(int n) {
    std::string uses;
    std::string relations;
    for (int i = 0; i < n; ++i) {
        const std::string uid = "\"" + MeetingName(i) + "\"";
        uses += "<Occurrence uid=" + uid + " xsi:type=\"n0:SingleOccurrence\"></Occurrence>\n";
        relations +=
            "<ViewOccurrenceRelationship uid=\"r\" xsi:type=\"n0:NextAssemblyOccurrenceUsage\"><Related "
            "uidRef=" +
            uid +
            "/><Placement><RotationMatrix>1 0 0 0 1 0 0 0 1</RotationMatrix><TranslationVector>0 0 0"
            "</TranslationVector></Placement></ViewOccurrenceRelationship>\n";
    }
    const auto part = [](const std::string& name, const std::string& view) {
        return "<Part uid=\"p\"><Name><CharacterString>" + name + "</CharacterString></Name><PartView>" +
               view + "</PartView></Part>\n";
    };
    return "<n0:Uos><DataContainer>\n" + part("part", uses) + part("top", relations) +
           "</DataContainer></n0:Uos>\n";
}

constexpr Case kCases[] = {
    {"styled items whose styles meet in one bucket", StylesThatMeet, 8000},
    {"colours that meet in one bucket", ColoursThatMeet, 2000},
    {"products whose definitions meet in one bucket", DefinitionsThatMeet, 4000},
    {"names of files without an end", NamesWithoutEnd, 16000},
    {"faces that walk far", FacesThatWalkFar, 16000},
    {"faces that skip far", FacesThatSkipFar, 4000},
    {"triangles without commas", TrianglesWithoutCommas, 100000},
    {"faces that take turns with two lists", FacesOfTwoLists, 4000},
    {"shells that walk far", ShellsThatWalkFar, 4000},
    {"materials", Materials, 2000},
    {"a material of many items", MaterialOfManyItems, 1000},
    {"lines that a statement swallows", SwallowedLines, 4000},
    {"uses of long lines", UsesOfLongLines, 16000},
    {"occurrences whose names meet in one bucket", OccurrencesThatMeet, 4000, "stpx"},
};

} // namespace

std::span<const Case> Cases() {
    return kCases;
}

} // namespace tarnwick::growth
