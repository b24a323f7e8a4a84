#include "archive/stpa_driver.h"

#include "archive/stpa_archive.h"
#include "platform/console.h"
#include "text/one_line.h"
#include "xml/stpx_driver.h"

#include <cerrno>
#include <cstring>

namespace tarnwick {

namespace {

// Notes the archive itself as unread; returns `result`.
int GiveUp(ZIPReader& reader, const char* path, const char* reason, int result) {
    reader.loaded.unreadFiles.push_back({0, path, "", reason});
    return result;
}

} // namespace

int TraiteSTPA(ZIPReader& reader, const char* path, const char* rootName, bool threads) {
    ConsolePrint("Start TraiteSTPA\n");
    reader.loaded.Clear();
    ZipArchive archive(path);
    if (!archive.IsOpen() && archive.Failure() == ENOMEM) {
        GiveUpForMemory(path, "", 0, &reader.loaded.unreadFiles);
        return ZIPReader::kNoIni;
    }
    if (!archive.IsOpen()) {
        const int failure = archive.Failure();
        ConsolePrint("<E> %s: can't be opened as an archive%s%s\n", OneLine(path).Text(),
                     failure != 0 ? ": " : "", failure != 0 ? std::strerror(failure) : "");
        return GiveUp(reader, path, "can't be opened as an archive", ZIPReader::kNoIni);
    }
    std::string root;
    int isStpx = 0;
    {
        TextMemory memory;
        std::size_t size = 0;
        const char* problem = nullptr;
        const char* const ini = archive.ReadMember("stpa.ini", memory, &size, &problem);
        if (ini == nullptr && problem == kNeedsMemory) {
            GiveUpForMemory(path, "", 0, &reader.loaded.unreadFiles);
            return ZIPReader::kNoIni;
        }
        if (ini == nullptr) {
            return GiveUp(reader, path, "has no member stpa.ini that can be read", ZIPReader::kNoIni);
        }
        const int result = ParseStpaIni(ini, &root, &isStpx);
        if (result != 0) { return GiveUp(reader, path, "names no root in its member stpa.ini", result); }
    }
    if (isStpx != 1) {
        ConsolePrint("<E> Only stpx root files are supported in sptA archives.\n");
        return GiveUp(reader, path, "has a root that is no stpx document", ZIPReader::kNotStpx);
    }
    if (!threads) {
        reader.loaded.pickMode = kPickProducts;
        return GiveUp(reader, path, "is an archive, which can't be dropped or read without threads",
                      ZIPReader::kSuccess);
    }
    StpxSession session(reader.loaded);
    session.zip = &archive;
    session.progress = reader.progress;
    TraiteSTEPXFileNewMT(session, root.c_str(), rootName, 0, threads);
    return session.gaveUp ? ZIPReader::kRootUnread : ZIPReader::kSuccess;
}

int ParseStpaIni(std::string_view text, std::string* name, int* isStpx) {
    *isStpx = 0;
    const std::size_t open = text.find('"');
    if (open == std::string_view::npos) { return 1; }
    const std::size_t close = text.find('"', open + 1);
    if (close == std::string_view::npos) { return 0; }
    *name = text.substr(open + 1, close - open - 1);
    *isStpx = name->ends_with(".stpx") ? 1 : 0;
    return 0;
}

} // namespace tarnwick
