#pragma once

#include "tools/open/open_file.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <atomic>
#include <string>
#include <thread>

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;

namespace tarnwick::tools {

// Finds what the viewer is to show for a file, on a thread of its own. Shows the progress meanwhile, then
// what is missing or why there is nothing. Where the work is done at once, no window appears.
class OpenWindow : public QDialog {
public:
    // `cancelled` becomes true from outside when the program is to end.
    OpenWindow(std::string file, prepare::PrepareOptions options, std::atomic<bool>* cancelled);
    ~OpenWindow() override; // waits for the work

    // Returns when the user has seen all that there is to see: the path that the viewer is to show, or an
    // empty one.
    std::string Run();

    // True where Run gave up waiting for cancelled work: a step that doesn't look at the flag, such as
    // reading a large file, may take long.
    bool IsAtWork() const { return !isFinished_; }

    void reject() override; // Cancel, Close, Escape, and the button of the title bar

private:
    void Work();
    void Look();
    void ShowProgress(std::size_t done, std::size_t parts);
    void ShowOutcome();
    void ListLosses();
    void Cancel();

    const std::string file_;
    const prepare::PrepareOptions options_;
    std::atomic<bool>& cancelled_;
    std::atomic<std::size_t> done_{0};
    std::atomic<std::size_t> parts_{0};
    std::atomic<bool> isFinished_{false};
    OpenOutcome outcome_; // the thread's until isFinished_
    std::thread thread_;

    QLabel* what_;
    QProgressBar* bar_;
    QLabel* left_;
    QListWidget* losses_;
    QPushButton* open_;
    QPushButton* cancel_;
    QTimer look_;
    QElapsedTimer clock_; // since the number of parts is known
    QEventLoop loop_;
    std::string path_; // that Run returns
    bool isToldAll_ = false;
};

} // namespace tarnwick::tools
