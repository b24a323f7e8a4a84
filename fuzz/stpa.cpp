// An archive, as its bytes or as a bundle of the members that it is to have, on one thread.
#include "archive/stpa_archive.h"
#include "archive/stpa_driver.h"
#include "harness.h"
#include "xml/stpx_driver.h"
#include "zip_bundle.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        fuzz::Folder& folder = fuzz::Folder::Own();
        folder.Clear();
        const std::string_view bytes = fuzz::Text(data, size);
        const std::string path = folder.Write("x.stpa", bytes);
        if (bytes.starts_with("@@")) { fuzz::WriteZip(path, bytes); }
        SceneView view;
        view.loaded.scene = std::make_unique<SceneMemory>();
        ZIPReader reader(view.loaded);
        if (TraiteSTPA(reader, path.c_str(), nullptr, false) != ZIPReader::kSuccess) { return; }
        // Without threads nothing was read, and with them an ending on another thread would be the process's.
        ZipArchive archive(path.c_str());
        TextMemory memory;
        std::size_t length = 0;
        const char* problem = nullptr;
        std::string root;
        int isStpx = 0;
        ParseStpaIni(archive.ReadMember("stpa.ini", memory, &length, &problem), &root, &isStpx);
        StpxSession session(view.loaded);
        session.zip = &archive;
        TraiteSTEPXFileNewMT(session, root.c_str(), nullptr, 0, false);
        fuzz::Touch(view);
        if (size < 4096) { fuzz::Report(view); }
    });
}
