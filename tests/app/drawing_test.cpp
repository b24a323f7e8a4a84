// What the screen shows and what a click hits, through the real graphics library.

#include "dialog_fixture.h"
#include "formats/load_commands.h"
#include "product/draw_list.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace tarnwick::test {
namespace {

using ::testing::HasSubstr;

class DrawingTest : public DialogFixture {
protected:
    // Clicks; returns what the console got.
    std::string ConsoleOfClick(ModelPoint point) {
        ::testing::internal::CaptureStderr();
        Click(point);
        return ::testing::internal::GetCapturedStderr();
    }
    void Drag(Qt::MouseButton button, QPoint from, QPoint to) {
        QTest::mousePress(Area(), button, {}, from);
        QTest::qWait(20);
        QTest::mouseMove(Area(), (from + to) / 2);
        QTest::qWait(20);
        QTest::mouseMove(Area(), to);
        QTest::qWait(20);
        QTest::mouseRelease(Area(), button, {}, to);
        QTest::qWait(20);
    }
};

TEST_F(DrawingTest, TheIdleSceneIsABlueCubeOnGrey) {
    Open();
    const QImage picture = Picture();
    EXPECT_EQ(picture.size(), QSize(dialog->View().viewWidth, dialog->View().viewHeight));
    EXPECT_TRUE(IsNear(picture.pixelColor(5, 5), 204, 204, 204));
    // The light from the left: 0.2 + 0.3 + 0.1 and 0.8 * 0.4472 of (0.5, 0.5, 1).
    EXPECT_TRUE(IsNear(picture.pixelColor(picture.width() / 2, picture.height() / 2), 122, 122, 244));
}

TEST_F(DrawingTest, FacesShowTheirColourUnderTheLight) {
    Open();
    Load(Plate());
    const QImage picture = Picture();
    EXPECT_TRUE(IsNear(ColourAt(picture, kRed), 244, 0, 0));
    EXPECT_TRUE(IsNear(ColourAt(picture, kGreen), 0, 244, 0));
    EXPECT_TRUE(IsNear(ColourAt(picture, kGrey), 73, 73, 73));
    // Half of it, and half of the 0.8 after it.
    EXPECT_TRUE(IsNear(ColourAt(picture, kBlue), 102, 102, 224));
    EXPECT_TRUE(IsNear(ColourAt(picture, kNothing), 204, 204, 204));
}

TEST_F(DrawingTest, AClickSelectsTheFaceUnderItAtAnyScale) {
    Open();
    Load(Plate());
    EXPECT_EQ(ConsoleOfClick(kRed),
              "Selected face: #30  Exact Face: #0 solid: #20  exact solid: #91\nMaterial: steel\n");
    EXPECT_EQ(Get<QLabel>("1009")->text(), "Material: steel  ");
    QImage picture = Picture();
    EXPECT_TRUE(IsNear(ColourAt(picture, kRed), 244, 0, 244));
    EXPECT_TRUE(IsNear(ColourAt(picture, kGreen), 0, 244, 0));

    EXPECT_EQ(ConsoleOfClick(kGreen), "Selected face: #31  Exact Face: #0 shell: #21  exact shell: #0\n");
    EXPECT_EQ(Get<QLabel>("1009")->text(), " ");
    EXPECT_EQ(ConsoleOfClick(kBlue), // half transparent, and yet opaque to a pick
              "Selected face: #32  Exact Face: #0 solid: #20  exact solid: #91\nMaterial: steel\n");
    EXPECT_EQ(ConsoleOfClick(kGrey),
              "Selected face: #22  Exact Face: #0 Container: #0  Exact container: #0  Container type: 0\n");
    EXPECT_EQ(Get<QLabel>("1009")->text(), "Material: steel  "); // no container: left as it was

    EXPECT_EQ(ConsoleOfClick(kNothing), "");
    EXPECT_EQ(dialog->View().selectedIndex, -1);
    EXPECT_EQ(Get<QLabel>("1009")->text(), " ");
    picture = Picture();
    EXPECT_TRUE(IsNear(ColourAt(picture, kRed), 244, 0, 0));
}

TEST_F(DrawingTest, AClickHitsToThePixel) {
    Open();
    Load(Plate());
    // The plate's right edge, from both sides.
    const double edge = PixelOf({10, 2}).x() / Area()->devicePixelRatioF();
    const int y = MouseAt({10, 2}).y();
    QTest::mouseClick(Area(), Qt::LeftButton, {}, QPoint(qFloor(edge) - 1, y));
    EXPECT_EQ(dialog->View().selectedIndex, 2);
    QTest::mouseClick(Area(), Qt::LeftButton, {}, QPoint(qCeil(edge) + 1, y));
    EXPECT_EQ(dialog->View().selectedIndex, -1);
}

TEST_F(DrawingTest, AClickOnTheTopRowHitsNothing) {
    Open();
    Load(Plate());
    QTest::mouseClick(Area(), Qt::LeftButton, {}, QPoint(Area()->width() / 2, 0));
    EXPECT_EQ(dialog->View().selectedIndex, -1);
}

TEST_F(DrawingTest, AClickSelectsAPlacedPartWhole) {
    Open();
    Load(TwoPlates());
    EXPECT_EQ(ConsoleOfClick({2.5, 9.5}), "Product selected: PLATE   File: plate.stp\n");
    EXPECT_EQ(dialog->View().selectedIndex, 0);
    const QImage picture = Picture();
    EXPECT_TRUE(IsNear(ColourAt(picture, {-7.5, 9.5}), 244, 0, 244));
    EXPECT_TRUE(IsNear(ColourAt(picture, {7.5, 4.5}), 244, 0, 244));
    EXPECT_TRUE(IsNear(ColourAt(picture, {-7.5, -2.5}), 244, 0, 0));
    EXPECT_EQ(ConsoleOfClick({2.5, -2.5}), "Product selected: PLATE   File: plate.stp\n");
    EXPECT_EQ(dialog->View().selectedIndex, 1);
}

TEST_F(DrawingTest, BoxesAreYellowOverGreyAndTheSelectedOneIsDarkRed) {
    // Two boxes as a summary file leaves them.
    struct Box {
        float vertices[72];
        float normals[72];
        std::uint32_t indices[36];
    };
    static const auto fill = [](Box& box, float left) {
        // The side that looks at the eye is all that matters here.
        const float corners[12] = {left, -5, 1, left + 8, -5, 1, left + 8, 5, 1, left, 5, 1};
        for (std::size_t i = 0; i < 72; ++i) {
            box.vertices[i] = corners[i % 12];
            box.normals[i] = i % 3 == 2 ? 1.0f : 0.0f;
        }
        const std::uint32_t square[6] = {0, 1, 2, 2, 3, 0};
        for (std::size_t i = 0; i < 36; ++i) { box.indices[i] = i < 6 ? square[i] : 0; }
    };
    Open("", {.loadStpjFile = [](SceneView& view, const char*) {
             static Box boxes[2];
             static ProductNode products[2] = {};
             static BoxItem items[2] = {};
             static BoxItem* pointers[2] = {&items[0], &items[1]};
             static DrawList list{};
             products[0].name = "left";
             products[1].name = "right";
             for (int i = 0; i < 2; ++i) {
                 fill(boxes[i], i == 0 ? -10.0f : 2.0f);
                 items[i] = {boxes[i].vertices, boxes[i].normals, boxes[i].indices, 24, 12,
                             nullptr,           &products[i]};
             }
             list.boxes = pointers;
             list.count = 2;
             ResetScene(view, PartRecords::kDropped);
             view.loaded.boxList = &list;
             view.loaded.drawnTriangles = 24;
             view.loaded.box[0] = -10;
             view.loaded.box[1] = 10;
             view.loaded.box[2] = -5;
             view.loaded.box[3] = 5;
             view.loaded.box[4] = 1;
             view.loaded.box[5] = 1;
             SetUpView(view);
             view.Redraw();
         }});
    Load("/a/b.stpj");
    QImage picture = Picture();
    // Half of (0.8, 0.8, 0.2) under the light, and half of the 0.8 after it.
    EXPECT_TRUE(IsNear(ColourAt(picture, {-8, 2}), 200, 200, 126));
    EXPECT_EQ(ConsoleOfClick({5, 2}), "Product selected: right   File: (null)\n");
    EXPECT_EQ(dialog->View().selectedIndex, 1);
    picture = Picture();
    EXPECT_TRUE(IsNear(ColourAt(picture, {5, 2}), 195, 0, 0));
    EXPECT_TRUE(IsNear(ColourAt(picture, {-8, 2}), 200, 200, 126));
    EXPECT_EQ(ConsoleOfClick({0, 2}), "");
    EXPECT_EQ(dialog->View().selectedIndex, -1);
}

TEST_F(DrawingTest, AFiniteElementMeshShowsItsNodesColoursAndCannotBePicked) {
    Open("", {.loadStepFile = [](SceneView& view, const char*, bool) {
             static float vertices[12] = {-10, -5, 0, 10, -5, 0, 10, 5, 0, -10, 5, 0};
             static std::uint8_t colours[16] = {255, 0, 0, 255, 255, 0, 0, 255,
                                                255, 0, 0, 255, 255, 0, 0, 255};
             static std::uint32_t quads[8] = {0, 1, 2, 3, 0, 1, 2, 4294967295u}; // one has no fourth node
             static ResultMesh mesh{vertices, colours, quads, 2, 4};
             ResetScene(view, PartRecords::kDropped);
             view.loaded.resultMesh = &mesh;
             view.loaded.drawnTriangles = 4;
             view.loaded.box[0] = -10;
             view.loaded.box[1] = 10;
             view.loaded.box[2] = -5;
             view.loaded.box[3] = 5;
             view.loaded.box[4] = view.loaded.box[5] = 0;
             SetUpView(view);
             view.Redraw();
         }});
    Load("/a/b.stp");
    const QColor colour = ColourAt(Picture(), {-5, 3});
    EXPECT_GT(colour.red(), 150);
    EXPECT_EQ(colour.green(), 0);
    EXPECT_EQ(ConsoleOfClick({-5, 3}), "");
    EXPECT_EQ(dialog->View().selectedIndex, -1);
}

TEST_F(DrawingTest, AFaceWithoutNormalsIsLitAsIfItLookedAtTheEye) {
    Open();
    std::string text = PlateText();
    const std::string normals = "#30=TRIANGULATED_FACE('',#10,4,((0.,0.,1.)),";
    const std::size_t at = text.find(normals);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, normals.size(), "#30=TRIANGULATED_FACE('',#10,4,(),");
    Load(Write("bare.stp", text));
    EXPECT_EQ(dialog->View().loaded.drawnTriangles, 8);
    EXPECT_TRUE(IsNear(ColourAt(Picture(), kRed), 244, 0, 0));
    EXPECT_THAT(ConsoleOfClick(kRed), HasSubstr("Selected face: #30"));
}

TEST_F(DrawingTest, AnIndexThatIsNotThereCostsItsTriangleOnly) {
    Open();
    std::string text = PlateText();
    const std::string triangles =
        "#31=TRIANGULATED_FACE('',#11,4,((0.,0.,1.)),$,(1,2,3,4),((1,2,3),(1,3,4)))";
    const std::size_t at = text.find(triangles);
    ASSERT_NE(at, std::string::npos);
    text.replace(
        at, triangles.size(),
        "#31=TRIANGULATED_FACE('',#11,4,((0.,0.,1.)),$,(1,2,3,4),((1,2,400000000),(0,3,4),(1,3,4)))");
    Load(Write("wild.stp", text));
    const QImage picture = Picture();
    EXPECT_TRUE(IsNear(ColourAt(picture, kGreen), 0, 244, 0));       // the sound triangle
    EXPECT_TRUE(IsNear(ColourAt(picture, {7.5, 1}), 204, 204, 204)); // where the others were to be
}

TEST_F(DrawingTest, WireframeShowsTheGroundBetweenTheLines) {
    Open();
    Load(Plate());
    QTest::mouseClick(Get<QWidget>("1005"), Qt::LeftButton, {}, QPoint(8, 8));
    ExpectColourSoon(kRed, 204, 204, 204);
    // A click between lines hits nothing.
    Click(kRed);
    EXPECT_EQ(dialog->View().selectedIndex, -1);
    QTest::mouseClick(Get<QWidget>("1005"), Qt::LeftButton, {}, QPoint(8, 8));
    ExpectColourSoon(kRed, 244, 0, 0);
}

TEST_F(DrawingTest, ALeftDragTurnsAMiddleDragMovesAndARightDragZooms) {
    Open();
    Load(Plate());
    const QPoint middle(Area()->width() / 2, Area()->height() / 2);
    const QImage still = Picture();
    Drag(Qt::LeftButton, middle, middle + QPoint(120, 40));
    const QImage turned = Picture();
    EXPECT_NE(turned, still);
    EXPECT_EQ(dialog->View().selectedIndex, -1); // a drag is no click
    Drag(Qt::MiddleButton, middle, middle + QPoint(60, 0));
    const QImage moved = Picture();
    EXPECT_NE(moved, turned);
    Drag(Qt::RightButton, middle, middle + QPoint(20, 20));
    EXPECT_NE(Picture(), moved);
}

TEST_F(DrawingTest, APanFollowsTheCursorInTheMiddle) {
    Open();
    Load(Plate());
    const QPoint middle(Area()->width() / 2, Area()->height() / 2);
    const QPoint aside =
        middle + QPoint(Area()->width() / 10, 0); // x = 0.2 on the trackball, a move by 1.999
    QTest::mousePress(Area(), Qt::MiddleButton, {}, middle);
    QTest::mouseMove(Area(), aside);
    QTest::qWait(50);
    QTest::mouseRelease(Area(), Qt::MiddleButton, {}, aside);
    // 1.999 of 25 off, with 36.31 / 30 to a unit of the model, is 1.652 units.
    const QImage picture = Picture();
    EXPECT_TRUE(IsNear(ColourAt(picture, {1.2, 3.5}), 244, 0, 0));
    EXPECT_TRUE(IsNear(ColourAt(picture, {2.2, 3.5}), 0, 244, 0));
}

TEST_F(DrawingTest, AZoomIsGoneFromTheProjectionAfterAResize) {
    Open();
    Load(Plate());
    const QPoint middle(Area()->width() / 2, Area()->height() / 2);
    QTest::mousePress(Area(), Qt::RightButton, {}, middle);
    QTest::mouseMove(Area(), middle - QPoint(40, 0)); // one move: the projection alone
    QTest::qWait(50);
    QTest::mouseRelease(Area(), Qt::RightButton, {}, middle - QPoint(40, 0));
    EXPECT_TRUE(IsNear(ColourAt(Picture(), {-9.5, 4.5}), 204, 204, 204));
    dialog->resize(918, 780);
    WaitForHeight(qRound(630 * Area()->devicePixelRatioF()));
    ExpectColourSoon({-9.5, 4.5}, 244, 0, 0);
}

TEST_F(DrawingTest, APickAfterMaximisingHitsWhatIsUnderTheCursorInTheBiggerViewport) {
    Open();
    Load(Plate());
    dialog->showMaximized();
    ASSERT_TRUE(QTest::qWaitFor([this] { return dialog->width() > 1000; }, kPatience));
    WaitForHeight(qRound(dialog->height() * Area()->devicePixelRatioF()));
    // The viewport starts at the control's lower left corner and is higher than the control: from above, the
    // pixel that is read lies higher than the cursor by the difference.
    const int above = dialog->View().viewHeight - qRound(Area()->height() * Area()->devicePixelRatioF());
    EXPECT_GT(above, 0);
    const QPointF pixel = PixelOf(kRed);
    QTest::mouseClick(Area(), Qt::LeftButton, {}, (pixel / Area()->devicePixelRatioF()).toPoint());
    EXPECT_EQ(dialog->View().selectedIndex, 0);
}

TEST_F(DrawingTest, ThePictureComesBackAfterBeingCovered) {
    Open();
    Load(Plate());
    {
        QWidget cover;
        cover.setGeometry(dialog->geometry());
        cover.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&cover, kPatience));
        cover.raise();
        QTest::qWait(100);
    }
    ExpectColourSoon(kRed, 244, 0, 0);
}

TEST_F(DrawingTest, ASceneThatTheCardKeepsIsTheSamePicture) {
    const std::string gear = std::string(TARNWICK_SAMPLES) + "/gear.stp";
    Open();
    Load(gear);
    const QImage handedOver = Picture();
    dialog->View().residentLimit = OpenGLControl::usualResidentLimit;
    Load(gear);
    EXPECT_EQ(Picture(), handedOver);
    Load(Plate());
    ExpectColourSoon(kRed, 244, 0, 0);
}

TEST_F(DrawingTest, WhatTheCardKeepsIsGivenBackAtTheEnd) {
    Open();
    dialog->View().residentLimit = OpenGLControl::usualResidentLimit;
    Load(Plate());
    Picture();
    QOpenGLFunctions* const library = QOpenGLContext::currentContext()->functions();
    EXPECT_TRUE(library->glIsBuffer(1));
    static_cast<GlArea*>(dialog->findChild<QWidget*>("OpenGL"))->Release();
    EXPECT_FALSE(library->glIsBuffer(1));
}

TEST_F(DrawingTest, OneMachineInFourFormatsGivesOnePicture) {
    const std::string samples = TARNWICK_SAMPLES;
    Open("", kLoadCommands);
    Load(samples + "/machine/machine.stp");
    const QImage assembly = Picture();
    for (const char* const file : {"/machine-xml/machine.stpx", "/machine.stpa", "/machine.stpz"}) {
        Load(samples + file);
        const QImage picture = Picture();
        ASSERT_EQ(picture.size(), assembly.size());
        // Where two parts meet in a plane, the last bits of a placement decide which one shows.
        int different = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                different += picture.pixel(x, y) != assembly.pixel(x, y);
            }
        }
        EXPECT_LT(different, picture.width() * picture.height() / 1000) << file;
    }
    int background = 0;
    for (int y = 0; y < assembly.height(); ++y) {
        for (int x = 0; x < assembly.width(); ++x) {
            background += assembly.pixelColor(x, y) == QColor(204, 204, 204);
        }
    }
    EXPECT_LT(background, assembly.width() * assembly.height() * 9 / 10);
}

} // namespace
} // namespace tarnwick::test
