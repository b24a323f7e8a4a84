// tarnwick: the desktop viewer.

#include "app/command_line.h"
#include "app/tarnwick_app.h"

#include <QApplication>

#include <clocale>

int main(int argc, char** argv) {
    using namespace tarnwick;
    if (const std::optional<int> status = AnswerAtOnce(argc, argv)) { return *status; }
    CTarnwickApp::PrepareToolkit();
    QApplication toolkit(argc, argv);
    std::setlocale(LC_NUMERIC, "C"); // the toolkit took over the user's, and 1.5 would be printed as 1,5
    CTarnwickApp app(ArgumentsOf(argc, argv));
    return app.InitInstance();
}
