#include "app/console_window.h"
#include "app/eye_text.h"
#include "platform/console.h"
#include "platform/within_memory.h"

#include <QFontDatabase>
#include <QScreen>
#include <QScrollBar>
#include <QTextCursor>

#include <algorithm>
#include <utility>

namespace tarnwick {

ConsoleWindow::ConsoleWindow() {
    setWindowTitle("Tarnwick console");
    setAttribute(Qt::WA_QuitOnClose, false);
    setReadOnly(true);
    setUndoRedoEnabled(false);
    setLineWrapMode(NoWrap);
    setMaximumBlockCount(kLinesKept);
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(12);
    setFont(font);
    setFrameShape(QFrame::NoFrame);
    QPalette colours = palette();
    colours.setColor(QPalette::Base, QColor(0x1e, 0x22, 0x27));
    colours.setColor(QPalette::Text, QColor(0xd7, 0xdc, 0xe2));
    setPalette(colours);
    SetConsoleSink(
        [](void* window, const char* text, std::size_t length) {
            static_cast<ConsoleWindow*>(window)->Take({text, length});
        },
        this);
}

ConsoleWindow::~ConsoleWindow() {
    SetConsoleSink(nullptr, nullptr);
}

void ConsoleWindow::ShowBeside(QWidget* window) {
    constexpr int kGap = 16;
    constexpr int kTitleBar = 32;
    const QRect room = window->screen()->availableGeometry();
    const int left = room.width() - window->width() - 3 * kGap;
    QRect place(0, 0, std::clamp(left, 400, 640), std::min(window->height(), room.height() - kTitleBar));
    if (left >= place.width()) {
        const int free = room.width() - window->width() - kGap - place.width();
        const QPoint corner(room.x() + free / 2,
                            room.y() + std::max((room.height() - window->height()) / 2, kTitleBar));
        window->move(corner);
        place.moveTopLeft(corner + QPoint(window->width() + kGap, 0));
    } else {
        place.setHeight(place.height() / 2);
        place.moveBottomRight(room.bottomRight());
    }
    setGeometry(place);
    setAttribute(Qt::WA_ShowWithoutActivating);
    show();
}

void ConsoleWindow::Take(std::string_view text) {
    const std::lock_guard guard(lock_);
    if (!WithinMemory([&] { Keep(text); })) { hasLost_ = true; }
}

void ConsoleWindow::Keep(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        if (lines_.empty() || lines_.back().ends_with('\n')) { lines_.emplace_back(); }
        lines_.back().append(text.substr(0, end));
        text.remove_prefix(end);
    }
    // The window isn't updated during a load: lines that it would drop anyway aren't kept.
    while (lines_.size() > static_cast<std::size_t>(kLinesKept)) { lines_.pop_front(); }
    if (!flushIsComing_) {
        flushIsComing_ = QMetaObject::invokeMethod(
            this, [this] { Flush(); }, Qt::QueuedConnection);
    }
}

void ConsoleWindow::Flush() {
    if (WithinMemory([this] { ShowKept(); })) { return; }
    const std::lock_guard guard(lock_);
    hasLost_ = true;
}

void ConsoleWindow::ShowKept() {
    std::deque<std::string> lines;
    bool hasLost = false;
    {
        const std::lock_guard guard(lock_);
        flushIsComing_ = false;
        lines.swap(lines_);
        hasLost = std::exchange(hasLost_, false);
    }
    const bool follows = verticalScrollBar()->value() == verticalScrollBar()->maximum();
    QString text;
    for (const std::string& line : lines) { text += EyeText(line); }
    if (hasLost) { text += "<E> Lines are missing here, for want of memory\n"; }
    QTextCursor end(document());
    end.movePosition(QTextCursor::End);
    end.insertText(text);
    if (follows) { verticalScrollBar()->setValue(verticalScrollBar()->maximum()); }
}

} // namespace tarnwick
