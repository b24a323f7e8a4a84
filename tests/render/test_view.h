// A drawing window for tests, with a window system and a dialog that only remember what they were told.
#pragma once

#include "gl_recorder.h"
#include "render/opengl_control.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

namespace tarnwick {

class TestWindow final : public WindowPort {
public:
    bool CreateContext() override { return hasContext; }
    void SwapBuffers() override {
        ++swaps;
        // Its place among the calls of the graphics library matters.
        marks.push_back(gl_recorder::Take());
    }
    WindowSize DrawableSize() override { return size; }
    bool IsControlKeyDown() override { return controlDown; }
    void (*FindFunction(const char* name))() override {
        return hasFunctions ? gl_recorder::FindFunction(name) : nullptr;
    }

    bool hasContext = true;
    bool controlDown = false;
    bool hasFunctions = true;
    WindowSize size{10000, 10000};
    int swaps = 0;
    std::vector<std::vector<std::string>> marks; // the calls before each swap
};

class TestDialog final : public DialogPort {
public:
    void SetPickText(const std::string& text) override { pickTexts.push_back(text); }
    void ShowLoadProgress(std::int32_t read, std::int32_t known) override {
        progress.push_back({read, known});
    }

    std::vector<std::string> pickTexts;
    std::vector<std::pair<std::int32_t, std::int32_t>> progress;
};

// Scenes made by hand. Records live as long as the test.
class ViewTest : public ::testing::Test {
protected:
    using Calls = std::vector<std::string>;

    ViewTest() {
        gl_recorder::Reset();
        view.dialog = &dialog;
        view.OnCreate();
        view.OnSize(OpenGLControl::kRestored, 800, 600);
        Forget();
    }

    // Forgets the calls so far.
    void Forget() {
        gl_recorder::Take();
        window.marks.clear();
        window.swaps = 0;
    }

    // The calls so far, with the line "swap" where buffers were swapped.
    Calls TakeCalls() {
        Calls calls;
        for (const auto& before : window.marks) {
            calls.insert(calls.end(), before.begin(), before.end());
            calls.push_back("swap");
        }
        const Calls rest = gl_recorder::Take();
        calls.insert(calls.end(), rest.begin(), rest.end());
        window.marks.clear();
        window.swaps = 0;
        return calls;
    }

    // A face of one triangle with arrays named v<id>, n<id> and t<id>.
    StepFaceB* NewFace(std::int32_t id) {
        auto& vertices = floats_.emplace_back(9, 0.0f);
        auto& normals = floats_.emplace_back(9, 1.0f);
        auto& triangles = indices_.emplace_back(std::vector<std::uint32_t>{0, 1, 2});
        StepFaceB& face = faces_.emplace_back();
        face.faceId = id;
        face.vertexCount = 3;
        face.normalCount = 3;
        face.triangleCount = 1;
        face.vertices = vertices.data();
        face.normals = normals.data();
        face.triangles = triangles.data();
        face.colour[0] = 0.25f;
        face.colour[1] = 0.5f;
        face.colour[2] = 0.75f;
        face.colour[3] = 1.0f;
        const std::string name = std::to_string(id);
        gl_recorder::Name(vertices.data(), 'v' + name);
        gl_recorder::Name(normals.data(), 'n' + name);
        gl_recorder::Name(triangles.data(), 't' + name);
        return &face;
    }

    DrawItem* NewItem(const std::vector<StepFaceB*>& meshes, ProductNode* product = nullptr,
                      const float* matrix = nullptr) {
        auto& array = meshArrays_.emplace_back(meshes);
        DrawItem& item = items_.emplace_back();
        item.meshes = array.data();
        item.meshCount = static_cast<std::int32_t>(array.size());
        item.product = product;
        item.matrix = matrix;
        return &item;
    }

    void Show(const std::vector<DrawItem*>& items, std::int32_t pickMode) {
        shownItems_ = items;
        list_ = DrawList{};
        list_.items = shownItems_.data();
        list_.count = static_cast<std::int32_t>(items.size());
        view.loaded.drawList = &list_;
        view.loaded.boxList = nullptr;
        view.loaded.resultMesh = nullptr;
        view.loaded.drawnTriangles = 1;
        view.loaded.pickMode = pickMode;
        view.modelSize = 10;
        ++view.sceneNumber;
    }

    BoxItem* NewBox(std::int32_t id, ProductNode* product = nullptr, float* matrix = nullptr) {
        auto& vertices = floats_.emplace_back(72, 0.0f);
        auto& normals = floats_.emplace_back(72, 0.0f);
        auto& indices = indices_.emplace_back(36, 0u);
        BoxItem& item = boxes_.emplace_back();
        item.vertices = vertices.data();
        item.normals = normals.data();
        item.indices = indices.data();
        item.vertexCount = 24;
        item.triangleCount = 12;
        item.matrix = matrix;
        item.product = product;
        const std::string name = std::to_string(id);
        gl_recorder::Name(vertices.data(), "bv" + name);
        gl_recorder::Name(normals.data(), "bn" + name);
        gl_recorder::Name(indices.data(), "bi" + name);
        return &item;
    }

    void ShowBoxes(const std::vector<BoxItem*>& boxes) {
        shownBoxes_ = boxes;
        list_ = DrawList{};
        list_.boxes = shownBoxes_.data();
        list_.count = static_cast<std::int32_t>(boxes.size());
        view.loaded.drawList = nullptr;
        view.loaded.resultMesh = nullptr;
        view.loaded.boxList = &list_;
        view.loaded.drawnTriangles = 12 * list_.count;
        view.modelSize = 10;
        ++view.sceneNumber;
    }

    TestWindow window;
    TestDialog dialog;
    OpenGLControl view{window};

private:
    std::deque<std::vector<float>> floats_;
    std::deque<std::vector<std::uint32_t>> indices_;
    std::deque<StepFaceB> faces_;
    std::deque<std::vector<StepFaceB*>> meshArrays_;
    std::deque<DrawItem> items_;
    std::deque<BoxItem> boxes_;
    std::vector<DrawItem*> shownItems_;
    std::vector<BoxItem*> shownBoxes_;
    DrawList list_{};
};

} // namespace tarnwick
