// A dialog on the display, and what one does to it.
#pragma once

#include "app/gl_area.h"
#include "app/step_viewer_dlg.h"
#include "formats/load_commands.h"
#include "load/view_setup.h"
#include "models.h"
#include "waits.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTimer>

#include <cmath>
#include <functional>
#include <optional>
#include <string>

namespace tarnwick::test {

// A place in the plane of a model.
struct ModelPoint {
    double x;
    double y;
};

class DialogFixture : public ::testing::Test {
protected:
    DialogFixture() { qputenv("HOME", QFile::encodeName(folder_.path())); }

    // Opens the dialog as the program does; `commandLine` as the shell would hand it over.
    void Open(const std::string& commandLine = "",
              const LoadCommands& commands = {.loadStepFile = LoadStepFile}) {
        dialog.emplace(commands);
        dialog->commandLine = commandLine;
        dialog->OnInitDialog();
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&*dialog, kPatience));
        dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&*dialog, kPatience));
        QTest::qWait(50);
    }

    std::string Write(const std::string& name, const std::string& text) {
        const QString path = folder_.filePath(QString::fromStdString(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::fromStdString(text));
        return path.toStdString();
    }
    std::string Plate() { return Write("plate.stp", PlateText()); }
    std::string TwoPlates() {
        Plate();
        return Write("two.stp", TwoPlatesText());
    }
    void Load(const std::string& path) {
        dialog->Load(path, true);
        QTest::qWait(20);
    }

    // Does `what` to the next window that holds up the dialog. Such a window has a loop of events of its own,
    // so that a test goes on after what opens it only when it is closed.
    void WhenModal(std::function<void(QWidget&)> what) {
        modalTimer_.callOnTimeout(&modalTimer_, [this, what = std::move(what)] {
            QWidget* const window = QApplication::activeModalWidget();
            if (window == nullptr || window == &*dialog || !window->isVisible()) { return; }
            modalTimer_.stop();
            modalTimer_.disconnect();
            what(*window);
        });
        modalTimer_.start(20);
    }

    template <class Control>
    Control* Get(const char* number) {
        Control* const control = dialog->findChild<Control*>(number);
        EXPECT_NE(control, nullptr) << number;
        return control;
    }
    GlArea* Area() { return static_cast<GlArea*>(Get<QWidget>("OpenGL")); }

    // The place in the drawing area, in device pixels, of a point in the model's plane z = 0. The eye stands
    // 25 off and sees 40 degrees; the model is scaled to 36.31 over the sum of its extents.
    QPointF PixelOf(ModelPoint point) {
        const OpenGLControl& view = dialog->View();
        const double scale = 36.31 / static_cast<double>(view.modelSize);
        const double pixels = view.viewHeight / 2.0 / (25 * std::tan(20 * M_PI / 180)) * scale;
        return {view.viewWidth / 2.0 + point.x * pixels, view.viewHeight / 2.0 - point.y * pixels};
    }
    // The same for the mouse.
    QPoint MouseAt(ModelPoint point) { return (PixelOf(point) / Area()->devicePixelRatioF()).toPoint(); }

    void Click(ModelPoint point) {
        QTest::mouseClick(Area(), Qt::LeftButton, {}, MouseAt(point));
        QTest::qWait(20);
    }

    // Waits until the view has this height, and is drawn in it: before, a driver may still have the buffers
    // of another one, and read past their end.
    void WaitForHeight(int height) {
        ExpectSoon([this] { return dialog->View().viewHeight; }, height);
        dialog->View().framesPerSecond = 0;
        Area()->update();
        ASSERT_TRUE(QTest::qWaitFor([this] { return dialog->View().framesPerSecond > 0; }, kPatience));
    }
    // What the screen shows.
    QImage Picture() {
        const std::string path = folder_.filePath("picture.bmp").toStdString();
        EXPECT_EQ(dialog->View().grab_GL(path.c_str()), 1);
        return QImage(QString::fromStdString(path));
    }
    QColor ColourAt(const QImage& picture, ModelPoint point) {
        return picture.pixelColor(PixelOf(point).toPoint());
    }
    // Waits until the screen shows this colour there.
    void ExpectColourSoon(ModelPoint point, int red, int green, int blue) {
        const auto isNear = [&] { return IsNear(ColourAt(Picture(), point), red, green, blue); };
        if (!QTest::qWaitFor([&] { return static_cast<bool>(isNear()); }, kPatience)) {
            EXPECT_TRUE(isNear());
        }
    }
    static ::testing::AssertionResult IsNear(const QColor& is, int red, int green, int blue) {
        if (std::abs(is.red() - red) <= 1 && std::abs(is.green() - green) <= 1 &&
            std::abs(is.blue() - blue) <= 1) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure()
               << is.name().toStdString() << " is not " << red << ' ' << green << ' ' << blue;
    }

    // Inside the quarters of the plate, off their diagonals.
    static constexpr ModelPoint kRed{-7.5, 3.5};
    static constexpr ModelPoint kGreen{2.5, 3.5};
    static constexpr ModelPoint kBlue{-7.5, -1.5};
    static constexpr ModelPoint kGrey{7.5, -1.5};
    static constexpr ModelPoint kNothing{0, 6.5};

    QTemporaryDir folder_;
    std::optional<STEPViewerDlg> dialog;

private:
    QTimer modalTimer_;
};

} // namespace tarnwick::test
