// The built viewer as a program on the display: what its users do to it, through real events, and what they
// see of it.
#pragma once

#include <gtest/gtest.h>

#include <QImage>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <string>

namespace tarnwick::test {

class ViewerProcess {
public:
    // Starts the program with a home of its own and waits for its window. `environment` holds "NAME=value".
    explicit ViewerProcess(const QStringList& arguments = {}, const QStringList& environment = {});
    ~ViewerProcess();

    bool IsOpen() const { return !window_.isEmpty(); }
    QString Title();
    // Everything that the console channel printed so far, waiting until it holds `expected`.
    std::string Console(const std::string& expected = "");

    // Mouse and keys; places are device pixels in the dialog's client area.
    void Move(int x, int y);
    void Click(int x, int y, int button = 1);
    void Drag(int button, QPoint from, QPoint to);
    void Press(int button);
    void Release(int button);
    void Key(const QString& key);
    // Types a text into the window that has the focus.
    void Type(const QString& text);
    void Resize(int width, int height);
    void Maximise();
    void Restore();
    void Minimise();
    QSize Size();
    QPoint Origin();
    bool Drop(QPoint place, const QStringList& uris);
    // Waits until the dialog has this title; else says what the display shows in the end.
    testing::AssertionResult WaitForTitle(const QString& title);
    // Waits until another window of this name is there; returns its identifier, a decimal number.
    QString WaitForWindow(const QString& name);
    // The same, and until it has the keys.
    QString WaitForDialog(const QString& name);
    // Returns when the window is gone.
    void CloseWindow(const QString& window);
    // What another program gets when the user pastes there.
    static QString Clipboard();

    // Presses P and reads the file, whose name is that of the model.
    QImage Snapshot(const QString& name);
    QString Home() const { return home_.path(); }

    // Has the window manager close the dialog; returns the exit status, or -1 when the program doesn't end.
    int Close();
    int WaitForEnd();
    bool IsRunning() { return process_.state() == QProcess::Running; }

private:
    static QString Run(const QString& program, const QStringList& arguments, int* status = nullptr);
    static void Pause(int milliseconds = 60);
    // False when it isn't so for all the time that a test waits.
    static bool WaitUntil(const std::function<bool()>& is);
    void WaitForSize(const std::function<bool(QSize)>& is);

    QTemporaryDir home_;
    QProcess process_;
    QString window_;
    QByteArray console_;
};

} // namespace tarnwick::test
