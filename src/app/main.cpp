// tarnwick: the desktop viewer.

#include "app/command_line.h"
#include "app/tarnwick_app.h"
#include "platform/out_of_memory.h"
#include "platform/program_start.h"
#include "platform/within_memory.h"

#include <QApplication>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>

using namespace tarnwick;

namespace {

constexpr const char* kOutOfMemory = "tarnwick: it needs more memory than there is\n";

// Runs before the toolkit makes its own objects.
[[gnu::constructor(101)]] void Prepare() {
    std::set_terminate([] { EndOutOfMemory(kOutOfMemory); });
}

// The toolkit ends a program whose display it can't reach by an abort, with the advice to install it again.
void EndWithoutWindow(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (type != QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
        return;
    }
    std::fputs("tarnwick: the display can't be reached; tarnwick-load needs none\n", stderr);
    std::_Exit(1);
}

int Run(int argc, char** argv) {
    if (const std::optional<int> status = AnswerAtOnce(argc, argv)) { return *status; }
    CTarnwickApp::PrepareToolkit();
    qInstallMessageHandler(EndWithoutWindow);
    QApplication toolkit(argc, argv);
    qInstallMessageHandler(nullptr); // back to the usual one
    std::setlocale(LC_NUMERIC, "C"); // the toolkit took over the user's, and 1.5 would be printed as 1,5
    CTarnwickApp app(ArgumentsOf(argc, argv));
    return app.InitInstance();
}

} // namespace

int main(int argc, char** argv) {
    int status = 1;
    if (!WithinMemory([&] {
            const ProgramStart start(argc, argv);
            status = Run(start.count, start.words);
        })) {
        std::fputs(kOutOfMemory, stderr);
    }
    return status;
}
