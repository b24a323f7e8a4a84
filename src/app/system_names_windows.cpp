#include "app/eye_text.h"
#include "app/system_names.h"
#include "platform/files.h"
#include "platform/programs.h"

#include <QSettings>

namespace tarnwick {

std::string PathBytes(const QString& path) {
    return path.toStdString(); // UTF-8
}

std::string FindApplication(const std::string& name) {
    // Few are in PATH; most tell the system where they are.
    const std::string found = FindProgram(name);
    if (!found.empty()) { return found; }
    for (const char* const root : {"HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE"}) {
        const QString key = QString("%1\\Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\%2.exe")
                                .arg(QString(root), EyeText(name));
        std::string path = PathBytes(QSettings(key, QSettings::NativeFormat).value("Default").toString());
        std::erase(path, '"');
        if (!path.empty() && IsRegularFile(path)) { return path; }
    }
    return {};
}

} // namespace tarnwick
