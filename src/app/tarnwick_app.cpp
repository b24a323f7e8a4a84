#include "app/tarnwick_app.h"
#include "app/command_line.h"
#include "app/console_window.h"
#include "app/dialog_link.h"
#include "app/step_viewer_dlg.h"
#include "formats/load_commands.h"
#include "load/arguments.h"
#include "platform/environment.h"
#include "platform/standard_streams.h"

#include <QApplication>
#include <QIcon>

namespace tarnwick {

void CTarnwickApp::PrepareToolkit() {
    // Or else the buttons beside the drawing area would become windows of the X server, too.
    QApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings);
    ChooseWindowSystem();
}

int CTarnwickApp::InitInstance() {
    QApplication::setApplicationName("Tarnwick");
    QApplication::setOrganizationName("Ostrelworks");
    QApplication::setWindowIcon(QIcon(":/tarnwick.png"));
    QApplication::setQuitOnLastWindowClosed(
        false); // the program ends with the dialog, even with a console open
    std::optional<ConsoleWindow> console;
    if (!IsErrorTerminal()) { console.emplace(); }

    STEPViewerDlg dialog(kLoadCommands);
    DialogLink link(dialog);
    if (TakeResident(&arguments_)) { dialog.View().residentLimit = OpenGLControl::usualResidentLimit; }
    dialog.commandLine = JoinArguments(arguments_);
    dialog.OnInitDialog();
    if (console) { console->ShowBeside(&dialog); }
    dialog.exec();
    return 0;
}

} // namespace tarnwick
