#include "app/eye_text.h"
#include "app/system_names.h"

#include <QFile>
#include <QStandardPaths>

namespace tarnwick {

std::string PathBytes(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

std::string FindApplication(const std::string& name) {
    return PathBytes(QStandardPaths::findExecutable(EyeText(name)));
}

} // namespace tarnwick
