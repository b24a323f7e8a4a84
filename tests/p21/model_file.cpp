#include "p21/model_file.h"

#include "support/capture.h"

namespace tarnwick::test {

ModelFile::ModelFile(std::string_view bytes, std::string_view name) {
    Read(own.Write(name, bytes));
}

ModelFile::ModelFile(const TempFolder& folder, std::string_view name) {
    Read(folder.Path(name));
}

void ModelFile::Read(const std::string& path) {
    LogCapture log;
    model = std::make_unique<StepModel>(workspace, path);
    result = model->Read();
    output = log.TakeOutput();
    console = log.TakeConsole();
}

std::vector<std::int32_t> ModelFile::Ids() const {
    std::vector<std::int32_t> ids;
    for (std::int32_t i = 0; i < model->entityCount; ++i) { ids.push_back(model->EntityAt(i)->id); }
    return ids;
}

std::int32_t ModelFile::CodeOf(std::int32_t id) const {
    const P42Ent* const record = Find(id);
    return record != nullptr ? record->code : -1;
}

std::string CountLine(int count) {
    return "\nNombre d'entites dans le fichier d'entree: " + std::to_string(count) + "\n";
}

} // namespace tarnwick::test
