// Bringing the text of a file or of a compressed block into the model.

#include "p21/step_model.h"

namespace tarnwick {

int StepModel::ReadFile() {
    TextFile file{.path = std::move(fileName), .compression = compression, .lines = &workspace_.lines};
    const TextFileResult result = ReadTextFile(&file, &workspace_.memory, workspace_.helpers);
    fileName = std::move(file.path);
    compression = file.compression;
    TakeText(file);
    switch (result) {
    case TextFileResult::kRead:
        return kRead;
    case TextFileResult::kNotOpened:
        return kNotOpened;
    default:
        return kNotP21;
    }
}

int StepModel::InflateData() {
    if (compressedData == nullptr) { return kNotOpened; }
    TextFile file{.path = fileName};
    const bool inflated = InflateText(compressedData.get(), compressedSize, true, &file, &workspace_.memory);
    compressedData.reset();
    TakeText(file);
    return inflated ? kRead : kNotP21;
}

void StepModel::TakeText(const TextFile& file) {
    text = file.text;
    textEnd = file.text + file.size;
    problem = file.problem;
    readSeconds += file.readSeconds;
    inflateSeconds += file.inflateSeconds;
}

} // namespace tarnwick
