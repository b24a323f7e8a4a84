// A click selects what is under it: the scene is drawn into the back buffer with each thing in a colour that
// encodes its index, and one pixel is read back.

#include "platform/console.h"
#include "render/opengl_control.h"
#include "render/pick_code.h"
#include "text/one_line.h"
#include "text/or_null.h"

#include <GL/gl.h>

#include <string>

namespace tarnwick {

void OpenGLControl::PickAt(WindowPoint point) {
    if (!hasContext_ || (loaded.drawList == nullptr && loaded.boxList == nullptr)) { return; }
    const std::int32_t before = selectedIndex;
    glDisable(GL_LIGHT1);
    glDisable(GL_LIGHT2);
    glEnable(GL_LIGHT3);
    DrawFrame(kPick);
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    // A click on the top row reads above the picture, where nothing is written: that counts as background.
    unsigned char rgba[4] = {255, 255, 255, 255};
    glReadPixels(point.x, viewport[3] - point.y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
    float exact[4] = {}; // the same pixel, unrounded; its value isn't used
    glReadPixels(point.x, viewport[3] - point.y, 1, 1, GL_RGBA, GL_FLOAT, exact);

    selectedIndex = PickedIndex(rgba);
    const bool hit = selectedIndex >= 0;
    if (!hit) {
        selectedFaceId = 0;
        selectedExactFaceId = 0;
        selectedContainerId = 0;
        selectedExactContainerId = 0;
    }
    if (loaded.drawList != nullptr && loaded.pickMode == kPickFaces && loaded.drawList->count > 0) {
        if (hit) {
            TellPickedFace();
        } else if (dialog != nullptr) {
            dialog->SetPickText(" ");
        }
    }
    if (loaded.drawList != nullptr && loaded.pickMode == kPickProducts && hit &&
        selectedIndex < loaded.drawList->count) {
        TellPickedProduct(loaded.drawList->items[selectedIndex]->product);
    }
    if (loaded.boxList != nullptr && hit && selectedIndex < loaded.boxList->count) {
        TellPickedProduct(loaded.boxList->boxes[selectedIndex]->product);
    }
    glEnable(GL_LIGHT1);
    glEnable(GL_LIGHT2);
    glDisable(GL_LIGHT3);
    if (selectedIndex != before) { DrawFrame(kDisplay); }
}

void OpenGLControl::TellPickedFace() {
    const DrawItem& part = *loaded.drawList->items[0];
    const StepFaceB* const face = selectedIndex < part.meshCount ? part.meshes[selectedIndex] : nullptr;
    if (face == nullptr) { return; }
    selectedFaceId = face->faceId;
    selectedExactFaceId = face->exactFaceId;
    selectedContainerId = face->containerId;
    selectedExactContainerId = face->exactContainerId;
    selectedContainerType = face->containerType;
    selectedText = '#' + std::to_string(selectedFaceId);
    if (selectedContainerType == 1) {
        ConsolePrint("Selected face: #%d  Exact Face: #%d solid: #%d  exact solid: #%d\n", selectedFaceId,
                     selectedExactFaceId, selectedContainerId, selectedExactContainerId);
    } else if (selectedContainerType == 2) {
        ConsolePrint("Selected face: #%d  Exact Face: #%d shell: #%d  exact shell: #%d\n", selectedFaceId,
                     selectedExactFaceId, selectedContainerId, selectedExactContainerId);
    } else {
        ConsolePrint("Selected face: #%d  Exact Face: #%d Container: #%d  Exact container: #%d  "
                     "Container type: %d\n",
                     selectedFaceId, selectedExactFaceId, selectedContainerId, selectedExactContainerId,
                     selectedContainerType);
    }
    TellMaterial();
}

void OpenGLControl::TellMaterial() const {
    if (loaded.containers == nullptr) { return; }
    for (std::int32_t i = 0; i < loaded.containerCount; ++i) {
        const FaceContainer& container = *loaded.containers[i];
        if (container.containerId != selectedContainerId) { continue; }
        if (container.materialName != nullptr) {
            ConsolePrint("Material: %s\n", OneLine(container.materialName).Text());
        }
        if (dialog != nullptr) {
            dialog->SetPickText(container.materialName != nullptr
                                    ? "Material: " + std::string(container.materialName) + "  "
                                    : " ");
        }
    }
}

void OpenGLControl::TellPickedProduct(const ProductNode* product) {
    if (product == nullptr) { return; }
    selectedText = product->name != nullptr ? product->name : "";
    ConsolePrint("Product selected: %s   File: %s\n", OneLine(OrNull(product->name)).Text(),
                 OneLine(OrNull(product->fileName)).Text());
}

} // namespace tarnwick
