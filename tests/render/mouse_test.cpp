// What each mouse action calls, and the arithmetic after it against values worked out by hand.

#include "test_view.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tarnwick {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::FloatNear;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Pointwise;

// The view is 800 by 600: its middle is at 400, 300.
class MouseTest : public ViewTest {
protected:
    // Calls before the frame that a move draws, and those after it.
    static Calls Before(const Calls& calls) {
        const auto frame = std::find(calls.begin(), calls.end(), "glAlphaFunc(GL_GREATER, 0.0099999998)");
        return Calls(calls.begin(), frame);
    }
    static Calls After(const Calls& calls) {
        const auto swap = std::find(calls.begin(), calls.end(), "swap");
        return swap == calls.end() ? Calls{} : Calls(swap + 2, calls.end()); // the pop ends the frame
    }
};

TEST_F(MouseTest, TheMiddleOfTheWindowIsTheTopOfTheTrackball) {
    view.OnLButtonDown({400, 300});
    EXPECT_DOUBLE_EQ(view.lastVector[0], 0);
    EXPECT_DOUBLE_EQ(view.lastVector[1], 0);
    EXPECT_DOUBLE_EQ(view.lastVector[2], 1);
}

TEST_F(MouseTest, APointInsideTheCircleLiesOnTheBall) {
    // x = (2 * 640 - 800) / 800 = 0.6, y = (600 - 2 * 300) / 600 = 0, d = 0.6 as f32 = 0.60000002384185791.
    // d squared in f32 is 0.36000001430511475, z = sqrt(1.001 - that) = 0.80062475...; the length is
    // sqrt(0.36 + z * z) = sqrt(1.001) but for the rounding of z.
    view.OnLButtonDown({640, 300});
    EXPECT_NEAR(view.lastVector[0], 0.6 / std::sqrt(1.001), 3e-8);
    EXPECT_EQ(view.lastVector[1], 0);
    const float d = 0.6f;
    const float z = static_cast<float>(std::sqrt(1.001 - d * d));
    EXPECT_EQ(view.lastVector[2], z / std::sqrt(0.6 * 0.6 + static_cast<double>(z) * z));
}

TEST_F(MouseTest, UpInTheWindowIsUpOnTheBall) {
    view.OnLButtonDown({400, 120}); // y = (600 - 240) / 600 = 0.6
    EXPECT_NEAR(view.lastVector[1], 0.6 / std::sqrt(1.001), 3e-8);
    EXPECT_GT(view.lastVector[2], 0.79);
}

TEST_F(MouseTest, OutsideTheCircleTheVectorStaysValid) {
    // x = -1, y = 1: d is cut to 1, z = f32 of sqrt(0.001).
    view.OnLButtonDown({0, 0});
    const double z = static_cast<float>(std::sqrt(1.001 - 1.0f));
    EXPECT_NEAR(z, 0.0316227766, 3e-9);
    const double length = std::sqrt(2 + z * z);
    EXPECT_DOUBLE_EQ(view.lastVector[0], -1 / length);
    EXPECT_DOUBLE_EQ(view.lastVector[1], 1 / length);
    EXPECT_DOUBLE_EQ(view.lastVector[2], z / length);
    view.OnLButtonDown({-4000, 9000}); // a drag goes on outside the window
    EXPECT_TRUE(std::isfinite(view.lastVector[0]));
    EXPECT_GT(view.lastVector[2], 0);
}

TEST_F(MouseTest, AWindowWithoutSizePutsNothingInfiniteIntoTheView) {
    view.OnSize(OpenGLControl::kRestored, 0, 0);
    view.OnMButtonDown({0, 0});
    view.OnMouseMove({1, 1});
    for (const float element : gl_recorder::ModelView()) { EXPECT_TRUE(std::isfinite(element)); }
}

TEST_F(MouseTest, TheLeftButtonStartsARotation) {
    view.OnLButtonDown({640, 300});
    EXPECT_EQ(view.dragMode, 0u);
    EXPECT_EQ(view.pressPoint.x, 640);
    EXPECT_EQ(view.pressPoint.y, 300);
    EXPECT_THAT(TakeCalls(), ElementsAre("glMatrixMode(GL_MODELVIEW)"));
}

TEST_F(MouseTest, TheMiddleButtonStartsAPanAndCallsNothing) {
    view.OnMButtonDown({640, 300});
    EXPECT_EQ(view.dragMode, 2u);
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(MouseTest, TheRightButtonStartsAZoomOnTheProjection) {
    view.OnRButtonDown({123, 45});
    EXPECT_EQ(view.dragMode, 1u);
    EXPECT_EQ(view.lastVector[0], 123);
    EXPECT_EQ(view.lastVector[1], 45);
    EXPECT_THAT(TakeCalls(), ElementsAre("glMatrixMode(GL_PROJECTION)"));
}

TEST_F(MouseTest, ARotationTurnsAboutTheScreenBeforeAllThatTheMatrixHeld) {
    const std::vector<float> moved = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1};
    view.OnLButtonDown({400, 300});
    gl_recorder::SetModelView(moved);
    Forget();
    view.OnMouseMove({640, 300});
    // From (0, 0, 1) to (0.59970, 0, 0.80022): the difference has the length sqrt(0.35964 + 0.03991) =
    // 0.63210, which is 56.889 degrees, about (0, 0, 1) x v = (0, 0.59970, 0).
    const Calls calls = TakeCalls();
    const Calls before = Before(calls);
    ASSERT_EQ(before.size(), 4u);
    EXPECT_EQ(before[0], "glGetFloatv(GL_MODELVIEW_MATRIX)");
    EXPECT_EQ(before[1], "glLoadIdentity()");
    float degrees = 0;
    float axis[3] = {};
    ASSERT_EQ(
        std::sscanf(before[2].c_str(), "glRotatef(%f, %f, %f, %f)", &degrees, &axis[0], &axis[1], &axis[2]),
        4);
    EXPECT_NEAR(degrees, 56.889f, 0.001f);
    EXPECT_EQ(axis[0], 0);
    EXPECT_NEAR(axis[1], 0.599700f, 1e-6f);
    EXPECT_EQ(axis[2], 0);
    EXPECT_EQ(before[3], "glMultMatrixf(1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 1)");
    EXPECT_THAT(After(calls), ElementsAre("glGetFloatv(GL_MODELVIEW_MATRIX)"));
    // The translation turns with it: x' = x cos + z sin, z' = z cos - x sin; cos = 0.54624, sin = 0.83763.
    const std::vector<float> now = gl_recorder::ModelView();
    EXPECT_NEAR(now[12], 0.54624 + 3 * 0.83763, 1e-4);
    EXPECT_NEAR(now[13], 2, 1e-6);
    EXPECT_NEAR(now[14], 3 * 0.54624 - 0.83763, 1e-4);
    EXPECT_NEAR(view.lastVector[0], 0.599700, 1e-6);
}

TEST_F(MouseTest, ARotationTooSmallToSeeIsLeftOutButMovesOn) {
    view.OnSize(OpenGLControl::kRestored, 100000, 100000);
    view.OnLButtonDown({50000, 50000});
    Forget();
    view.OnMouseMove({50002, 50000}); // x = 0.00004
    EXPECT_THAT(TakeCalls(), ElementsAre("glGetFloatv(GL_MODELVIEW_MATRIX)"));
    EXPECT_NEAR(view.lastVector[0], 0.00004, 1e-6);
    view.OnMouseMove({50008, 50000}); // 0.00012 further
    EXPECT_THAT(TakeCalls(), Contains("swap"));
}

TEST_F(MouseTest, TheFirstMoveOfAZoomScalesTheProjectionAndTheNextTheModel) {
    const std::vector<float> projection = gl_recorder::Projection();
    view.OnRButtonDown({100, 100});
    Forget();
    view.OnMouseMove({115, 110}); // 1 + 0.008 * (10 + 15) = 1.2
    const Calls first = TakeCalls();
    EXPECT_THAT(Before(first), ElementsAre("glScalef(1.2, 1.2, 1.2)"));
    EXPECT_THAT(After(first), ElementsAre("glGetFloatv(GL_MODELVIEW_MATRIX)"));
    EXPECT_FLOAT_EQ(gl_recorder::Projection()[0], projection[0] * 1.2f);
    EXPECT_FLOAT_EQ(gl_recorder::ModelView()[0], 1);
    view.OnMouseMove({105, 95}); // 1 + 0.008 * (-15 - 10) = 0.8
    EXPECT_THAT(Before(TakeCalls()), ElementsAre("glScalef(0.80000001, 0.80000001, 0.80000001)"));
    EXPECT_FLOAT_EQ(gl_recorder::Projection()[0], projection[0] * 1.2f);
    EXPECT_FLOAT_EQ(gl_recorder::ModelView()[0], 0.8f);
    EXPECT_EQ(view.lastVector[0], 105);
    EXPECT_EQ(view.lastVector[1], 95);
}

TEST_F(MouseTest, AZoomThatGoesTooFastCollapsesTheModel) {
    view.OnRButtonDown({500, 500});
    Forget();
    view.OnMouseMove({375, 500}); // exactly -125
    EXPECT_THAT(Before(TakeCalls()), ElementsAre("glScalef(0, 0, 0)"));
    view.OnMouseMove({225, 500}); // -150: inside out
    EXPECT_THAT(Before(TakeCalls()), ElementsAre(HasSubstr("glScalef(-0.2")));
    view.OnSize(OpenGLControl::kRestored, 800, 600);
    EXPECT_NE(gl_recorder::Projection()[0], 0);
}

TEST_F(MouseTest, APanMovesAcrossTheScreenWithoutAThreshold) {
    view.OnMButtonDown({400, 300});
    Forget();
    view.OnMouseMove({640, 300}); // 0.5997003 * 10
    const Calls calls = TakeCalls();
    const Calls before = Before(calls);
    ASSERT_EQ(before.size(), 4u);
    EXPECT_EQ(before[0], "glGetFloatv(GL_MODELVIEW_MATRIX)");
    EXPECT_EQ(before[1], "glLoadIdentity()");
    float move[3] = {};
    ASSERT_EQ(std::sscanf(before[2].c_str(), "glTranslatef(%f, %f, %f)", &move[0], &move[1], &move[2]), 3);
    EXPECT_NEAR(move[0], 5.997003f, 1e-5f);
    EXPECT_EQ(move[1], 0);
    EXPECT_EQ(move[2], 0);
    EXPECT_EQ(before[3], "glMultMatrixf(1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1)");
    EXPECT_THAT(After(calls), ElementsAre("glGetFloatv(GL_MODELVIEW_MATRIX)"));
    view.OnMouseMove({640, 300});
    EXPECT_THAT(TakeCalls(), Contains("swap"));
}

TEST_F(MouseTest, AMoveWithoutADragOnlyClearsTheVector) {
    view.lastVector[0] = 5;
    view.OnMouseMove({10, 10});
    EXPECT_THAT(TakeCalls(), ElementsAre("glGetFloatv(GL_MODELVIEW_MATRIX)"));
    EXPECT_EQ(view.lastVector[0], 0);
    EXPECT_EQ(view.lastVector[2], 0);
}

TEST_F(MouseTest, ASecondButtonReplacesTheDragAndAnyReleaseEndsIt) {
    view.OnLButtonDown({10, 10});
    view.OnRButtonDown({10, 10});
    EXPECT_EQ(view.dragMode, 1u);
    view.OnMButtonUp({10, 10});
    EXPECT_EQ(view.dragMode, 3u);
    view.OnMButtonDown({10, 10});
    view.OnRButtonUp({10, 10});
    EXPECT_EQ(view.dragMode, 3u);
    view.OnMButtonDown({10, 10});
    view.OnLButtonUp({99, 99});
    EXPECT_EQ(view.dragMode, 3u);
}

TEST_F(MouseTest, AClickAtOnePlacePicksWithoutTurning) {
    Show({NewItem({NewFace(11)})}, 1);
    view.OnLButtonDown({10, 20});
    view.OnMouseMove({10, 20});
    EXPECT_THAT(TakeCalls(), ElementsAre("glMatrixMode(GL_MODELVIEW)", "glGetFloatv(GL_MODELVIEW_MATRIX)"));
    view.OnLButtonUp({10, 20});
    EXPECT_THAT(TakeCalls(), Contains("glReadPixels(10, 580, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE)"));
}

TEST_F(MouseTest, ADragThatComesBackToItsStartIsAClick) {
    Show({NewItem({NewFace(11)})}, 1);
    view.OnLButtonDown({10, 20});
    view.OnMouseMove({300, 200});
    view.OnMouseMove({10, 20});
    Forget();
    view.OnLButtonUp({10, 20});
    EXPECT_THAT(TakeCalls(), Contains("glEnable(GL_LIGHT3)"));
    view.OnLButtonDown({10, 20});
    Forget();
    view.OnLButtonUp({10, 21});
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(MouseTest, TheControlKeyChangesNothingButTheConsole) {
    window.controlDown = true;
    ::testing::internal::CaptureStderr();
    view.OnLButtonDown({640, 300});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Control clic\n");
    EXPECT_EQ(view.dragMode, 0u);
    EXPECT_THAT(TakeCalls(), ElementsAre("glMatrixMode(GL_MODELVIEW)"));
}

TEST_F(MouseTest, ANewSceneKeepsTheViewThatTheUserLeft) {
    view.OnLButtonDown({400, 300});
    view.OnMouseMove({640, 300});
    const std::vector<float> turned = gl_recorder::ModelView();
    Show({NewItem({NewFace(11)})}, 1);
    view.Redraw();
    EXPECT_EQ(gl_recorder::ModelView(), turned);
}

} // namespace
} // namespace tarnwick
