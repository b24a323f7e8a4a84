// One frame in the fixed-function pipeline: the arrays go to the graphics library as the readers left them,
// or are there already.

#include "platform/clock.h"
#include "render/index_pieces.h"
#include "render/opengl_control.h"
#include "render/pick_code.h"

#include <GL/gl.h>

namespace tarnwick {

namespace {

void SetPickColour(std::uint32_t code) {
    const PickColour colour = PickColourOf(code);
    glColor4f(colour.red, colour.green, colour.blue, 1.0f);
}

void DrawElements(GLenum mode, const void* indices, std::size_t count) {
    ForIndexPieces(count, [&](std::size_t first, std::size_t here) {
        glDrawElements(mode, static_cast<GLsizei>(here), GL_UNSIGNED_INT,
                       static_cast<const std::uint32_t*>(indices) + first);
    });
}

void DrawTriangles(const void* indices, std::int32_t triangles) {
    DrawElements(GL_TRIANGLES, indices, 3 * static_cast<std::size_t>(triangles));
}

// Fills the window with a colour, and leaves view and states as they were.
void Clear(const GLfloat colour[4]) {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(-1, 1, -1, 1, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glClearColor(colour[0], colour[1], colour[2], colour[3]);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glPopAttrib();
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
}

} // namespace

void OpenGLControl::Redraw() {
    const double start = ClockSeconds();
    DrawFrame(kDisplay);
    const double seconds = ClockSeconds() - start;
    framesPerSecond = seconds > 0 ? 1 / seconds : 0;
}

void OpenGLControl::ShowProgress(std::int32_t filesRead, std::int32_t filesKnown) {
    if (dialog != nullptr) { dialog->ShowLoadProgress(filesRead, filesKnown); }
}

void OpenGLControl::DrawFrame(Pass pass) {
    if (!hasContext_) { return; }
    DrawScene(pass);
    if (pass == kDisplay) { window_.SwapBuffers(); }
    glPopMatrix(); // the one that DrawScene pushed
}

void OpenGLControl::DrawScene(Pass pass) {
    glAlphaFunc(GL_GREATER, 0.01f);
    glEnable(GL_ALPHA_TEST);
    // Popped at the frame's end, so that the scaling below doesn't accumulate from frame to frame.
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    static constexpr GLfloat kNoCode[4] = {1, 1, 1, 1};
    Clear(pass == kPick ? kNoCode : background);
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    if (loaded.drawnTriangles == 0) {
        glTranslatef(0, 0, -cubeTransform[2]);
        glTranslatef(cubeTransform[0], cubeTransform[1], 0);
        glRotatef(cubeTransform[3], 1, 0, 0);
        glRotatef(cubeTransform[4], 0, 1, 0);
        DrawCube(pass);
        return;
    }
    const GLfloat scale = apparentSize / modelSize;
    glScalef(scale, scale, scale);
    glTranslatef(-centre[0], -centre[1], -centre[2]);
    glDisable(GL_CULL_FACE);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    if (loaded.resultMesh != nullptr) {
        glEnableClientState(GL_COLOR_ARRAY);
        glDisableClientState(GL_NORMAL_ARRAY);
    } else {
        glDisableClientState(GL_COLOR_ARRAY);
        glEnableClientState(GL_NORMAL_ARRAY);
    }
    glPolygonMode(GL_FRONT_AND_BACK, wireframe == 1 ? GL_LINE : GL_FILL);
    if (!safeKnown_ || safeScene_ != sceneNumber) {
        safe_.Check(loaded.drawList, loaded.resultMesh);
        safeScene_ = sceneNumber;
        safeKnown_ = true;
        resident_.Drop();
    }
    if (residentLimit > 0 && !resident_.IsStored()) {
        resident_.Store(window_, loaded.drawList, loaded.boxList, loaded.resultMesh, safe_, residentLimit);
    }
    if (loaded.drawList != nullptr) {
        DrawFaces(pass);
    } else if (loaded.resultMesh != nullptr) {
        DrawResultMesh();
    } else if (loaded.boxList != nullptr) {
        DrawBoxes(pass);
    }
    resident_.Unbind();
    glFinish();
}

void OpenGLControl::DrawFaces(Pass pass) {
    // In a single part, faces are picked and highlighted; in an assembly, placed parts.
    const bool byFace = loaded.drawList->count == 1;
    for (std::int32_t i = 0; i < loaded.drawList->count; ++i) {
        const DrawItem& item = *loaded.drawList->items[i];
        glPushMatrix();
        if (item.matrix != nullptr) { glMultMatrixf(item.matrix); }
        for (std::int32_t j = 0; j < item.meshCount; ++j) {
            if (item.meshes[j] == nullptr) { continue; }
            const StepFaceB& mesh = *item.meshes[j];
            const std::int32_t index = byFace ? j : i;
            if (pass == kPick) {
                SetPickColour(static_cast<std::uint32_t>(index));
            } else if (index == selectedIndex) {
                glColor4f(1, 0, 1, 1);
            } else {
                glColor4f(mesh.colour[0], mesh.colour[1], mesh.colour[2], mesh.colour[3]);
            }
            DrawMesh(mesh);
        }
        glPopMatrix();
    }
}

void OpenGLControl::DrawMesh(const StepFaceB& mesh) {
    const SafeIndices::Mesh* const safe = safe_.Find(&mesh);
    const bool hasIndices = safe == nullptr || safe->hasIndices;
    const auto arrays = resident_.Bind(
        &mesh, {mesh.vertices, mesh.normals, hasIndices ? mesh.triangles : safe->indices.data()});
    glVertexPointer(3, GL_FLOAT, 0, arrays.vertices);
    glNormalPointer(GL_FLOAT, 0, arrays.attributes);
    if (safe == nullptr) {
        DrawTriangles(arrays.indices, mesh.triangleCount);
        return;
    }
    // A face with fewer normals than vertices is lit as if all of them were 0, 0, 1; triangles of vertices
    // that aren't there are left out.
    if (!safe->hasNormals) {
        glDisableClientState(GL_NORMAL_ARRAY);
        glNormal3f(0, 0, 1);
    }
    if (hasIndices) {
        DrawTriangles(arrays.indices, mesh.triangleCount);
    } else {
        DrawElements(GL_TRIANGLES, arrays.indices, safe->indices.size());
    }
    if (!safe->hasNormals) { glEnableClientState(GL_NORMAL_ARRAY); }
}

void OpenGLControl::DrawResultMesh() {
    const ResultMesh& mesh = *loaded.resultMesh;
    const SafeIndices::Mesh* const safe = safe_.Find(&mesh);
    const auto arrays = resident_.Bind(
        &mesh, {mesh.vertices, mesh.colours, safe == nullptr ? mesh.quadIndices : safe->indices.data()});
    glVertexPointer(3, GL_FLOAT, 0, arrays.vertices);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, arrays.attributes);
    DrawElements(GL_QUADS, arrays.indices,
                 safe == nullptr ? 4 * static_cast<std::size_t>(mesh.quadCount) : safe->indices.size());
}

void OpenGLControl::DrawBoxes(Pass pass) {
    glColor4f(0.8f, 0.8f, 0.2f, 0.5f);
    for (std::int32_t i = 0; i < loaded.boxList->count; ++i) {
        const BoxItem& item = *loaded.boxList->boxes[i];
        glPushMatrix();
        if (item.matrix != nullptr) { glMultMatrixf(item.matrix); }
        if (pass == kPick) {
            SetPickColour(static_cast<std::uint32_t>(i));
        } else if (i == selectedIndex) {
            glColor4f(0.8f, 0, 0, 1);
        } else {
            glColor4f(0.8f, 0.8f, 0.2f, 0.5f);
        }
        const auto arrays = resident_.Bind(&item, {item.vertices, item.normals, item.indices});
        glVertexPointer(3, GL_FLOAT, 0, arrays.vertices);
        glNormalPointer(GL_FLOAT, 0, arrays.attributes);
        DrawTriangles(arrays.indices, item.triangleCount);
        glPopMatrix();
    }
}

void OpenGLControl::DrawCube(Pass pass) const {
    struct Side {
        GLfloat normal[3];
        GLfloat corners[4][3];
        GLfloat pickColour[3];
    };
    static constexpr Side kSides[] = {
        {{0, 0, 1}, {{1, 1, 1}, {-1, 1, 1}, {-1, -1, 1}, {1, -1, 1}}, {1, 0, 0}},
        {{0, 0, -1}, {{-1, -1, -1}, {-1, 1, -1}, {1, 1, -1}, {1, -1, -1}}, {1, 1, 0}},
        {{0, 1, 0}, {{1, 1, 1}, {1, 1, -1}, {-1, 1, -1}, {-1, 1, 1}}, {0, 1, 0}},
        {{0, -1, 0}, {{-1, -1, -1}, {1, -1, -1}, {1, -1, 1}, {-1, -1, 1}}, {0, 1, 1}},
        {{1, 0, 0}, {{1, 1, 1}, {1, -1, 1}, {1, -1, -1}, {1, 1, -1}}, {0, 0, 1}},
        {{-1, 0, 0}, {{-1, -1, -1}, {-1, -1, 1}, {-1, 1, 1}, {-1, 1, -1}}, {1, 0, 1}},
    };
    glBegin(GL_QUADS);
    if (pass == kDisplay) { glColor3f(cubeShade, cubeShade, 1.0f); }
    for (const Side& side : kSides) {
        if (pass == kPick) { glColor3f(side.pickColour[0], side.pickColour[1], side.pickColour[2]); }
        glNormal3f(side.normal[0], side.normal[1], side.normal[2]);
        for (const GLfloat* corner : side.corners) { glVertex3f(corner[0], corner[1], corner[2]); }
    }
    glEnd();
    glFinish();
}

} // namespace tarnwick
