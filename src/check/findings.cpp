#include "check/findings.h"

#include <algorithm>

namespace tarnwick {

namespace {

constexpr FindingKindText kTexts[kFindingKinds] = {
    {"extension", "Names that no load takes",
     "Copy the file under a name that is taken: .stp and .stpz for ISO 10303-21, .stpx and .stpxz for STEP "
     "XML, .stpa for archives, .stpj for summaries.",
     true, false},
    {"unread-file", "Files that could not be read",
     "Put each file where it is looked for, under exactly that name, as a complete file of its kind.", false,
     true},
    {"header", "Files that don't begin as the readers take it",
     "Write ISO-10303-21; as the first characters, FILE_SCHEMA( without a blank in it, and DATA; as a line.",
     true, true},
    {"too-long", "Numbers and names that end the program",
     "Shorten these numbers and names first: what holds them ends the program.", true, true},
    {"stands-still", "Texts on which reading stands still",
     "Take the \"&\" out of these texts, but for &amp;: at any other the load stands still for ever.", true,
     true},
    {"document", "What the reader of STEP XML doesn't take",
     "Write the document with the elements, and in the form, that docs/formats.md shows.", true, true},
    {"no-product", "Files without PRODUCT",
     "Give the file a PRODUCT line: without one a file that is opened by itself isn't drawn.", true, true},
    {"damaged", "Damaged entities",
     "Export the file again: what is damaged is lost, and mostly the whole part with it.", false, true},
    {"too-many-normals", "Faces with more normals than points",
     "Give each face no normals, one, or one for each point: more give up the whole part.", true, true},
    {"exact-only", "Exact shape without tessellation",
     "Export with tessellated geometry (a TESSELLATED_SHAPE_REPRESENTATION): exact shape isn't drawn.", true,
     true},
    {"no-shape", "Files and products without a shape",
     "Export again with the shape: nothing in these files can be drawn.", false, true},
    {"own-geometry", "Products without a file",
     "Export the assembly with a file for each part: shapes in the file of an assembly aren't drawn.", true,
     true},
    {"dots-in-name", "Files whose names hold \"...\"",
     "Rename the files whose names hold \"...\": such a reference is ignored.", true, true},
    {"no-file-name", "References to files that don't name them",
     "Write the name of the file as the first argument of its DOCUMENT_FILE: it is read nowhere else.", true,
     true},
    {"hidden-components", "Products whose file hides their components",
     "Give the file of an assembly's product to a part below it: a product that has a part file shows "
     "that one alone.",
     true, true},
    {"several-representations", "More than one TESSELLATED_SHAPE_REPRESENTATION",
     "Put all solids, shells and surface sets into one TESSELLATED_SHAPE_REPRESENTATION: only the last one "
     "counts.",
     true, true},
    {"not-drawn", "Items that are not drawn",
     "Write shapes as faces of a TESSELLATED_SOLID or TESSELLATED_SHELL, or as "
     "COMPLEX_TRIANGULATED_SURFACE_SETs, that the representation lists: others aren't drawn.",
     true, true},
    {"broken-list", "Lists that are broken over lines",
     "Write each entity on one line, whatever its length: lists that go on over lines can't be read.", true,
     true},
    {"element", "Elements that are not drawn",
     "Mesh the model with surface elements of four nodes: others aren't drawn.", true, true},
    {"swallowed-line", "Entities that the line before has swallowed",
     "End each line of the data section with \";\", and take out comments and lines of blanks.", true, true},
    {"blank", "Blanks and tabs where none may stand",
     "Take out the blanks and tabs: the readers take the text to the character.", true, true},
    {"name", "Names that put the readers out of step",
     "Take commas, \"#\" and parentheses out of the names: the readers don't tell them from those of the "
     "entity.",
     true, true},
    {"several-on-a-line", "Entities after others on a line",
     "Start each entity on a line of its own: what else stands on a line is lost.", true, true},
    {"use", "Uses that the tree doesn't show",
     "Give each use its placement in full: in P21 a CONTEXT_DEPENDENT_SHAPE_REPRESENTATION with a "
     "transformation between two placements, in STEP XML a Placement with RotationMatrix and "
     "TranslationVector in it.",
     true, true},
    {"missing-entity", "References to entities that aren't there",
     "Export the file again: it refers to entities that it doesn't have.", false, false},
    {"number-twice", "Numbers that stand twice",
     "Give each entity a number of its own: of two with one number only the first is found.", false, true},
    {"transparent", "Faces of opacity 0",
     "Mind that the number of a SURFACE_STYLE_TRANSPARENT is the opacity: with 0 nothing is seen.", true,
     false},
    {"black-mesh", "Meshes that are drawn black",
     "Give the corners of the elements sections of their own, in a SURFACE_SECTION_FIELD_VARYING: their "
     "values are the colours.",
     true, false},
    {"colour", "Colours that don't reach their faces",
     "List the styled items in the file's first MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION, "
     "with the usual chain from style to colour.",
     true, false},
    {"not-listed", "Shapes that the representation doesn't lead to",
     "List these shapes in the TESSELLATED_SHAPE_REPRESENTATION if they belong to the part.", true, true},
    {"no-normals", "Faces without normals",
     "Export with normals, one for each point or one for each face: without them the light is wrong.", true,
     false},
    {"nothing-drawn", "Nothing is drawn",
     "Load the file with tarnwick-load: what it says on standard error tells more.", false, true},
};

} // namespace

const FindingKindText& TextOf(FindingKind kind) {
    return kTexts[static_cast<std::size_t>(kind)];
}

void FindLines(std::string_view text, std::vector<Finding>* findings) {
    std::stable_sort(findings->begin(), findings->end(),
                     [](const Finding& a, const Finding& b) { return a.offset < b.offset; });
    std::int32_t line = 1;
    std::size_t counted = 0;
    for (Finding& finding : *findings) {
        if (finding.offset < 0) { continue; }
        const std::size_t offset = std::min(static_cast<std::size_t>(finding.offset), text.size());
        line += static_cast<std::int32_t>(std::count(text.data() + counted, text.data() + offset, '\n'));
        counted = offset;
        finding.line = line;
    }
}

const char* AdviceFor(const std::vector<Finding>& findings) {
    const auto worst = std::min_element(findings.begin(), findings.end(),
                                        [](const auto& a, const auto& b) { return a.kind < b.kind; });
    return worst != findings.end() ? TextOf(worst->kind).advice : "Nothing is wrong with this file.";
}

} // namespace tarnwick
