// The built program under real events: mouse, keys, drops and the window manager.

#include "models.h"
#include "viewer_process.h"

#include <gmock/gmock.h>

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <cmath>

namespace tarnwick::test {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::Not;

// The drawing area starts at 10, 10; the dialog is 918 by 778 before the scale.
class ViewerTest : public ::testing::Test {
protected:
    ViewerTest() {
        Write("plate.stp", PlateText());
        Write("two.stp", TwoPlatesText());
        Write("many.stp", MissingPartsText(40));
        Write("boxes.stpj", SummaryText());
    }

    void Write(const QString& name, const std::string& text) {
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::fromStdString(text));
    }
    QString Path(const QString& name) const { return folder_.filePath(name); }
    QString Uri(const QString& name) const { return QUrl::fromLocalFile(Path(name)).toEncoded(); }

    // A place of the dialog in device pixels.
    QPoint At(double x, double y) const { return QPointF(x * scale_, y * scale_).toPoint(); }

    // A point of a model in the plane z = 0, in the picture of a drawing area of this size; `extents` is the
    // sum of the model's extents.
    static QPoint InPicture(QSize area, double extents, double x, double y) {
        const double pixels = area.height() / 2.0 / (25 * std::tan(20 * M_PI / 180)) * 36.31 / extents;
        return QPointF(area.width() / 2.0 + x * pixels, area.height() / 2.0 - y * pixels).toPoint();
    }
    QSize Area() const { return {qRound(898 * scale_), qRound(628 * scale_)}; }
    QPoint InDialog(double extents, double x, double y) const {
        return At(10, 10) + InPicture(Area(), extents, x, y);
    }

    static void ExpectColour(const QImage& picture, QPoint place, int red, int green, int blue) {
        ASSERT_TRUE(picture.rect().contains(place));
        const QColor is = picture.pixelColor(place);
        EXPECT_NEAR(is.red(), red, 1);
        EXPECT_NEAR(is.green(), green, 1);
        EXPECT_NEAR(is.blue(), blue, 1);
    }
    void ExpectPlate(const QImage& picture) const {
        ExpectColour(picture, InPicture(picture.size(), 30, -7.5, 3.5), 244, 0, 0);
        ExpectColour(picture, InPicture(picture.size(), 30, 2.5, 3.5), 0, 244, 0);
        ExpectColour(picture, InPicture(picture.size(), 30, -7.5, -1.5), 102, 102, 224);
        ExpectColour(picture, InPicture(picture.size(), 30, 7.5, -1.5), 73, 73, 73);
        ExpectColour(picture, {3, 3}, 204, 204, 204);
    }

    const double scale_ =
        qEnvironmentVariableIsSet("QT_SCALE_FACTOR") ? qEnvironmentVariable("QT_SCALE_FACTOR").toDouble() : 1;
    QTemporaryDir folder_;
};

TEST_F(ViewerTest, StartsWithTheCubeAndEndsWithStatusZero) {
    ViewerProcess viewer;
    ASSERT_TRUE(viewer.IsOpen());
    EXPECT_EQ(viewer.Title(), "Tarnwick");
    EXPECT_EQ(viewer.Size(), QSize(qRound(918 * scale_), qRound(778 * scale_)));
    const QImage picture = viewer.Snapshot("toto");
    EXPECT_EQ(picture.size(), Area());
    ExpectColour(picture, {picture.width() / 2, picture.height() / 2}, 122, 122, 244);
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, ShowsTheFileOfTheCommandLine) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    EXPECT_EQ(viewer.Title(), "plate.stp - Tarnwick");
    EXPECT_THAT(viewer.Console("Start"), HasSubstr("Start TraiteSTEPFile\n"));
    ExpectPlate(viewer.Snapshot("plate"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, NamesTheCommandThatHelpsWhereItShowsNothing) {
    Write("plate.step", PlateText());
    ViewerProcess viewer({Path("plate.step")});
    ASSERT_TRUE(viewer.IsOpen());
    EXPECT_THAT(viewer.Console("tarnwick-prepare"),
                HasSubstr("this brings it into a form that can be shown: tarnwick-prepare " +
                          Path("plate.step").toStdString() + "\n"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, SaysNothingOfThatWhereItShowsAFile) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    EXPECT_EQ(viewer.Close(), 0);
    EXPECT_THAT(viewer.Console(), Not(HasSubstr("tarnwick-prepare")));
}

TEST_F(ViewerTest, APathWithBlanksIsOneArgument) {
    Write("my plate one.stp", PlateText());
    ViewerProcess viewer({Path("my plate one.stp")});
    EXPECT_EQ(viewer.Title(), "my plate one.stp - Tarnwick");
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, AClickSelectsAndTellsAFace) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    const QPoint red = InDialog(30, -7.5, 3.5);
    viewer.Click(red.x(), red.y());
    EXPECT_THAT(
        viewer.Console("Material"),
        HasSubstr("Selected face: #30  Exact Face: #0 solid: #20  exact solid: #91\nMaterial: steel\n"));
    QImage picture = viewer.Snapshot("plate");
    ExpectColour(picture, InPicture(picture.size(), 30, -7.5, 3.5), 244, 0, 244);
    ExpectColour(picture, InPicture(picture.size(), 30, 2.5, 3.5), 0, 244, 0);
    // The background takes it away again.
    viewer.Click(At(20, 20).x(), At(20, 20).y());
    ExpectPlate(viewer.Snapshot("plate"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, AClickInAnAssemblySelectsThePlacedPart) {
    ViewerProcess viewer({Path("two.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    const QPoint lower = InDialog(42, 2.5, -2.5);
    viewer.Click(lower.x(), lower.y());
    EXPECT_THAT(viewer.Console("selected"), HasSubstr("Product selected: PLATE   File: plate.stp\n"));
    const QImage picture = viewer.Snapshot("two");
    ExpectColour(picture, InPicture(picture.size(), 42, -7.5, -2.5), 244, 0, 244);
    ExpectColour(picture, InPicture(picture.size(), 42, -7.5, 9.5), 244, 0, 0);
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, ASummaryFileShowsBoxesAndTheSliderChoosesTheirDepth) {
    ViewerProcess viewer({Path("boxes.stpj")});
    ASSERT_TRUE(viewer.IsOpen());
    const QPoint gap = InPicture(Area(), 31, 0, 2);
    const QPoint right = InPicture(Area(), 31, 6, 2);
    QImage picture = viewer.Snapshot("boxes");
    ExpectColour(picture, gap, 204, 204, 204);
    // Half of (0.8, 0.8, 0.2) under the light, and half of the 0.8 after it.
    ExpectColour(picture, right, 200, 200, 126);

    viewer.Click(At(10, 10).x() + right.x(), At(10, 10).y() + right.y());
    EXPECT_THAT(viewer.Console("selected"), HasSubstr("Product selected: RIGHT   File: (null)\n"));
    picture = viewer.Snapshot("boxes");
    ExpectColour(picture, right, 195, 0, 0);

    // To the left of the slider's handle: one step down, and the pick is gone.
    viewer.Click(At(160, 747).x(), At(160, 747).y());
    picture = viewer.Snapshot("boxes");
    ExpectColour(picture, gap, 200, 200, 126);
    ExpectColour(picture, right, 200, 200, 126);
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, TheControlKeyIsToldOnTheConsole) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    viewer.Move(At(100, 100).x(), At(100, 100).y());
    QProcess::execute("xdotool", {"keydown", "ctrl"});
    viewer.Press(1);
    viewer.Release(1);
    QProcess::execute("xdotool", {"keyup", "ctrl"});
    EXPECT_THAT(viewer.Console("Control"), HasSubstr("Control clic\n"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, DragsTurnMoveAndZoom) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    const QPoint middle = At(460, 320);
    const QImage still = viewer.Snapshot("plate");
    viewer.Drag(1, middle, middle + At(100, 30));
    const QImage turned = viewer.Snapshot("plate");
    EXPECT_NE(turned, still);
    viewer.Drag(2, middle, middle + At(60, 0));
    const QImage moved = viewer.Snapshot("plate");
    EXPECT_NE(moved, turned);
    viewer.Drag(3, middle, middle - At(20, 10));
    EXPECT_NE(viewer.Snapshot("plate"), moved);
    EXPECT_THAT(viewer.Console(), Not(HasSubstr("Selected")));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, TheWireframeBoxShowsLines) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    viewer.Click(At(34, 751).x(), At(34, 751).y());
    const QImage lines = viewer.Snapshot("plate");
    ExpectColour(lines, InPicture(lines.size(), 30, -7.5, 3.5), 204, 204, 204);
    viewer.Click(At(34, 751).x(), At(34, 751).y());
    ExpectPlate(viewer.Snapshot("plate"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, AResizedWindowShowsTheWholePicture) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    viewer.Resize(qRound(800 * scale_), qRound(700 * scale_));
    const QImage picture = viewer.Snapshot("plate");
    EXPECT_EQ(picture.size(), QSize(qRound(780 * scale_), qRound(550 * scale_)));
    ExpectPlate(picture);
    // The controls moved up by 78.
    viewer.Click(At(34, 673).x(), At(34, 673).y());
    const QImage lines = viewer.Snapshot("plate");
    ExpectColour(lines, InPicture(lines.size(), 30, -7.5, 3.5), 204, 204, 204);
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, AMaximisedAndARestoredWindowDrawsForTheSizeOfTheDialog) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    viewer.Maximise();
    EXPECT_GT(viewer.Size().width(), qRound(918 * scale_));
    // A size in device pixels that the scale doesn't divide is rounded.
    const QSize excess = viewer.Snapshot("plate").size() - viewer.Size();
    EXPECT_LT(excess.width(), scale_);
    EXPECT_LT(excess.height(), scale_);
    viewer.Restore();
    EXPECT_EQ(viewer.Size(), QSize(qRound(918 * scale_), qRound(778 * scale_)));
    EXPECT_EQ(viewer.Snapshot("plate").size(), viewer.Size());
    viewer.Resize(qRound(920 * scale_), qRound(780 * scale_));
    EXPECT_EQ(viewer.Snapshot("plate").size(), QSize(qRound(900 * scale_), qRound(630 * scale_)));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, ADropOnTheDrawingAreaLoadsItsFirstFileWithoutThreads) {
    ViewerProcess viewer;
    ASSERT_TRUE(viewer.IsOpen());
    EXPECT_TRUE(viewer.Drop(At(400, 300), {Uri("two.stp"), Uri("plate.stp")}));
    EXPECT_TRUE(viewer.WaitForTitle("two.stp - Tarnwick"));
    EXPECT_THAT(viewer.Console("Number of files"), Not(HasSubstr("End thread")));
    const QImage picture = viewer.Snapshot("two");
    ExpectColour(picture, InPicture(picture.size(), 42, -7.5, 9.5), 244, 0, 0);
    EXPECT_TRUE(viewer.Drop(At(700, 740), {Uri("plate.stp")})); // beside it
    EXPECT_TRUE(viewer.WaitForTitle("plate.stp - Tarnwick"));
    ExpectPlate(viewer.Snapshot("plate"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, OpenAsksForAFileAndLoadsItWithThreads) {
    ViewerProcess viewer;
    ASSERT_TRUE(viewer.IsOpen());
    viewer.Click(At(50, 705).x(), At(50, 705).y());
    ASSERT_NE(viewer.WaitForDialog("Open"), "");
    viewer.Type(Path("two.stp"));
    viewer.Key("Return");
    EXPECT_TRUE(viewer.WaitForTitle("two.stp - Tarnwick"));
    EXPECT_THAT(viewer.Console("End thread 5"), HasSubstr("End thread 1\n"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, TheTitleSaysHowManyFilesCouldNotBeRead) {
    ViewerProcess viewer({Path("many.stp")});
    EXPECT_EQ(viewer.Title(), "many.stp - Tarnwick (40 files could not be read)");
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, TheConsoleWindowCanBeClosedWithoutEndingTheProgram) {
    ViewerProcess viewer({Path("plate.stp")});
    const QString console = viewer.WaitForWindow("Tarnwick console");
    ASSERT_NE(console, "");
    viewer.CloseWindow(console);
    ExpectPlate(viewer.Snapshot("plate"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, EscapeEndsTheProgramWithStatusZero) {
    ViewerProcess viewer;
    ASSERT_TRUE(viewer.IsOpen());
    viewer.Key("Escape");
    EXPECT_EQ(viewer.WaitForEnd(), 0);
}

TEST_F(ViewerTest, ClosingDuringADragEndsWithStatusZero) {
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    for (const int button : {1, 3}) {
        viewer.Move(At(400, 300).x(), At(400, 300).y());
        viewer.Press(button);
        viewer.Move(At(420, 310).x(), At(420, 310).y());
    }
    EXPECT_EQ(viewer.Close(), 0);
    viewer.Release(1);
    viewer.Release(3);
}

TEST_F(ViewerTest, ClosingWhileMinimisedOrMaximisedEndsWithStatusZero) {
    {
        ViewerProcess viewer({Path("plate.stp")});
        viewer.Maximise();
        EXPECT_EQ(viewer.Close(), 0);
    }
    ViewerProcess viewer({Path("plate.stp")});
    ASSERT_TRUE(viewer.IsOpen());
    viewer.Minimise();
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, ClosingBehindTheFileDialogLeavesNothingRunning) {
    ViewerProcess viewer;
    ASSERT_TRUE(viewer.IsOpen());
    viewer.Click(At(50, 705).x(), At(50, 705).y());
    const QString chooser = viewer.WaitForDialog("Open");
    ASSERT_NE(chooser, "");
    viewer.CloseWindow(chooser);
    EXPECT_TRUE(viewer.IsRunning());
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, NumbersKeepTheirPointsInACommaLocale) {
    // Made here, as a fresh machine may have no such locale.
    if (QProcess::execute("localedef", {"-i", "de_DE", "-f", "UTF-8", Path("de_DE.UTF-8")}) != 0) {
        GTEST_SKIP() << "localedef can't make a German locale";
    }
    ViewerProcess viewer({Path("plate.stp")},
                         {"LC_ALL=de_DE.UTF-8", "LANG=de_DE.UTF-8", "LOCPATH=" + folder_.path()});
    ASSERT_TRUE(viewer.IsOpen());
    // With a comma the transparency of 0.5 would be read as 0, and the picture be another.
    ExpectPlate(viewer.Snapshot("plate"));
    EXPECT_EQ(viewer.Close(), 0);
}

TEST_F(ViewerTest, HelpAndVersionNeedNoDisplay) {
    QProcess process;
    QProcessEnvironment none;
    process.setProcessEnvironment(none);
    process.start(TARNWICK_VIEWER, {"--version"});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardOutput(), "tarnwick " TARNWICK_VERSION "\n");
    process.start(TARNWICK_VIEWER, {Path("plate.stp")});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("no display"));
}

TEST_F(ViewerTest, ADisplayThatCannotBeReachedIsSaidInASentence) {
    QProcess process;
    QProcessEnvironment elsewhere = QProcessEnvironment::systemEnvironment();
    elsewhere.insert("DISPLAY", ":65432");
    elsewhere.insert("QT_QPA_PLATFORM", "xcb");
    process.setProcessEnvironment(elsewhere);
    process.start(TARNWICK_VIEWER, {Path("plate.stp")});
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_THAT(process.readAllStandardError().toStdString(), HasSubstr("the display can't be reached"));
}

} // namespace
} // namespace tarnwick::test
