#include "report/json_values.h"
#include "report/report.h"

namespace tarnwick {

using Json = nlohmann::ordered_json;

namespace {

Json StructureIds(const StepModel& model) {
    Json ids = Json::array();
    for (const P42Ent* record = model.structureList->First(); record != nullptr;
         record = model.structureList->Next()) {
        ids.push_back(record->id);
    }
    return ids;
}

Json Entities(const StepModel& model) {
    Json entities = Json::array();
    for (std::int32_t i = 0; i < model.entityCount; ++i) {
        const P42Ent* const record = model.EntityAt(i);
        entities.push_back({record->id, record->offset, record->multiLine, record->code});
    }
    return entities;
}

} // namespace

std::string IndexReport(const StepModel& model, int result, bool entities) {
    const bool read = result == StepModel::kRead;
    const auto counted = [read](std::int32_t count) { return read ? count : 0; };
    Json report;
    report["format"] = "tarnwick.index/1";
    report["result"] = result;
    report["fileName"] = JsonText(model.fileName);
    report["compression"] = model.compression;
    report["isAssembly"] = counted(model.isAssembly);
    report["apNumber"] = counted(model.apNumber);
    report["entityCount"] = counted(model.entityCount);
    report["shapeRepresentationId"] = counted(model.shapeRepresentationId);
    report["presentationId"] = counted(model.presentationId);
    report["colourIds"] = read ? Json(model.colourIds) : Json::array();
    report["rootProductId"] = counted(model.rootProductId);
    report["productCount"] = counted(model.productCount);
    report["structureList"] = read ? StructureIds(model) : Json::array();
    report["bucketCount"] = read ? model.entityMap->BucketCount() : 0;
    if (entities) { report["entities"] = read ? Entities(model) : Json::array(); }
    return report.dump() + "\n";
}

} // namespace tarnwick
