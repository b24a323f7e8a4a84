#include "link/selection.h"
#include "platform/console.h"
#include "platform/paths.h"
#include "text/one_line.h"
#include "text/or_null.h"

namespace tarnwick {

std::string FileNameOf(const Selection& selection) {
    const std::string path = selection.path != nullptr ? selection.path : "";
    return path.substr(FolderOf(path).size());
}

std::vector<std::string> BrowserArguments(const std::string& viewerFolder, const Selection& selection) {
    const std::string& text = selection.selectedText;
    const std::string id = text.empty() ? text : text.substr(1); // without the "#" of a face
    return {"--user-data-dir=" + viewerFolder, "--disable-web-security",
            "file://" + viewerFolder + "/Velquist.html?file=" + viewerFolder +
                "/dataset-AS1-PSTree.json&action=add_pmi&Id=" + id +
                "&Type=face&Url=" + FileNameOf(selection)};
}

void EditPmi(LinkPort& dialog, const std::vector<std::string>& browsers, const std::string& viewerFolder,
             const Selection& selection) {
    ConsolePrint("Call XML viewer : Edit PMI\n");
    ConsolePrint("  File: %s\n  Product: %s  Face: %s\n", OneLine(OrNull(selection.path)).Text(),
                 OneLine(OrNull(selection.rootName)).Text(), OneLine(selection.selectedText).Text());
    dialog.StartProgram(browsers, BrowserArguments(viewerFolder, selection));
}

} // namespace tarnwick
