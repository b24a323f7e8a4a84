#include "check/findings.h"

#include <algorithm>

namespace tarnwick {

namespace {

constexpr FindingKindText kTexts[kFindingKinds] = {
    {"unread-file", "Files that could not be read",
     "Put each file where it is looked for, under exactly that name, as a complete file of its kind."},
    {"too-long", "Numbers and names that end the program",
     "Shorten the numbers and names first: nothing that holds them can be loaded."},
    {"damaged", "Damaged entities",
     "Export the file again: what is damaged is lost, and mostly the whole part with it."},
    {"too-many-normals", "Faces with more normals than points",
     "Give each face no normals, one, or one for each point: more give up the whole part."},
    {"broken-list", "Lists that are broken over lines",
     "Write each entity on one line, whatever its length: lists that go on over lines can't be read."},
    {"exact-only", "Exact surfaces without tessellation",
     "Export the part with tessellated geometry (a TESSELLATED_SHAPE_REPRESENTATION): exact surfaces aren't "
     "drawn."},
    {"own-geometry", "Products without a file",
     "Export the assembly with a file for each part: shapes in the file of an assembly aren't drawn."},
    {"dots-in-name", "Files whose names hold \"...\"",
     "Rename the files whose names hold \"...\": such a reference is ignored."},
    {"several-representations", "More than one TESSELLATED_SHAPE_REPRESENTATION",
     "Put all solids, shells and surface sets into one TESSELLATED_SHAPE_REPRESENTATION: only the last one "
     "counts."},
    {"not-drawn", "Items that are not drawn",
     "Write shapes as faces of a TESSELLATED_SOLID or TESSELLATED_SHELL, or as "
     "COMPLEX_TRIANGULATED_SURFACE_SETs, that the representation lists: others aren't drawn."},
    {"element", "Elements that are not drawn",
     "Mesh the model with surface elements of four nodes: others aren't drawn."},
    {"swallowed-line", "Entities that the line before has swallowed",
     "End each line of the data section with \";\", and take out comments and lines of blanks."},
    {"blank", "Blanks and tabs where none may stand",
     "Take out the blanks and tabs: the readers take the text to the character."},
    {"name", "Names that put the readers out of step",
     "Take commas, \"#\" and parentheses out of the names: the readers don't tell them from those of the "
     "entity."},
    {"several-on-a-line", "Entities behind others on a line",
     "Start each entity on a line of its own: what else stands on a line is lost."},
    {"use", "Uses that the tree doesn't show",
     "Give each use its CONTEXT_DEPENDENT_SHAPE_REPRESENTATION with a transformation between two full "
     "placements."},
    {"missing-entity", "References to entities that aren't there",
     "Export the file again: it refers to entities that it doesn't have."},
    {"number-twice", "Numbers that stand twice",
     "Give each entity a number of its own: of two with one number only the first is found."},
    {"transparent", "Faces of opacity 0",
     "Mind that the number of a SURFACE_STYLE_TRANSPARENT is the opacity: with 0 nothing is seen."},
    {"colour", "Colours that don't reach their faces",
     "List the styled items in the file's first MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION, "
     "with "
     "the usual chain from style to colour."},
    {"not-listed", "Shapes that the representation doesn't lead to",
     "List these shapes in the TESSELLATED_SHAPE_REPRESENTATION if they belong to the part; annotations "
     "needn't be there."},
    {"no-normals", "Faces without normals",
     "Export with normals, one for each point or one for each face: without them the light is wrong."},
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
