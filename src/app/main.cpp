// tarnwick: the desktop viewer.

#include "app/command_line.h"
#include "app/tarnwick_app.h"

#include <QApplication>

#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace {

// The toolkit ends a program whose display it can't reach by an abort, with the advice to install it again.
void EndWithoutWindow(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type != QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
        return;
    }
    std::fputs("tarnwick: the display can't be reached; tarnwick-load needs none\n", stderr);
    std::_Exit(1);
}

} // namespace

int main(int argc, char** argv) {
    using namespace tarnwick;
    if (const std::optional<int> status = AnswerAtOnce(argc, argv)) { return *status; }
    CTarnwickApp::PrepareToolkit();
    qInstallMessageHandler(EndWithoutWindow);
    QApplication toolkit(argc, argv);
    qInstallMessageHandler(nullptr); // back to the usual one
    std::setlocale(LC_NUMERIC, "C"); // the toolkit took over the user's, and 1.5 would be printed as 1,5
    CTarnwickApp app(ArgumentsOf(argc, argv));
    return app.InitInstance();
}
