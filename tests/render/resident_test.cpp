// Frames of a scene that the graphics library keeps: the same calls, from buffers that come and go with it.

#include "test_view.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

namespace tarnwick {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::size_t kEnough = std::size_t{1} << 20;
constexpr std::size_t kFaceBytes = 2 * 36 + 12; // of the fixture's face

class ResidentTest : public ViewTest {
protected:
    static bool IsOfBuffers(const std::string& call) {
        return call.find("Buffer") != std::string::npos && call.find("glReadBuffer") == std::string::npos;
    }

    // The calls of what `draw` does, but those for buffers.
    Calls Drawn(const std::function<void()>& draw) {
        Forget();
        draw();
        Calls calls = TakeCalls();
        calls.erase(std::remove_if(calls.begin(), calls.end(), IsOfBuffers), calls.end());
        for (std::size_t i = 1; i < calls.size(); ++i) {
            const bool off = calls[i] == "glDisableClientState(GL_NORMAL_ARRAY)";
            if (off && calls[i - 1].find("glNormalPointer") == 0) {
                calls[i - 1] = "normals that aren't used";
            }
        }
        return calls;
    }
    Calls Frame() {
        return Drawn([this] { view.Redraw(); });
    }
    Calls Pick() {
        return Drawn([this] { view.PickAt({10, 10}); });
    }

    // Draws the shown scene both ways.
    void ExpectTheSameCalls() {
        const std::int32_t selected = view.selectedIndex;
        view.residentLimit = 0;
        const Calls frame = Frame();
        const Calls pick = Pick();
        EXPECT_EQ(gl_recorder::Buffers(), 0u);
        view.residentLimit = kEnough;
        view.selectedIndex = selected;
        EXPECT_EQ(Frame(), frame);
        EXPECT_EQ(Frame(), frame) << "in the second frame";
        EXPECT_EQ(Pick(), pick);
        EXPECT_GT(gl_recorder::Buffers(), 0u);
        EXPECT_THAT(frame, Not(Contains(HasSubstr("unknown"))));
    }

    void ShowTwoFaces() { Show({NewItem({NewFace(1), NewFace(2)})}, kPickFaces); }
};

TEST_F(ResidentTest, FacesAreDrawnByTheSameCalls) {
    ShowTwoFaces();
    view.selectedIndex = 1;
    ExpectTheSameCalls();
}

TEST_F(ResidentTest, PlacedPartsShareOneCopyOfTheirMeshes) {
    static constexpr float kMoved[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    const std::vector<StepFaceB*> meshes{NewFace(1), NewFace(2), nullptr};
    Show({NewItem(meshes), NewItem(meshes, nullptr, kMoved)}, kPickProducts);
    ExpectTheSameCalls();
    EXPECT_EQ(gl_recorder::BufferBytes(), 2 * kFaceBytes);
}

TEST_F(ResidentTest, BoxesAreDrawnByTheSameCalls) {
    ShowBoxes({NewBox(1), NewBox(2)});
    ExpectTheSameCalls();
    EXPECT_EQ(gl_recorder::BufferBytes(), 2u * (2 * 288 + 144));
}

TEST_F(ResidentTest, AResultMeshIsDrawnByTheSameCalls) {
    float vertices[12] = {};
    std::uint8_t colours[16] = {};
    std::uint32_t quads[8] = {0, 1, 2, 3, 0, 1, 2, 9}; // a node that isn't there
    gl_recorder::Name(vertices, "nodes");
    gl_recorder::Name(colours, "colours");
    ResultMesh mesh{vertices, colours, quads, 2, 4};
    view.loaded.resultMesh = &mesh;
    view.loaded.drawnTriangles = 4;
    view.modelSize = 10;
    ++view.sceneNumber;
    ExpectTheSameCalls();
    EXPECT_EQ(gl_recorder::BufferBytes(), 48u + 16 + 16);
    view.OnDestroy();
}

TEST_F(ResidentTest, FacesThatLackVerticesOrNormalsAreDrawnByTheSameCalls) {
    StepFaceB* const few = NewFace(1);
    few->triangles[1] = 7;
    StepFaceB* const unlit = NewFace(2);
    unlit->normalCount = 1;
    Show({NewItem({few, unlit, NewFace(3)})}, kPickFaces);
    ExpectTheSameCalls();
    EXPECT_EQ(gl_recorder::BufferBytes(), 36u + 12 + kFaceBytes);
}

TEST_F(ResidentTest, ArraysAreHandedOverOnceForAScene) {
    ShowTwoFaces();
    view.residentLimit = kEnough;
    view.Redraw();
    Forget();
    view.Redraw();
    EXPECT_THAT(TakeCalls(),
                AllOf(Not(Contains(HasSubstr("BufferData"))), Not(Contains(HasSubstr("SubData")))));
}

TEST_F(ResidentTest, AFrameLeavesNoBufferBound) {
    ShowTwoFaces();
    view.residentLimit = kEnough;
    view.Redraw();
    Calls calls = TakeCalls();
    calls.erase(std::remove_if(calls.begin(), calls.end(),
                               [](const std::string& call) { return call.find("glBindBuffer") != 0; }),
                calls.end());
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ(calls[calls.size() - 2], "glBindBuffer(GL_ARRAY_BUFFER, 0)");
    EXPECT_EQ(calls.back(), "glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)");
}

TEST_F(ResidentTest, TheNextLoadGivesBuffersBackBeforeItReads) {
    ShowTwoFaces();
    view.residentLimit = kEnough;
    view.Redraw();
    EXPECT_EQ(gl_recorder::Buffers(), 2u);
    view.DeleteDisplayList(); // what every load asks for first
    EXPECT_EQ(gl_recorder::Buffers(), 0u);
    view.Redraw(); // of a load that failed and left its scene
    EXPECT_EQ(gl_recorder::Buffers(), 2u);
}

TEST_F(ResidentTest, AnotherSceneTakesThePlaceOfTheOneBefore) {
    view.residentLimit = kEnough;
    ShowTwoFaces();
    view.Redraw();
    Show({NewItem({NewFace(3)})}, kPickFaces);
    ExpectTheSameCalls();
    EXPECT_EQ(gl_recorder::BufferBytes(), kFaceBytes);
}

TEST_F(ResidentTest, TheEndGivesBuffersBack) {
    ShowTwoFaces();
    view.residentLimit = kEnough;
    view.Redraw();
    view.OnDestroy();
    EXPECT_EQ(gl_recorder::Buffers(), 0u);
}

TEST_F(ResidentTest, WhatExceedsTheLimitIsDrawnAsBefore) {
    StepFaceB* const first = NewFace(1);
    Show({NewItem({first, NewFace(2), NewFace(3)})}, kPickFaces);
    const Calls frame = Frame();
    view.residentLimit = 2 * kFaceBytes + 1;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(Frame(), frame);
    EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                HasSubstr("1 of 3 meshes don't fit into the limit"));
    EXPECT_EQ(gl_recorder::BufferBytes(), 2 * kFaceBytes);
}

TEST_F(ResidentTest, WhatTheLibraryRefusesIsDrawnAsBefore) {
    ShowTwoFaces();
    const Calls frame = Frame();
    for (const int refused : {1, 2}) { // the buffer of arrays, that of indices
        gl_recorder::Reset();
        view.DeleteDisplayList();
        ShowTwoFaces();
        gl_recorder::RefuseBuffersFrom(refused);
        view.residentLimit = kEnough;
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(Frame().size(), frame.size());
        EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                    HasSubstr("2 of 2 meshes don't fit into the graphics library"));
        EXPECT_EQ(gl_recorder::Buffers(), 0u);
    }
}

TEST_F(ResidentTest, WithoutBuffersItIsSaidInOneLineAndDrawnAsBefore) {
    ShowTwoFaces();
    const Calls frame = Frame();
    view.residentLimit = kEnough;
    for (const bool old : {true, false}) {
        view.DeleteDisplayList();
        gl_recorder::SetVersion(old ? "1.4 of the past" : "2.1");
        window.hasFunctions = old;
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(Frame(), frame);
        EXPECT_EQ(Frame(), frame);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(),
                  "<W> --resident: the graphics library has no buffers, each frame hands it all arrays\n");
    }
}

TEST_F(ResidentTest, WithoutTheOptionNoBufferIsAskedFor) {
    ShowTwoFaces();
    view.Redraw();
    view.PickAt({10, 10});
    view.DeleteDisplayList();
    view.OnDestroy();
    for (const std::string& call : TakeCalls()) { EXPECT_FALSE(IsOfBuffers(call)) << call; }
}

} // namespace
} // namespace tarnwick
