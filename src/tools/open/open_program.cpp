#include "tools/open/open_program.h"

#include "mesher/mesher.h"
#include "platform/environment.h"
#include "tools/open/command_line.h"
#include "tools/open/open_window.h"
#include "tools/open/open_words.h"
#include "tools/open/places.h"
#include "tools/open/shown_triangles.h"

#include <QApplication>
#include <QIcon>

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace tarnwick::tools {

namespace {

// Set by a signal or the window; all that takes long looks at it.
std::atomic<bool> cancelled{false};
OpenCommand command;
prepare::PrepareOptions options;

void CancelOnSignals() {
    struct sigaction action {};
    action.sa_handler = [](int) { cancelled = true; };
    action.sa_flags = static_cast<int>(SA_RESETHAND); // the second one ends the program
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// The toolkit ends a program whose display it can't reach by an abort.
void GoOnInWords(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type != QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
        return;
    }
    std::fputs("tarnwick-open: the display can't be reached\n", stderr);
    std::_Exit(OpenInWords(command.file, options, &cancelled));
}

// The path that the viewer is to show, or an empty one.
std::string OpenInWindow(int argc, char** argv) {
    qInstallMessageHandler(GoOnInWords);
    QApplication toolkit(argc, argv);
    qInstallMessageHandler(nullptr); // back to the usual one
    std::setlocale(LC_NUMERIC, "C"); // the toolkit took over the user's, and 1.5 would be written as 1,5
    QApplication::setApplicationName("Tarnwick");
    QApplication::setWindowIcon(QIcon(":/tarnwick.png"));
    QApplication::setQuitOnLastWindowClosed(false);
    OpenWindow window(command.file, options, &cancelled);
    std::string path = window.Run();
    if (window.IsAtWork()) {
        RemoveUnfinished(options.folder);
        _exit(1);
    }
    return path;
}

int BecomeViewer(std::string path) {
    std::string viewer = OwnProgram("tarnwick");
    char* const words[] = {viewer.data(), path.data(), nullptr};
    execvp(words[0], words);
    std::fprintf(stderr, "tarnwick-open: the viewer can't be started: %s\n", std::strerror(errno));
    return 1;
}

} // namespace

int RunOpen(int argc, char** argv) {
    int status = 0;
    if (!ReadOptions(argc, argv, &command, &status)) { return status; }
    if (command.shows) { return ShownTriangles(command.file) >= *command.shows ? 0 : 1; }
    options.folder = PreparedFolder(command.file);
    options.meshProgram = FindMeshProgram();
    CancelOnSignals();
    if (command.isPathAsked || !HasDisplay()) { return OpenInWords(command.file, options, &cancelled); }
    const std::string path = OpenInWindow(argc, argv);
    return path.empty() ? 1 : BecomeViewer(path);
}

} // namespace tarnwick::tools
