#include "app/snapshot_folder.h"
#include "app/system_names.h"
#include "platform/files.h"

#include <QDir>

namespace tarnwick {

std::string SnapshotFolder() {
    std::string folder = PathBytes(QDir::homePath());
    for (const char* const name : {"/Pictures", "/Tarnwick"}) {
        folder += name;
        MakePrivateFolder(folder); // if that fails, the snapshot says so
    }
    return folder;
}

} // namespace tarnwick
