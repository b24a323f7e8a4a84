#include "viewer_process.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QtEndian>
#include <QThread>

namespace tarnwick::test {

namespace {

constexpr int kPatience = 60000; // milliseconds; sanitizers on a busy machine are slow

// The picture in a file that another program is about to write: its header says when all of it is there.
QImage WholeBitmap(const QString& path) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < kPatience) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly)) {
            const QByteArray bytes = file.readAll();
            if (bytes.size() > 54 && qFromLittleEndian<quint32>(bytes.constData() + 2) == bytes.size()) {
                return QImage::fromData(bytes);
            }
        }
        QThread::msleep(20);
    }
    return {};
}

} // namespace

QString ViewerProcess::Run(const QString& program, const QStringList& arguments, int* status) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(kPatience);
    if (status != nullptr) {
        *status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    return QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
}

void ViewerProcess::Pause(int milliseconds) {
    QThread::msleep(static_cast<unsigned long>(milliseconds));
}

bool ViewerProcess::WaitUntil(const std::function<bool()>& is) {
    QElapsedTimer clock;
    clock.start();
    while (!is()) {
        if (clock.elapsed() > kPatience) { return false; }
        Pause();
    }
    return true;
}

ViewerProcess::ViewerProcess(const QStringList& arguments, const QStringList& environment) {
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert("HOME", home_.path());
    for (const QString& variable : environment) {
        variables.insert(variable.section('=', 0, 0), variable.section('=', 1));
    }
    process_.setProcessEnvironment(variables);
    process_.start(TARNWICK_VIEWER, arguments);
    // Among the windows that the manager knows: the drawing area is a window too. The first field is the
    // identifier, the third the process, and the fifth and all after it the title.
    QElapsedTimer clock;
    clock.start();
    while (window_.isEmpty() && clock.elapsed() < kPatience && process_.state() != QProcess::NotRunning) {
        process_.waitForReadyRead(60);
        for (const QString& line : Run("wmctrl", {"-lp"}).split('\n', Qt::SkipEmptyParts)) {
            const QStringList fields = line.simplified().split(' ');
            if (fields.value(2).toLongLong() == process_.processId() &&
                fields.mid(4).join(' ') != "Tarnwick console") {
                window_ = fields.value(0);
            }
        }
    }
    if (IsOpen()) { Run("xdotool", {"windowactivate", "--sync", window_}); }
}

ViewerProcess::~ViewerProcess() {
    if (process_.state() != QProcess::NotRunning) {
        process_.kill();
        process_.waitForFinished();
    }
}

QString ViewerProcess::Title() {
    return Run("xdotool", {"getwindowname", window_});
}

std::string ViewerProcess::Console(const std::string& expected) {
    QElapsedTimer clock;
    clock.start();
    do {
        process_.waitForReadyRead(20);
        console_ += process_.readAllStandardError();
    } while (console_.toStdString().find(expected) == std::string::npos && clock.elapsed() < kPatience);
    return console_.toStdString();
}

void ViewerProcess::Move(int x, int y) {
    Run("xdotool", {"mousemove", "--window", window_, QString::number(x), QString::number(y)});
    Pause();
}

void ViewerProcess::Press(int button) {
    Run("xdotool", {"mousedown", QString::number(button)});
    Pause();
}

void ViewerProcess::Release(int button) {
    Run("xdotool", {"mouseup", QString::number(button)});
    Pause(120);
}

void ViewerProcess::Click(int x, int y, int button) {
    Move(x, y);
    Press(button);
    Release(button);
}

void ViewerProcess::Drag(int button, QPoint from, QPoint to) {
    Move(from.x(), from.y());
    Press(button);
    const QPoint middle = (from + to) / 2;
    Move(middle.x(), middle.y());
    Move(to.x(), to.y());
    Release(button);
}

void ViewerProcess::Key(const QString& key) {
    Run("xdotool", {"key", key});
    Pause();
}

void ViewerProcess::Type(const QString& text) {
    int status = -1;
    Run("xdotool", {"type", text}, &status);
    EXPECT_EQ(status, 0) << "xdotool";
    Pause();
}

void ViewerProcess::WaitForSize(const std::function<bool(QSize)>& is) {
    EXPECT_TRUE(WaitUntil([&] { return is(Size()); })) << Size().width() << " x " << Size().height();
}

void ViewerProcess::Resize(int width, int height) {
    Run("xdotool", {"windowsize", window_, QString::number(width), QString::number(height)});
    WaitForSize([&](QSize size) { return size == QSize(width, height); });
}

void ViewerProcess::Maximise() {
    const QSize before = Size();
    Run("wmctrl", {"-i", "-r", window_, "-b", "add,maximized_vert,maximized_horz"});
    WaitForSize([&](QSize size) { return size.width() > before.width(); });
}

void ViewerProcess::Restore() {
    const QSize before = Size();
    Run("wmctrl", {"-i", "-r", window_, "-b", "remove,maximized_vert,maximized_horz"});
    WaitForSize([&](QSize size) { return size.width() < before.width(); });
}

void ViewerProcess::Minimise() {
    // A program that has just started may still ask for the keys, and its window comes back with them.
    EXPECT_TRUE(WaitUntil([this] {
        Run("xdotool", {"windowminimize", window_});
        Pause();
        return Run("xprop", {"-id", window_, "WM_STATE"}).contains("Iconic");
    }));
}

QSize ViewerProcess::Size() {
    QSize size;
    for (const QString& line :
         Run("xdotool", {"getwindowgeometry", "--shell", window_}).split('\n', Qt::SkipEmptyParts)) {
        const int value = line.section('=', 1).toInt();
        if (line.startsWith("WIDTH=")) { size.setWidth(value); }
        if (line.startsWith("HEIGHT=")) { size.setHeight(value); }
    }
    return size;
}

QPoint ViewerProcess::Origin() {
    // The mouse knows where the client area starts.
    Move(0, 0);
    QPoint place;
    for (const QString& line :
         Run("xdotool", {"getmouselocation", "--shell"}).split('\n', Qt::SkipEmptyParts)) {
        const int value = line.section('=', 1).toInt();
        if (line.startsWith("X=")) { place.setX(value); }
        if (line.startsWith("Y=")) { place.setY(value); }
    }
    return place;
}

bool ViewerProcess::Drop(QPoint place, const QStringList& uris) {
    const QPoint onScreen = Origin() + place;
    int status = -1;
    Run(TARNWICK_XDND_DROP, QStringList{QString::number(onScreen.x()), QString::number(onScreen.y())} + uris,
        &status);
    return status == 0;
}

testing::AssertionResult ViewerProcess::WaitForTitle(const QString& title) {
    if (WaitUntil([&] { return Title() == title; })) { return testing::AssertionSuccess(); }
    const QString focus = Run("xdotool", {"getwindowfocus", "getwindowname"});
    return testing::AssertionFailure()
           << "the title is \"" << Title().toStdString() << "\", the focus is on \"" << focus.toStdString()
           << "\", of these windows:\n"
           << Run("wmctrl", {"-l"}).toStdString();
}

QString ViewerProcess::WaitForWindow(const QString& name) {
    QString found;
    WaitUntil([&] {
        found = Run("xdotool", {"search", "--onlyvisible", "--name", "^" + name + "$"}).section('\n', 0, 0);
        return !found.isEmpty();
    });
    return found;
}

QString ViewerProcess::WaitForDialog(const QString& name) {
    const QString found = WaitForWindow(name);
    EXPECT_TRUE(WaitUntil([&] { return Run("xdotool", {"getactivewindow"}) == found; }))
        << name.toStdString();
    return found;
}

void ViewerProcess::CloseWindow(const QString& window) {
    Run("wmctrl", {"-i", "-c", window});
    const QString number = QString("0x%1 ").arg(window.toULongLong(), 8, 16, QChar('0'));
    EXPECT_TRUE(WaitUntil([&] { return !(Run("wmctrl", {"-l"}) + '\n').contains(number); }));
}

QString ViewerProcess::Clipboard() {
    return Run("xclip", {"-selection", "clipboard", "-o"});
}

QImage ViewerProcess::Snapshot(const QString& name) {
    const QString path = home_.filePath("Pictures/Tarnwick/" + name + ".bmp");
    Run("xdotool", {"windowactivate", "--sync", window_});
    // The first one only tells that all events before it are through; what they had drawn is in the second.
    QImage picture;
    for (int i = 0; i < 2; ++i) {
        QFile::remove(path);
        Key("p");
        picture = WholeBitmap(path);
    }
    return picture;
}

int ViewerProcess::Close() {
    Run("wmctrl", {"-i", "-c", window_});
    return WaitForEnd();
}

int ViewerProcess::WaitForEnd() {
    if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(kPatience)) { return -1; }
    console_ += process_.readAllStandardError();
    return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -2;
}

} // namespace tarnwick::test
