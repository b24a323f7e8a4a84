// The calls of one frame of each kind of scene, in the display pass and in the pick pass.

#include "test_view.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

namespace tarnwick {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::Not;

class FrameTest : public ViewTest {
protected:
    static Calls Joined(std::initializer_list<Calls> parts) {
        Calls calls;
        for (const Calls& part : parts) { calls.insert(calls.end(), part.begin(), part.end()); }
        return calls;
    }

    static Calls Opening(const std::string& grey) {
        return {"glAlphaFunc(GL_GREATER, 0.0099999998)",
                "glEnable(GL_ALPHA_TEST)",
                "glMatrixMode(GL_MODELVIEW)",
                "glPushMatrix()",
                "glMatrixMode(GL_PROJECTION)",
                "glPushMatrix()",
                "glLoadIdentity()",
                "glOrtho(-1, 1, -1, 1, -1, 1)",
                "glMatrixMode(GL_MODELVIEW)",
                "glPushMatrix()",
                "glLoadIdentity()",
                "glPushAttrib(GL_ENABLE_BIT)",
                "glDisable(GL_DEPTH_TEST)",
                "glDisable(GL_LIGHTING)",
                "glDisable(GL_TEXTURE_2D)",
                "glClearColor(" + grey + ", " + grey + ", " + grey + ", 1)",
                "glClear(colour and depth)",
                "glPopAttrib()",
                "glPopMatrix()",
                "glMatrixMode(GL_PROJECTION)",
                "glPopMatrix()",
                "glMatrixMode(GL_MODELVIEW)",
                "glEnable(GL_LIGHTING)",
                "glEnable(GL_DEPTH_TEST)"};
    }

    static Calls SceneOpening(const std::string& grey) {
        return Joined({Opening(grey),
                       {"glScalef(3.6309998, 3.6309998, 3.6309998)", "glTranslatef(-1, -2, -3)",
                        "glDisable(GL_CULL_FACE)", "glEnableClientState(GL_VERTEX_ARRAY)",
                        "glEnableClientState(GL_NORMAL_ARRAY)"}});
    }

    static Calls WithNormals(const std::string& mode = "GL_FILL") {
        return {"glDisableClientState(GL_COLOR_ARRAY)", "glEnableClientState(GL_NORMAL_ARRAY)",
                "glPolygonMode(GL_FRONT_AND_BACK, " + mode + ")"};
    }

    static Calls Face(const std::string& colour, int id) {
        const std::string name = std::to_string(id);
        return {"glColor4f(" + colour + ")", "glVertexPointer(3, GL_FLOAT, 0, v" + name + ")",
                "glNormalPointer(GL_FLOAT, 0, n" + name + ")",
                "glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_INT, t" + name + ")"};
    }

    static Calls Box(const std::string& colour, int id) {
        const std::string name = std::to_string(id);
        return {"glColor4f(" + colour + ")", "glVertexPointer(3, GL_FLOAT, 0, bv" + name + ")",
                "glNormalPointer(GL_FLOAT, 0, bn" + name + ")",
                "glDrawElements(GL_TRIANGLES, 36, GL_UNSIGNED_INT, bi" + name + ")", "glPopMatrix()"};
    }

    // The calls of the pick pass alone.
    Calls PickPass() {
        gl_recorder::SetPixel(255, 255, 255);
        view.selectedIndex = -1;
        view.PickAt({10, 10});
        Calls calls = TakeCalls();
        // Before it the lights go over to the codes, after it one pixel is read and the lights go back.
        EXPECT_THAT(Calls(calls.begin(), calls.begin() + 3),
                    ElementsAre("glDisable(GL_LIGHT1)", "glDisable(GL_LIGHT2)", "glEnable(GL_LIGHT3)"));
        EXPECT_THAT(Calls(calls.end() - 6, calls.end()),
                    ElementsAre("glGetIntegerv(GL_VIEWPORT)",
                                "glReadPixels(10, 590, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE)",
                                "glReadPixels(10, 590, 1, 1, GL_RGBA, GL_FLOAT)", "glEnable(GL_LIGHT1)",
                                "glEnable(GL_LIGHT2)", "glDisable(GL_LIGHT3)"));
        return Calls(calls.begin() + 3, calls.end() - 6);
    }

    void CentreAt123() {
        view.centre[0] = 1;
        view.centre[1] = 2;
        view.centre[2] = 3;
    }

    static constexpr float kMoved[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    const Calls kEnd = {"glFinish()", "swap", "glPopMatrix()"};
    const Calls kPickEnd = {"glFinish()", "glPopMatrix()"};
};

TEST_F(FrameTest, WithoutTrianglesAFrameShowsTheCube) {
    view.Redraw();
    const Calls cube = {
        "glTranslatef(0, 0, -10)", "glTranslatef(0, 0, 0)", "glRotatef(0, 1, 0, 0)", "glRotatef(0, 0, 1, 0)",
        "glBegin(GL_QUADS)", "glColor3f(0.5, 0.5, 1)",
        // front, back, top, bottom, right, left
        "glNormal3f(0, 0, 1)", "glVertex3f(1, 1, 1)", "glVertex3f(-1, 1, 1)", "glVertex3f(-1, -1, 1)",
        "glVertex3f(1, -1, 1)", //
        "glNormal3f(0, 0, -1)", "glVertex3f(-1, -1, -1)", "glVertex3f(-1, 1, -1)", "glVertex3f(1, 1, -1)",
        "glVertex3f(1, -1, -1)", //
        "glNormal3f(0, 1, 0)", "glVertex3f(1, 1, 1)", "glVertex3f(1, 1, -1)", "glVertex3f(-1, 1, -1)",
        "glVertex3f(-1, 1, 1)", //
        "glNormal3f(0, -1, 0)", "glVertex3f(-1, -1, -1)", "glVertex3f(1, -1, -1)", "glVertex3f(1, -1, 1)",
        "glVertex3f(-1, -1, 1)", //
        "glNormal3f(1, 0, 0)", "glVertex3f(1, 1, 1)", "glVertex3f(1, -1, 1)", "glVertex3f(1, -1, -1)",
        "glVertex3f(1, 1, -1)", //
        "glNormal3f(-1, 0, 0)", "glVertex3f(-1, -1, -1)", "glVertex3f(-1, -1, 1)", "glVertex3f(-1, 1, 1)",
        "glVertex3f(-1, 1, -1)", "glEnd()"};
    EXPECT_THAT(TakeCalls(), ElementsAreArray(Joined({Opening("0.80000001"), cube, kEnd})));
}

TEST_F(FrameTest, ThePickPassOfTheCubeGivesEachSideAColourOfItsOwn) {
    // A list with nothing to draw is the only way to that pass: without any list a click does nothing.
    Show({}, 1);
    view.loaded.drawnTriangles = 0;
    const Calls calls = PickPass();
    Calls colours;
    for (const std::string& call : calls) {
        if (call.starts_with("glColor3f")) { colours.push_back(call); }
    }
    EXPECT_THAT(colours, ElementsAre("glColor3f(1, 0, 0)", "glColor3f(1, 1, 0)", "glColor3f(0, 1, 0)",
                                     "glColor3f(0, 1, 1)", "glColor3f(0, 0, 1)", "glColor3f(1, 0, 1)"));
}

TEST_F(FrameTest, FacesOfOnePartAreDrawnEachWithItsColour) {
    CentreAt123();
    Show({NewItem({NewFace(11), NewFace(12)})}, 1);
    view.Redraw();
    EXPECT_THAT(TakeCalls(), ElementsAreArray(Joined({SceneOpening("0.80000001"),
                                                      WithNormals(),
                                                      {"glPushMatrix()"},
                                                      Face("0.25, 0.5, 0.75, 1", 11),
                                                      Face("0.25, 0.5, 0.75, 1", 12),
                                                      {"glPopMatrix()"},
                                                      kEnd})));
    EXPECT_EQ(gl_recorder::PushedMatrices(), 0u);
    EXPECT_TRUE(gl_recorder::ModelViewIsSelected());
}

TEST_F(FrameTest, ThePickPassOfOnePartPaintsTheNumberOfTheFace) {
    CentreAt123();
    Show({NewItem({NewFace(11), NewFace(12)})}, 1);
    EXPECT_THAT(PickPass(), ElementsAreArray(Joined({SceneOpening("1"),
                                                     WithNormals(),
                                                     {"glPushMatrix()"},
                                                     Face("0, 0, 0, 1", 11),
                                                     Face("0, 0, 0.0039215689, 1", 12),
                                                     {"glPopMatrix()"},
                                                     kPickEnd})));
}

TEST_F(FrameTest, PlacedPartsAreDrawnUnderTheirMatrices) {
    CentreAt123();
    StepFaceB* const shared = NewFace(11);
    Show({NewItem({shared}), NewItem({shared, NewFace(12)}, nullptr, kMoved)}, 2);
    view.Redraw();
    EXPECT_THAT(TakeCalls(), ElementsAreArray(Joined({SceneOpening("0.80000001"),
                                                      WithNormals(),
                                                      {"glPushMatrix()"},
                                                      Face("0.25, 0.5, 0.75, 1", 11),
                                                      {"glPopMatrix()", "glPushMatrix()",
                                                       "glMultMatrixf(1 0 0 0 0 1 0 0 0 0 1 0 5 6 7 1)"},
                                                      Face("0.25, 0.5, 0.75, 1", 11),
                                                      Face("0.25, 0.5, 0.75, 1", 12),
                                                      {"glPopMatrix()"},
                                                      kEnd})));
}

TEST_F(FrameTest, ThePickPassOfPlacedPartsPaintsTheNumberOfTheItemOnAllItsFaces) {
    CentreAt123();
    Show({NewItem({NewFace(11)}), NewItem({NewFace(12), NewFace(13)}, nullptr, kMoved)}, 2);
    EXPECT_THAT(PickPass(), ElementsAreArray(Joined({SceneOpening("1"),
                                                     WithNormals(),
                                                     {"glPushMatrix()"},
                                                     Face("0, 0, 0, 1", 11),
                                                     {"glPopMatrix()", "glPushMatrix()",
                                                      "glMultMatrixf(1 0 0 0 0 1 0 0 0 0 1 0 5 6 7 1)"},
                                                     Face("0, 0, 0.0039215689, 1", 12),
                                                     Face("0, 0, 0.0039215689, 1", 13),
                                                     {"glPopMatrix()"},
                                                     kPickEnd})));
}

TEST_F(FrameTest, ACodeFillsBlueThenGreenThenRed) {
    std::vector<StepFaceB*> faces(65538, NewFace(1));
    Show({NewItem(faces)}, 1);
    Calls colours;
    for (const std::string& call : PickPass()) {
        if (call.starts_with("glColor4f")) { colours.push_back(call); }
    }
    ASSERT_EQ(colours.size(), 65538u);
    EXPECT_EQ(colours[255], "glColor4f(0, 0, 1, 1)");
    EXPECT_EQ(colours[256], "glColor4f(0, 0.0039215689, 0, 1)");
    EXPECT_EQ(colours[65535], "glColor4f(0, 1, 1, 1)");
    EXPECT_EQ(colours[65537], "glColor4f(0.0039215689, 0, 0.0039215689, 1)");
}

TEST_F(FrameTest, OfOnePartTheSelectedFaceAloneIsMagenta) {
    Show({NewItem({NewFace(11), NewFace(12)})}, 1);
    view.selectedIndex = 1;
    view.Redraw();
    const Calls calls = TakeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "glColor4f(1, 0, 1, 1)"), 1);
    const auto magenta = std::find(calls.begin(), calls.end(), "glColor4f(1, 0, 1, 1)");
    EXPECT_EQ(*(magenta + 1), "glVertexPointer(3, GL_FLOAT, 0, v12)");
}

TEST_F(FrameTest, OfSeveralPartsAllFacesOfTheSelectedOneAreMagenta) {
    Show({NewItem({NewFace(11)}), NewItem({NewFace(12), NewFace(13)})}, 2);
    view.selectedIndex = 1;
    view.Redraw();
    const Calls calls = TakeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "glColor4f(1, 0, 1, 1)"), 2);
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "glColor4f(0.25, 0.5, 0.75, 1)"), 1);
}

TEST_F(FrameTest, AFiniteElementMeshIsOneCallWithAColourForEachNode) {
    float vertices[12] = {};
    std::uint8_t colours[16] = {};
    std::uint32_t quads[4] = {0, 1, 2, 3};
    gl_recorder::Name(vertices, "nodes");
    gl_recorder::Name(colours, "colours");
    gl_recorder::Name(quads, "quads");
    ResultMesh mesh{vertices, colours, quads, 1, 4};
    CentreAt123();
    view.modelSize = 10;
    view.loaded.drawnTriangles = 2;
    view.loaded.resultMesh = &mesh;
    view.Redraw();
    EXPECT_THAT(TakeCalls(),
                ElementsAreArray(Joined(
                    {SceneOpening("0.80000001"),
                     {"glEnableClientState(GL_COLOR_ARRAY)", "glDisableClientState(GL_NORMAL_ARRAY)",
                      "glPolygonMode(GL_FRONT_AND_BACK, GL_FILL)", "glVertexPointer(3, GL_FLOAT, 0, nodes)",
                      "glColorPointer(4, GL_UNSIGNED_BYTE, 0, colours)",
                      "glDrawElements(GL_QUADS, 4, GL_UNSIGNED_INT, quads)"},
                     kEnd})));
}

TEST_F(FrameTest, BoxesAreYellowAndTheSelectedOneIsDarkRed) {
    CentreAt123();
    float moved[16];
    std::copy(std::begin(kMoved), std::end(kMoved), moved);
    ShowBoxes({NewBox(1), NewBox(2, nullptr, moved)});
    view.selectedIndex = 1;
    view.Redraw();
    EXPECT_THAT(TakeCalls(),
                ElementsAreArray(Joined({SceneOpening("0.80000001"),
                                         WithNormals(),
                                         {"glColor4f(0.80000001, 0.80000001, 0.2, 0.5)", "glPushMatrix()"},
                                         Box("0.80000001, 0.80000001, 0.2, 0.5", 1),
                                         {"glPushMatrix()", "glMultMatrixf(1 0 0 0 0 1 0 0 0 0 1 0 5 6 7 1)"},
                                         Box("0.80000001, 0, 0, 1", 2),
                                         kEnd})));
}

TEST_F(FrameTest, ThePickPassOfBoxesPaintsTheNumberOfTheBox) {
    CentreAt123();
    ShowBoxes({NewBox(1), NewBox(2)});
    EXPECT_THAT(PickPass(),
                ElementsAreArray(Joined({SceneOpening("1"),
                                         WithNormals(),
                                         {"glColor4f(0.80000001, 0.80000001, 0.2, 0.5)", "glPushMatrix()"},
                                         Box("0, 0, 0, 1", 1),
                                         {"glPushMatrix()"},
                                         Box("0, 0, 0.0039215689, 1", 2),
                                         kPickEnd})));
}

TEST_F(FrameTest, MeshesGoBeforeAFiniteElementMeshAndThatBeforeBoxes) {
    float vertices[12] = {};
    std::uint8_t colours[16] = {};
    std::uint32_t quads[4] = {0, 1, 2, 3};
    ResultMesh mesh{vertices, colours, quads, 1, 4};
    ShowBoxes({NewBox(1)});
    view.loaded.resultMesh = &mesh;
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Not(Contains("glVertexPointer(3, GL_FLOAT, 0, bv1)")));
    Show({NewItem({NewFace(11)})}, 1);
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glVertexPointer(3, GL_FLOAT, 0, v11)"));
}

TEST_F(FrameTest, OnlyTheValueOneDrawsLines) {
    Show({NewItem({NewFace(11)})}, 1);
    for (const std::int32_t value : {0, 2, -8, -7}) {
        view.wireframe = value;
        view.Redraw();
        EXPECT_THAT(TakeCalls(), Contains("glPolygonMode(GL_FRONT_AND_BACK, GL_FILL)")) << value;
    }
    view.wireframe = 1;
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glPolygonMode(GL_FRONT_AND_BACK, GL_LINE)"));
}

TEST_F(FrameTest, AModelOfAnySizeIsScaledToTheSameApparentSize) {
    Show({NewItem({NewFace(11)})}, 1);
    view.modelSize = 36.309998f;
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glScalef(1, 1, 1)"));
    view.modelSize = 0.001f;
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glScalef(36309.996, 36309.996, 36309.996)"));
}

TEST_F(FrameTest, TheScaleDoesNotAddUpFromFrameToFrame) {
    Show({NewItem({NewFace(11)})}, 1);
    const std::vector<float> before = gl_recorder::ModelView();
    view.Redraw();
    view.Redraw();
    EXPECT_EQ(gl_recorder::ModelView(), before);
}

TEST_F(FrameTest, AnEmptyListDrawsTheBackgroundOnly) {
    Show({}, 2);
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Not(Contains("glPolygonMode(GL_FRONT_AND_BACK, GL_LINE)")));
    view.loaded.drawList = nullptr; // what a failed load leaves
    view.Redraw();
    const Calls calls = TakeCalls();
    EXPECT_EQ(calls.back(), "glPopMatrix()");
    EXPECT_THAT(calls, Not(Contains("glBegin(GL_QUADS)")));
}

TEST_F(FrameTest, ARedrawTakesItsTime) {
    view.Redraw();
    EXPECT_GT(view.framesPerSecond, 0);
    EXPECT_TRUE(std::isfinite(view.framesPerSecond));
}

// ---- arrays that don't hold what they are used for

TEST_F(FrameTest, AFaceWithFewerNormalsThanVerticesIsLitAsIfTheyWereAllUpright) {
    StepFaceB* const poor = NewFace(11);
    poor->normalCount = 2;
    CentreAt123();
    Show({NewItem({poor, NewFace(12)})}, 1);
    view.Redraw();
    EXPECT_THAT(
        TakeCalls(),
        ElementsAreArray(Joined(
            {SceneOpening("0.80000001"),
             WithNormals(),
             {"glPushMatrix()", "glColor4f(0.25, 0.5, 0.75, 1)", "glVertexPointer(3, GL_FLOAT, 0, v11)",
              "glNormalPointer(GL_FLOAT, 0, n11)", "glDisableClientState(GL_NORMAL_ARRAY)",
              "glNormal3f(0, 0, 1)", "glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_INT, t11)",
              "glEnableClientState(GL_NORMAL_ARRAY)"},
             Face("0.25, 0.5, 0.75, 1", 12),
             {"glPopMatrix()"},
             kEnd})));
}

TEST_F(FrameTest, AFaceWithoutNormalsAndOneWithMoreThanVerticesAreDrawn) {
    StepFaceB* const none = NewFace(11);
    none->normalCount = 0;
    none->normals = nullptr;
    StepFaceB* const more = NewFace(12);
    more->normalCount = 9;
    Show({NewItem({none, more})}, 1);
    view.Redraw();
    const Calls calls = TakeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "glNormal3f(0, 0, 1)"), 1);
    EXPECT_THAT(calls, Contains("glNormalPointer(GL_FLOAT, 0, null)"));
}

TEST_F(FrameTest, TrianglesOfVerticesThatAreNotThereAreLeftOut) {
    StepFaceB* const wild = NewFace(11);
    std::vector<std::uint32_t> triangles = {0, 1, 2, 0, 1, 3, 4294967295u, 1, 2, 2, 1, 0};
    wild->triangles = triangles.data();
    wild->triangleCount = 4;
    Show({NewItem({wild})}, 1);
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_INT, 0 1 2 2 1 0)"));
    PickPass(); // and so in the pick pass
    wild->vertexCount = 0;
    wild->vertices = nullptr;
    wild->normalCount = 0;
    ++view.sceneNumber;
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glDrawElements(GL_TRIANGLES, 0, GL_UNSIGNED_INT, none)"));
}

TEST_F(FrameTest, QuadsOfNodesThatAreNotThereAreLeftOut) {
    float vertices[15] = {};
    std::uint8_t colours[20] = {};
    std::uint32_t quads[12] = {0, 1, 2, 3, 1, 2, 3, 5, 4, 3, 2, 1};
    ResultMesh mesh{vertices, colours, quads, 3, 5};
    view.loaded.drawnTriangles = 6;
    view.loaded.resultMesh = &mesh;
    ++view.sceneNumber;
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glDrawElements(GL_QUADS, 8, GL_UNSIGNED_INT, 0 1 2 3 4 3 2 1)"));
}

TEST_F(FrameTest, AMeshAtTheAddressOfAnEarlierOneIsLookedAtAnew) {
    StepFaceB* const face = NewFace(11);
    face->normalCount = 0;
    Show({NewItem({face})}, 1);
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glNormal3f(0, 0, 1)"));
    face->normalCount = 3;
    ++view.sceneNumber; // as a reset does
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Not(Contains("glNormal3f(0, 0, 1)")));
}

TEST_F(FrameTest, AMeshThatIsNotThereIsPassedOver) {
    Show({NewItem({nullptr, NewFace(12)})}, 1);
    view.Redraw();
    EXPECT_THAT(TakeCalls(), Contains("glVertexPointer(3, GL_FLOAT, 0, v12)"));
}

} // namespace
} // namespace tarnwick
