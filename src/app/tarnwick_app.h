#pragma once

#include <string>
#include <vector>

namespace tarnwick {

// The application: a console for the log, and one modal dialog with which the program ends.
class CTarnwickApp {
public:
    // Sets what the toolkit reads when it starts; call it before the QApplication is made.
    static void PrepareToolkit();

    explicit CTarnwickApp(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {}

    // Runs the dialog. Returns the exit status.
    int InitInstance();

private:
    std::vector<std::string> arguments_;
};

} // namespace tarnwick
