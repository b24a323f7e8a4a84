// The dialog's controls and what their events do.

#include "app/server_port.h"
#include "dialog_fixture.h"
#include "formats/load_commands.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QCheckBox>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSlider>
#include <QTimer>

namespace tarnwick::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

// What load commands were asked for, in place of loads.
struct Asked {
    std::string path;
    std::string rootName;
    bool useThreads;
    bool shown; // whether the dialog was on the screen
};
std::vector<Asked> asked;
std::vector<std::int32_t> askedDepths;
const QWidget* askingDialog = nullptr;

void Note(const char* path, const char* rootName, bool useThreads) {
    asked.push_back({path, rootName != nullptr ? rootName : "(null)", useThreads,
                     askingDialog != nullptr && askingDialog->isVisible()});
}

constexpr LoadCommands kNoting{
    .loadStepFile = [](SceneView&, const char* path, bool useThreads) { Note(path, nullptr, useThreads); },
    .loadStpxFile = [](SceneView&, const char* path, const char* rootName,
                       bool useThreads) { Note(path, rootName, useThreads); },
    .loadStpjFile =
        [](SceneView& view, const char* path) {
            Note(path, nullptr, -1);
            view.loaded.maxDepth = 4;
            view.loaded.drawnTriangles = 36;
            view.loadSeconds = 0.25;
        },
    .loadZipFile = [](SceneView&, const char* path, const char* rootName,
                      bool useThreads) { Note(path, rootName, useThreads); },
    .selectDepth =
        [](SceneView& view, std::int32_t depth) {
            askedDepths.push_back(depth);
            view.loaded.drawnTriangles = 12 * depth;
        },
};

class DialogTest : public DialogFixture {
protected:
    DialogTest() {
        asked.clear();
        askedDepths.clear();
        askingDialog = nullptr;
    }

    QString Text(const char* number) { return Get<QLabel>(number)->text(); }
    std::string Title() const { return dialog->windowTitle().toStdString(); }

    // The events of a drop on a widget, as the window system sends them.
    static void Drop(QWidget* target, const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop(QPointF(9, 9), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);
        QTest::qWait(10);
    }

    int Snapshots() {
        return static_cast<int>(QDir(folder_.filePath("Pictures/Tarnwick")).entryList(QDir::Files).size());
    }
};

TEST_F(DialogTest, EveryControlHasItsPlaceAndItsStartState) {
    STEPViewerDlg fresh(kNoting);
    struct Row {
        const char* number;
        QRect place;
        bool hidden;
    };
    // Units of 6 / 4 by 13 / 8 pixels.
    const Row rows[] = {
        {"1001", {23, 689, 65, 37}, false},   {"1009", {378, 715, 263, 18}, false},
        {"1008", {378, 691, 522, 23}, false}, {"depth", {308, 735, 38, 13}, true},
        {"1013", {350, 735, 27, 13}, true},   {"1012", {147, 735, 150, 24}, true},
        {"1005", {26, 743, 77, 16}, false},   {"1002", {104, 691, 75, 34}, false},
        {"1003", {197, 692, 65, 33}, true},   {"1014", {273, 692, 66, 33}, true},
    };
    EXPECT_EQ(fresh.size(), QSize(918, 778));
    for (const Row& row : rows) {
        const auto* const control = fresh.findChild<QWidget*>(row.number);
        ASSERT_NE(control, nullptr) << row.number;
        EXPECT_EQ(control->geometry(), row.place) << row.number;
        EXPECT_EQ(control->isHidden(), row.hidden) << row.number;
    }
    EXPECT_FALSE(fresh.findChild<QSlider*>("1012")->isEnabled());
    EXPECT_EQ(fresh.findChild<QPushButton*>("1001")->text(), "Open");
    EXPECT_EQ(fresh.findChild<QPushButton*>("1002")->text(), "Connect");
    EXPECT_EQ(fresh.findChild<QPushButton*>("1003")->text(), "Add PMI");
    EXPECT_EQ(fresh.findChild<QPushButton*>("1014")->text(), "Add Material");
    EXPECT_EQ(fresh.findChild<QCheckBox*>("1005")->text(), "Wireframe");
    EXPECT_EQ(fresh.findChild<QLabel*>("depth")->text(), "Depth: ");
    for (const char* const number : {"1008", "1009", "1013"}) {
        EXPECT_EQ(fresh.findChild<QLabel*>(number)->text(), "0") << number;
    }
}

TEST_F(DialogTest, TheTextsFitTheirControls) {
    Open();
    for (const char* const number : {"1001", "1002", "1005"}) {
        const auto* const control = Get<QWidget>(number);
        EXPECT_LE(control->sizeHint().width(), control->width() + 20) << number; // the hint has margins
        EXPECT_LE(control->fontMetrics().height(), control->height()) << number;
    }
}

TEST_F(DialogTest, AnEmptyCommandLineShowsTheIdleSceneAndTheStatusZero) {
    Open();
    EXPECT_EQ(Text("1008"), "0");
    EXPECT_EQ(Title(), "Tarnwick");
    EXPECT_EQ(dialog->View().loaded.drawnTriangles, 0);
    EXPECT_EQ(dialog->CurrentPath(), "");
}

TEST_F(DialogTest, TheFileOfTheCommandLineIsLoadedBeforeTheWindowIsShown) {
    dialog.emplace(kNoting);
    askingDialog = &*dialog;
    dialog->commandLine = "\"/a b/c d.stpx\" \"PRODUCT ONE\"";
    dialog->OnInitDialog();
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].path, "/a b/c d.stpx");
    EXPECT_EQ(asked[0].rootName, "PRODUCT ONE");
    EXPECT_EQ(asked[0].useThreads, 1);
    EXPECT_FALSE(asked[0].shown);
}

TEST_F(DialogTest, TheStatusTextIsThereAsSoonAsTheWindowIs) {
    Plate();
    dialog.emplace(LoadCommands{.loadStepFile = LoadStepFile});
    dialog->commandLine = "\"" + folder_.filePath("plate.stp").toStdString() + "\"";
    dialog->OnInitDialog();
    EXPECT_THAT(Text("1008").toStdString(), MatchesRegex("Nb Triangles: 8  CPU tot: 0.0[0-9][0-9]s "));
    EXPECT_EQ(Title(), "plate.stp - Tarnwick");
}

TEST_F(DialogTest, OpenLoadsTheChosenFileWithThreads) {
    Open("", kNoting);
    Write("a b.stpx", "");
    WhenModal([this](QWidget& window) {
        auto* const chooser = qobject_cast<QFileDialog*>(&window);
        ASSERT_NE(chooser, nullptr);
        chooser->setDirectory(folder_.path());
        chooser->findChild<QLineEdit*>()->setText("a b.stpx");
        QMetaObject::invokeMethod(chooser, "accept");
    });
    QTest::mouseClick(Get<QPushButton>("1001"), Qt::LeftButton);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].path, folder_.filePath("a b.stpx").toStdString());
    EXPECT_EQ(asked[0].rootName, "(null)");
    EXPECT_EQ(asked[0].useThreads, 1);
}

TEST_F(DialogTest, ACancelledFileDialogChangesNothing) {
    Open("", kNoting);
    WhenModal([](QWidget& chooser) { QTest::keyClick(&chooser, Qt::Key_Escape); });
    QTest::mouseClick(Get<QPushButton>("1001"), Qt::LeftButton);
    EXPECT_THAT(asked, IsEmpty());
    EXPECT_EQ(dialog->CurrentPath(), "");
    EXPECT_EQ(Title(), "Tarnwick");
}

TEST_F(DialogTest, ADropOnTheDialogOrTheDrawingAreaLoadsTheFirstFileWithoutThreads) {
    Open("", kNoting);
    Drop(&*dialog, {QUrl::fromLocalFile("/m y/one.stp"), QUrl::fromLocalFile("/two.stp")});
    Drop(Area(), {QUrl::fromLocalFile("/three.stpz")});
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].path, "/m y/one.stp"); // a blank in a folder stays
    EXPECT_EQ(asked[0].useThreads, 0);
    EXPECT_EQ(asked[1].path, "/three.stpz");
    EXPECT_EQ(asked[1].useThreads, 0);
}

TEST_F(DialogTest, ADropWithoutALocalFileDoesNothing) {
    Open("", kNoting);
    Drop(&*dialog, {QUrl("https://example.org/a.stp")});
    EXPECT_THAT(asked, IsEmpty());
}

TEST_F(DialogTest, TheWireframeBoxSwitchesLinesOnAndOff) {
    Open();
    QTest::mouseClick(Get<QCheckBox>("1005"), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_EQ(dialog->View().wireframe, 1);
    QTest::mouseClick(Get<QCheckBox>("1005"), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_EQ(dialog->View().wireframe, 0);
}

TEST_F(DialogTest, ASummaryFileShowsTheDepthSliderAtItsDeepest) {
    Open("", kNoting);
    Load("/a/b.stpj");
    const auto* const slider = Get<QSlider>("1012");
    EXPECT_TRUE(slider->isVisible());
    EXPECT_TRUE(slider->isEnabled());
    EXPECT_EQ(slider->minimum(), 0);
    EXPECT_EQ(slider->maximum(), 4);
    EXPECT_EQ(slider->value(), 4);
    EXPECT_EQ(Text("1013"), "4");
    EXPECT_EQ(Text("1008"), "36  CPU tot: 0.250s ");
    EXPECT_THAT(askedDepths, IsEmpty()); // setting the slider is not moving it
    EXPECT_FALSE(Get<QLabel>("1013")->isVisible());
}

TEST_F(DialogTest, AMoveOfTheDepthSliderRebuildsTheBoxesAndDropsThePick) {
    Open("", kNoting);
    Load("/a/b.stpj");
    dialog->View().selectedIndex = 2;
    QTest::keyClick(Get<QSlider>("1012"), Qt::Key_Left);
    EXPECT_THAT(askedDepths, ElementsAre(3));
    EXPECT_EQ(dialog->View().selectedIndex, -1);
    EXPECT_EQ(Text("1013"), "3");
    EXPECT_EQ(Text("1008"), "Nb Triangles: 36  CPU tot: 0.250s ");
    EXPECT_EQ(dialog->View().loaded.drawnTriangles, 36);
}

TEST_F(DialogTest, OtherFileKindsHideTheSlider) {
    Open("", kNoting);
    for (const char* const other : {"/a.stp", "/a.STPZ", "/a.stpa", "/a.stpx"}) {
        Load("/a/b.stpj");
        Load(other);
        EXPECT_FALSE(Get<QSlider>("1012")->isVisible()) << other;
    }
    // STEP XML also resets it.
    EXPECT_FALSE(Get<QSlider>("1012")->isEnabled());
    EXPECT_EQ(Get<QSlider>("1012")->maximum(), 0);
    EXPECT_EQ(Text("1013"), "0");
}

TEST_F(DialogTest, AnUnknownKindOfFileKeepsTheSceneAndSaysSoInTheTitle) {
    Open();
    Load(Plate());
    const QString status = Text("1008");
    Load("/a/readme.step");
    EXPECT_EQ(dialog->CurrentPath(), "/a/readme.step");
    EXPECT_EQ(Text("1008"), status);
    EXPECT_EQ(dialog->View().loaded.drawnTriangles, 8);
    EXPECT_EQ(Title(), "plate.stp - Tarnwick (readme.step is not a kind of file that can be shown)");
    Load("/a/readme");
    EXPECT_EQ(Title(), "plate.stp - Tarnwick (readme is not a kind of file that can be shown)");
}

TEST_F(DialogTest, AFileThatIsNotThereLeavesNoSceneAndTheNumbersOfTheOneBefore) {
    Open();
    Load(Plate());
    const QString status = Text("1008");
    Load("/absent/a.stp");
    EXPECT_EQ(Text("1008"), status);
    EXPECT_EQ(dialog->View().loaded.drawList, nullptr);
    EXPECT_EQ(Title(), "a.stp - Tarnwick (it can't be opened)");
    const QImage picture = Picture();
    EXPECT_TRUE(IsNear(picture.pixelColor(picture.width() / 2, picture.height() / 2), 204, 204, 204));
}

TEST_F(DialogTest, TheTitleSaysHowManyFilesOfAnAssemblyCouldNotBeRead) {
    Open();
    Load(Write("many.stp", MissingPartsText(30)));
    EXPECT_EQ(Title(), "many.stp - Tarnwick (30 files could not be read)");
    Load(TwoPlates());
    EXPECT_EQ(Title(), "two.stp - Tarnwick");
}

TEST_F(DialogTest, TheTitleCountsTheFilesOfALoadWithoutHandlingMessages) {
    static std::vector<std::string> titles;
    static STEPViewerDlg* counting = nullptr;
    static bool handled = false;
    titles.clear();
    Open("", {.loadStepFile = [](SceneView& view, const char*, bool) {
             QTimer::singleShot(0, [] { handled = true; });
             for (int i = 1; i <= 3; ++i) {
                 QThread::msleep(60);
                 view.ShowProgress(i, 40);
                 titles.push_back(counting->windowTitle().toStdString());
             }
             EXPECT_FALSE(handled);
         }});
    counting = &*dialog;
    Load("/a/machine.stp");
    EXPECT_THAT(titles, ElementsAre("machine.stp - Tarnwick: reading file 1 of 40",
                                    "machine.stp - Tarnwick: reading file 2 of 40",
                                    "machine.stp - Tarnwick: reading file 3 of 40"));
    EXPECT_THAT(Title(), HasSubstr("machine.stp - Tarnwick"));
}

TEST_F(DialogTest, PTakesASnapshotWhereverTheFocusIs) {
    Open();
    QTest::keyClick(dialog->windowHandle(), Qt::Key_P);
    const QString toto = folder_.filePath("Pictures/Tarnwick/toto.bmp");
    EXPECT_TRUE(QFile::exists(toto));
    Load(Plate());
    const QString part = folder_.filePath("Pictures/Tarnwick/plate.bmp");
    for (const char* const number : {"1001", "1005", "1002"}) {
        QFile::remove(part);
        Get<QWidget>(number)->setFocus();
        QTest::keyClick(Get<QWidget>(number), Qt::Key_P);
        EXPECT_TRUE(QFile::exists(part)) << number;
    }
    QFile::remove(part);
    QTest::keyClick(Area(), Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QFile::exists(part));
    EXPECT_EQ(Snapshots(), 2);
}

TEST_F(DialogTest, PWithTheAltKeyAndInAnotherWindowIsNoSnapshot) {
    Open();
    QTest::keyClick(dialog->windowHandle(), Qt::Key_P, Qt::AltModifier);
    QTest::keyClick(dialog->windowHandle(), Qt::Key_O);
    WhenModal([](QWidget& box) {
        QTest::keyClick(&box, Qt::Key_P);
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    QMessageBox::information(&*dialog, "Connect", "text");
    EXPECT_EQ(Snapshots(), 0);
}

TEST_F(DialogTest, ReturnPressesNothingAndEscapeClosesTheDialog) {
    Open("", kNoting);
    QTest::keyClick(dialog->windowHandle(), Qt::Key_Return);
    EXPECT_TRUE(dialog->isVisible());
    QTest::keyClick(dialog->windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
}

class CountingServer final : public ServerPort {
public:
    void OnConnect() override { ++connects; }
    void OnAddPmi() override { ++pmis; }
    void OnAddMaterial() override { ++materials; }
    void OnClose() override { ++closes; }
    int connects = 0;
    int pmis = 0;
    int materials = 0;
    int closes = 0;
};

TEST_F(DialogTest, TheServerButtonsWorkOnlyWithALink) {
    Open("", kNoting);
    EXPECT_FALSE(Get<QPushButton>("1002")->isEnabled());
    CountingServer server;
    dialog->SetServer(&server);
    QTest::mouseClick(Get<QPushButton>("1002"), Qt::LeftButton);
    QTest::mouseClick(Get<QPushButton>("1002"), Qt::LeftButton);
    EXPECT_EQ(server.connects, 2);
    Get<QPushButton>("1003")->click();
    Get<QPushButton>("1014")->click();
    EXPECT_EQ(server.pmis, 1);
    EXPECT_EQ(server.materials, 1);
    dialog->SetServer(nullptr);
}

TEST_F(DialogTest, ClosingShutsTheLinkOnceByTheCloseButtonAndByEscape) {
    CountingServer server;
    Open("", kNoting);
    dialog->SetServer(&server);
    dialog->close();
    EXPECT_EQ(server.closes, 1);
    Open("", kNoting);
    dialog->SetServer(&server);
    QTest::keyClick(dialog->windowHandle(), Qt::Key_Escape);
    EXPECT_EQ(server.closes, 2);
}

TEST_F(DialogTest, ControlsMoveWithTheHeightAndKeepTheirPlaceAcross) {
    Open();
    ASSERT_EQ(dialog->size(), QSize(918, 778));
    dialog->resize(1018, 828);
    const auto area = [this] { return Area()->geometry(); };
    ExpectSoon(area, QRect(10, 10, 998, 678));
    EXPECT_EQ(Get<QPushButton>("1001")->geometry(), QRect(23, 739, 65, 37));
    EXPECT_EQ(Get<QSlider>("1012")->geometry(), QRect(147, 785, 150, 24)); // hidden ones too
    const double ratio = Area()->devicePixelRatioF();
    ExpectSoon([this] { return QSize(dialog->View().viewWidth, dialog->View().viewHeight); },
               QSize(998, 678) * ratio);
    dialog->resize(700, 600);
    ExpectSoon(area, QRect(10, 10, 680, 450));
    EXPECT_EQ(Get<QPushButton>("1001")->geometry(), QRect(23, 511, 65, 37));
}

TEST_F(DialogTest, AMaximisedAndAJustRestoredDialogGivesTheViewItsOwnSize) {
    Open();
    const double ratio = Area()->devicePixelRatioF();
    const auto sizeOfView = [this] { return QSize(dialog->View().viewWidth, dialog->View().viewHeight); };
    dialog->showMaximized();
    ASSERT_TRUE(QTest::qWaitFor([this] { return dialog->width() > 1000; }, kPatience));
    ExpectSoon(sizeOfView, dialog->size() * ratio);
    EXPECT_EQ(Area()->size(), dialog->size() - QSize(20, 150));
    dialog->showNormal();
    ExpectSoon([this] { return Area()->size(); }, QSize(898, 628));
    ExpectSoon(sizeOfView, QSize(918, 778) * ratio);
    // And then it is forgotten.
    dialog->resize(930, 790);
    ExpectSoon(sizeOfView, QSize(910, 640) * ratio);
}

TEST_F(DialogTest, AVeryLowDialogHasNoDrawingAreaAndStillWorks) {
    Open();
    dialog->resize(400, 100);
    QTest::qWait(100);
    EXPECT_GE(Area()->height(), 0);
    Load(Plate());
    dialog->resize(918, 778);
    QTest::qWait(100);
    EXPECT_EQ(dialog->View().loaded.drawnTriangles, 8);
}

TEST_F(DialogTest, PickTextsOfAFileAreShownAsPlainText) {
    Open();
    dialog->SetPickText("Material: <b>steel</b>  ");
    EXPECT_EQ(Text("1009"), "Material: <b>steel</b>  ");
    EXPECT_EQ(Get<QLabel>("1009")->textFormat(), Qt::PlainText);
    dialog->SetPickText("M\xfcnzstahl");
    EXPECT_EQ(Text("1009"), QString::fromLatin1("M\xfcnzstahl"));
}

} // namespace
} // namespace tarnwick::test
