#include "report/json_writer.h"
#include "report/report.h"

namespace tarnwick {

namespace {

void WriteStructureIds(JsonWriter* json, const StepModel& model) {
    for (const P42Ent* record = model.structureList->First(); record != nullptr;
         record = model.structureList->Next()) {
        json->Integer(record->id);
    }
}

void WriteEntities(JsonWriter* json, const StepModel& model) {
    for (std::int32_t i = 0; i < model.entityCount; ++i) {
        const P42Ent* const record = model.EntityAt(i);
        json->BeginArray();
        json->Integer(record->id);
        json->Integer(record->offset);
        json->Integer(record->multiLine);
        json->Integer(record->code);
        json->EndArray();
    }
}

} // namespace

std::string IndexReport(const StepModel& model, int result, bool entities) {
    const bool read = result == StepModel::kRead;
    JsonWriter json;
    const auto number = [&json](const char* key, std::int64_t value) {
        json.Key(key);
        json.Integer(value);
    };
    const auto counted = [&](const char* key, std::int32_t count) { number(key, read ? count : 0); };
    json.BeginObject();
    json.Key("format");
    json.Text("tarnwick.index/1");
    number("result", result);
    json.Key("fileName");
    json.Text(model.fileName);
    number("compression", model.compression);
    counted("isAssembly", model.isAssembly);
    counted("apNumber", model.apNumber);
    counted("entityCount", model.entityCount);
    counted("shapeRepresentationId", model.shapeRepresentationId);
    counted("presentationId", model.presentationId);
    json.Key("colourIds");
    json.BeginArray();
    if (read) {
        for (const std::int32_t id : model.colourIds) { json.Integer(id); }
    }
    json.EndArray();
    counted("rootProductId", model.rootProductId);
    counted("productCount", model.productCount);
    json.Key("structureList");
    json.BeginArray();
    if (read) { WriteStructureIds(&json, model); }
    json.EndArray();
    number("bucketCount", read ? model.entityMap->BucketCount() : 0);
    if (entities) {
        json.Key("entities");
        json.BeginArray();
        if (read) { WriteEntities(&json, model); }
        json.EndArray();
    }
    json.EndObject();
    return json.Take() + "\n";
}

} // namespace tarnwick
