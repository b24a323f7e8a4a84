#include "app/snapshot_folder.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace tarnwick {

std::string SnapshotFolder() {
    std::string folder = QFile::encodeName(QDir::homePath()).toStdString();
    for (const char* const name : {"/Pictures", "/Tarnwick"}) {
        folder += name;
        mkdir(folder.c_str(), 0700); // fails where it exists, and the snapshot says so where it can't be made
    }
    return folder;
}

} // namespace tarnwick
