// The context's lights and states, and what a new size does.

#include "test_view.h"

#include <gmock/gmock.h>

namespace tarnwick {
namespace {

using ::testing::ElementsAre;
using ::testing::FloatNear;
using ::testing::IsEmpty;
using ::testing::Pointwise;

class ContextTest : public ViewTest {};

TEST_F(ContextTest, LightsAndStatesAreSetInThisOrder) {
    OpenGLControl fresh(window);
    fresh.OnCreate();
    EXPECT_THAT(
        TakeCalls(),
        ElementsAre(
            "glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()", "glEnable(GL_LIGHTING)", "glEnable(GL_LIGHT0)",
            "glEnable(GL_LIGHT1)", "glEnable(GL_LIGHT2)", "glLightfv(GL_LIGHT1, GL_POSITION, 100 0 100 1)",
            "glLightfv(GL_LIGHT2, GL_AMBIENT, 0.1 0.1 0.1 1)",
            "glLightfv(GL_LIGHT3, GL_AMBIENT, 0.8 0.8 0.8 1)", "glDisable(GL_LIGHT3)",
            "glEnable(GL_DEPTH_TEST)", "glEnable(GL_CULL_FACE)", "glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1)",
            "glEnable(GL_BLEND)", "glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)",
            "glClearColor(0.89999998, 0.89999998, 1, 1)",
            "glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE)", "glEnable(GL_COLOR_MATERIAL)",
            "glEnable(GL_NORMALIZE)",
            // the lights proper
            "glDisable(GL_COLOR_MATERIAL)", "glDisable(GL_LIGHTING)", "glDisable(GL_DEPTH_TEST)",
            "glEnable(GL_DEPTH_TEST)", "glEnable(GL_LIGHTING)", "glDisable(GL_LIGHT1)",
            "glDisable(GL_LIGHT0)", "glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE)",
            "glEnable(GL_COLOR_MATERIAL)", "glLightfv(GL_LIGHT1, GL_AMBIENT, 0.3 0.3 0.3 1)",
            "glLightfv(GL_LIGHT1, GL_DIFFUSE, 0.8 0.8 0.8 1)",
            "glLightfv(GL_LIGHT1, GL_SPECULAR, 0.2 0.3 0.2 1)",
            "glLightfv(GL_LIGHT1, GL_POSITION, -1 0 0.5 0)", "glEnable(GL_LIGHT1)",
            "glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, 0 0 0 1)",
            "glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, 0 0 0 1)",
            "glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, 0 0 0 1)", "glEnable(GL_DEPTH_TEST)",
            "glEnable(GL_NORMALIZE)", "glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE)",
            "glEnable(GL_COLOR_MATERIAL)"));
}

TEST_F(ContextTest, AFreshViewHasItsStartValues) {
    OpenGLControl fresh(window);
    EXPECT_EQ(fresh.modelSize, 120);
    EXPECT_EQ(fresh.dragMode, 3u);
    EXPECT_EQ(fresh.selectedIndex, -1);
    EXPECT_EQ(fresh.loaded.pickMode, 0);
    EXPECT_EQ(fresh.wireframe, 0);
    EXPECT_EQ(fresh.loaded.drawnTriangles, 0);
}

TEST_F(ContextTest, ASizeSetsViewportAndPerspectiveAndLeavesTheProjectionSelected) {
    view.OnSize(OpenGLControl::kRestored, 898, 628);
    EXPECT_THAT(TakeCalls(), ElementsAre("glViewport(0, 0, 898, 628)", "glMatrixMode(GL_PROJECTION)",
                                         "glLoadIdentity()", "gluPerspective(40, 1.4299363, 1.001, 600)",
                                         "glTranslatef(0, 0, -25)", "glViewport(0, 0, 898, 628)"));
    EXPECT_EQ(view.viewWidth, 898);
    EXPECT_EQ(view.viewHeight, 628);
    EXPECT_FALSE(gl_recorder::ModelViewIsSelected());
}

TEST_F(ContextTest, ThePerspectiveIsThatOfFortyDegreesSeenFromTwentyFive) {
    view.OnSize(OpenGLControl::kRestored, 400, 200);
    // cot(20 degrees) = 2.7474774, halved by the aspect of 2. Depth: (600 + 1.001) / (1.001 - 600) =
    // -1.0033422 and 2 * 600 * 1.001 / (1.001 - 600) = -2.0053456, to which the move by -25 adds 25 times
    // 1.0033422; it also makes the last element 25.
    const std::vector<float> expected = {1.3737387f, 0, 0,           0,  0, 2.7474774f, 0,           0,
                                         0,          0, -1.0033422f, -1, 0, 0,          23.0782096f, 25};
    EXPECT_THAT(gl_recorder::Projection(), Pointwise(FloatNear(1e-5f), expected));
}

TEST_F(ContextTest, AMinimisedOrEmptySizeIsRememberedAndChangesNoMatrix) {
    view.OnSize(OpenGLControl::kMinimised, 160, 28);
    EXPECT_EQ(view.viewWidth, 160);
    view.OnSize(OpenGLControl::kRestored, 0, 28);
    view.OnSize(OpenGLControl::kRestored, 160, 0);
    EXPECT_EQ(view.viewHeight, 0);
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(ContextTest, AResizeDropsTheZoomOfTheProjectionAndKeepsThatOfTheModel) {
    const std::vector<float> freshProjection = gl_recorder::Projection();
    view.OnRButtonDown({100, 100});
    view.OnMouseMove({150, 100}); // on the projection
    view.OnMouseMove({200, 100}); // on the model
    EXPECT_NE(gl_recorder::Projection(), freshProjection);
    view.OnSize(OpenGLControl::kRestored, 800, 600);
    EXPECT_EQ(gl_recorder::Projection(), freshProjection);
    EXPECT_FLOAT_EQ(gl_recorder::ModelView()[0], 1.4f);
}

TEST_F(ContextTest, WithoutAContextNothingIsEverCalled) {
    window.hasContext = false;
    OpenGLControl blind(window);
    blind.OnCreate();
    blind.OnSize(OpenGLControl::kRestored, 800, 600);
    DrawList boxes{};
    blind.loaded.boxList = &boxes;
    blind.OnLButtonDown({10, 10});
    blind.OnMouseMove({20, 20});
    blind.OnLButtonUp({10, 10});
    blind.OnRButtonDown({10, 10});
    blind.OnMouseMove({20, 20});
    blind.Redraw();
    EXPECT_EQ(blind.grab_GL("/nonexistent/a.bmp"), 0);
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(ContextTest, TheProgressOfALoadReachesTheDialog) {
    view.ShowProgress(3, 40);
    EXPECT_THAT(dialog.progress, ElementsAre(std::pair(3, 40)));
    view.dialog = nullptr;
    view.ShowProgress(4, 40);
    EXPECT_EQ(dialog.progress.size(), 1u);
}

} // namespace
} // namespace tarnwick
