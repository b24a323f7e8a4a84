#include "check/checked.h"

#include "formats/load_commands.h"
#include "load/no_controls.h"
#include "platform/console.h"
#include "support/capture.h"
#include "support/p21_text.h"

#include <cstdlib>

namespace tarnwick::test {

CheckReport Checked(const std::string& path, bool useThreads) {
    LogCapture log;
    SceneView view;
    NoControls controls;
    LoadDispatch dispatch{view, controls, kLoadCommands};
    return CheckPath(dispatch, path, nullptr, useThreads);
}

CheckReport CheckedUntried(const std::string& path) {
    LogCapture log;
    return CheckWith(path, nullptr, {});
}

std::vector<std::string> Brief(const CheckReport& report) {
    std::vector<std::string> brief;
    for (const Finding& finding : report.findings) {
        std::string one;
        if (report.files.size() > 1) {
            const std::string& file = report.files[static_cast<std::size_t>(finding.file)];
            one += file.substr(file.rfind('/') + 1) + " ";
        }
        one += TextOf(finding.kind).name;
        if (finding.line > 0) { one += " " + std::to_string(finding.line); }
        if (finding.entity > 0) { one += " #" + std::to_string(finding.entity); }
        brief.push_back(one);
    }
    return brief;
}

std::vector<std::string> Findings(std::string_view text, std::string_view name) {
    const TempFolder folder;
    return Brief(Checked(folder.Write(name, text)));
}

std::vector<std::string> Texts(std::string_view text) {
    const TempFolder folder;
    std::vector<std::string> texts;
    for (const Finding& finding : Checked(folder.Write("part.stp", text)).findings) {
        texts.push_back(finding.text);
    }
    return texts;
}

std::string GoodPart() {
    Lines lines{
        "#1=PRODUCT('P1','part one','',());",
        "#2=TESSELLATED_SHAPE_REPRESENTATION('',(#20,#22),#9);",
        "#9=GEOMETRIC_REPRESENTATION_CONTEXT('','',3);",
        "#10=COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.),(0.,1.,0.)));",
        "#20=TESSELLATED_SOLID('',(#30,#31),$);",
        "#22=COMPLEX_TRIANGULATED_SURFACE_SET('',#10,4,((0.,0.,1.)),(),((1,2,3,4),(1,2,3)),$);",
        "#30=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),$,(1,2,3,4),((1,2,3),(1,3,4)));",
        "#31=COMPLEX_TRIANGULATED_FACE('',#10,4,((0.,0.,1.),(0.,1.,0.),(0.,0.,1.),(0.,0.,1.)),$,$,((1,2,3)),"
        "((1,3,4)));",
        "#40=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(#41,#42),#9);",
        "#41=STYLED_ITEM('',(#50),#20);",
        "#42=STYLED_ITEM('',(#51),#22);",
    };
    Append(lines, TwoStyles());
    return P21Text(lines);
}

std::string EditedIn(std::string text, std::string_view from, std::string_view to) {
    const std::size_t place = text.find(from);
    if (place == std::string::npos || text.find(from, place + 1) != std::string::npos) { std::abort(); }
    return text.replace(place, from.size(), to);
}

std::string Edited(std::string_view from, std::string_view to) {
    return EditedIn(GoodPart(), from, to);
}

} // namespace tarnwick::test
