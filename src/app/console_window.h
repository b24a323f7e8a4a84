#pragma once

#include <QPlainTextEdit>

#include <deque>
#include <mutex>
#include <string>

namespace tarnwick {

// Shows the console channel when the program wasn't started from a terminal. Read-only; it scrolls to its end
// and keeps the last lines. Any thread may print.
class ConsoleWindow : public QPlainTextEdit {
public:
    static constexpr int kLinesKept = 10000;

    ConsoleWindow();
    ~ConsoleWindow() override;

    // Shows the console to the right of the window, which moves over for it, or in the corner of a screen
    // that is too small for both.
    void ShowBeside(QWidget* window);

    // Appends what was printed since the last call.
    void Flush();

private:
    // Takes what is printed; a loss for lack of memory is told at the next chance.
    void Take(std::string_view text);
    void Keep(std::string_view text);
    void ShowKept();

    std::mutex lock_;
    std::deque<std::string> lines_; // not yet in the window; the last one may go on
    bool flushIsComing_ = false;
    bool hasLost_ = false; // some lines, since memory ran out
};

} // namespace tarnwick
