#include "geometry/part_file.h"

#include "support/capture.h"

#include <cstdio>
#include <cstdlib>

namespace tarnwick::test {

const std::string kSquare = "#10=COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(1.,1.,0.),(0.,1.,0.)));";

std::string FaceLine(int id) {
    return "#" + std::to_string(id) + "=TRIANGULATED_FACE('',#10,4,$,$,$,((1,2,3)));";
}

PartFile::PartFile(std::string_view bytes, std::string_view name, ProductNode* product, Helpers* helpers)
    : model(workspace, folder.Write(name, bytes)) {
    workspace.helpers = helpers;
    LogCapture log;
    if (model.Read() != StepModel::kRead) { std::abort(); }
    log.TakeOutput();
    log.TakeConsole();
    reader = std::make_unique<PartReader>(model, product, arena, scratch);
    result = reader->ReadPart();
    output = log.TakeOutput();
    console = log.TakeConsole();
}

const StepFaceB& PartFile::FaceOf(std::int32_t id) const {
    for (const StepFaceB* const face : scratch.faces) {
        if (face->faceId == id) { return *face; }
    }
    std::abort();
}

std::vector<std::int32_t> PartFile::FaceIds() const {
    std::vector<std::int32_t> ids;
    for (const StepFaceB* const face : scratch.faces) { ids.push_back(face->faceId); }
    return ids;
}

const DrawItem* PartFile::Item() const {
    if (reader->product == nullptr || reader->product->drawList == nullptr) { return nullptr; }
    return reader->product->drawList->items[0];
}

std::string ColourOf(const StepFaceB& face) {
    char text[100];
    const auto value = [&face](int i) { return static_cast<double>(face.colour[i]); };
    std::snprintf(text, sizeof text, "%g %g %g %g", value(0), value(1), value(2), value(3));
    return text;
}

} // namespace tarnwick::test
