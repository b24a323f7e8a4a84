#include "report/json_writer.h"
#include "report/report.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace tarnwick {

namespace {

// A writer of values with their keys.
class Report : public JsonWriter {
public:
    Report(bool arrays, ByteSink* sink) : JsonWriter(sink), arrays_(arrays) {}

    bool HasArrays() const { return arrays_; }

    void Number(std::string_view key, std::int64_t value) {
        Key(key);
        Integer(value);
    }
    void Floats(std::string_view key, const float* values, std::size_t count) {
        Key(key);
        BeginArray();
        JsonWriter::Floats(values, count);
        EndArray();
    }
    void Doubles(std::string_view key, const double* values, std::size_t count) {
        Key(key);
        BeginArray();
        for (std::size_t i = 0; i < count; ++i) { Double(values[i]); }
        EndArray();
    }
    template <class T>
    void Integers(std::string_view key, const T* values, std::size_t count) {
        Key(key);
        BeginArray();
        JsonWriter::Integers(values, count);
        EndArray();
    }
    void FloatsOrNull(std::string_view key, const float* values, std::size_t count) {
        if (values != nullptr) { return Floats(key, values, count); }
        Key(key);
        Null();
    }
    void Checksum(std::string_view key, const void* data, std::size_t bytes) {
        Key(key);
        Crc(data, bytes);
    }
    void Name(std::string_view key, const char* text) {
        Key(key);
        TextOrNull(text);
    }

private:
    bool arrays_;
};

// Gives each record a number at its first appearance.
template <class Record>
class Numbering {
public:
    // The number of a record; *isNew is true when it is a new one.
    std::size_t NumberOf(const Record* record, bool* isNew) {
        const auto [place, added] = numbers_.emplace(record, records_.size());
        if (added) { records_.push_back(record); }
        *isNew = added;
        return place->second;
    }
    std::size_t NumberOf(const Record* record) {
        bool isNew;
        return NumberOf(record, &isNew);
    }
    // Writes the record's number, or null where it has none.
    void WriteKnown(Report* report, std::string_view key, const Record* record) const {
        report->Key(key);
        const auto found = numbers_.find(record);
        if (found == numbers_.end()) { return report->Null(); }
        report->Integer(static_cast<std::int64_t>(found->second));
    }
    const std::vector<const Record*>& Records() const { return records_; }

private:
    std::unordered_map<const Record*, std::size_t> numbers_;
    std::vector<const Record*> records_;
};

using Products = Numbering<ProductNode>;
using Meshes = Numbering<StepFaceB>;

// Numbers the products of a tree depth first, in pre-order, by first visit. The stack is our own, since a
// tree may be deep.
void NumberTree(const ProductNode* root, Products* products) {
    struct Visit {
        const ProductNode* product;
        std::int32_t next; // occurrence to go down next
    };
    std::vector<Visit> stack;
    products->NumberOf(root);
    stack.push_back({root, 0});
    while (!stack.empty()) {
        Visit& visit = stack.back();
        if (visit.next == visit.product->occurrenceCount) {
            stack.pop_back();
            continue;
        }
        const ProductNode* const child = visit.product->occurrences[visit.next++]->child;
        if (child == nullptr) { continue; }
        bool isNew;
        products->NumberOf(child, &isNew);
        if (isNew) { stack.push_back({child, 0}); }
    }
}

void WriteMesh(Report* report, const StepFaceB& face) {
    const auto vertices = 3 * static_cast<std::size_t>(face.vertexCount);
    const auto normals = 3 * static_cast<std::size_t>(face.normalCount);
    const auto triangles = 3 * static_cast<std::size_t>(face.triangleCount);
    const auto pnindex = static_cast<std::size_t>(face.pnindexCount);
    report->BeginObject();
    report->Number("faceId", face.faceId);
    report->Number("exactFaceId", face.exactFaceId);
    report->Number("containerId", face.containerId);
    report->Number("exactContainerId", face.exactContainerId);
    report->Number("containerType", face.containerType);
    report->Number("pnmax", face.pnmax);
    report->Number("pnindexCount", face.pnindexCount);
    report->Number("vertexCount", face.vertexCount);
    report->Number("triangleCount", face.triangleCount);
    report->Number("normalCount", face.normalCount);
    report->Floats("colour", face.colour, 4);
    report->Floats("box", face.box, 6);
    report->Checksum("verticesCrc", face.vertices, vertices * sizeof(float));
    report->Checksum("normalsCrc", face.normals, normals * sizeof(float));
    report->Checksum("trianglesCrc", face.triangles, triangles * sizeof(std::uint32_t));
    report->Checksum("pnindexCrc", face.pnindex, pnindex * sizeof(std::int32_t));
    if (report->HasArrays()) {
        report->Floats("vertices", face.vertices, vertices);
        report->Floats("normals", face.normals, normals);
        report->Integers("triangles", face.triangles, triangles);
        report->Integers("pnindex", face.pnindex, pnindex);
    }
    report->EndObject();
}

void WriteItem(Report* report, const DrawItem& item, const Products& products, Meshes* meshes) {
    report->BeginObject();
    products.WriteKnown(report, "product", item.product);
    report->FloatsOrNull("matrix", item.matrix, 16);
    report->Key("meshes");
    report->BeginArray();
    for (std::int32_t m = 0; m < item.meshCount; ++m) {
        report->Integer(static_cast<std::int64_t>(meshes->NumberOf(item.meshes[m])));
    }
    report->EndArray();
    report->EndObject();
}

void WriteItems(Report* report, const DrawList* list, const Products& products, Meshes* meshes) {
    report->Key("drawList");
    if (list == nullptr) { return report->Null(); }
    report->BeginArray();
    for (std::int32_t i = 0; i < list->count; ++i) { WriteItem(report, *list->items[i], products, meshes); }
    report->EndArray();
}

void WriteBoxes(Report* report, const DrawList* list, const Products& products) {
    report->Key("boxList");
    if (list == nullptr) { return report->Null(); }
    report->BeginArray();
    for (std::int32_t i = 0; i < list->count; ++i) {
        const BoxItem& box = *list->boxes[i];
        report->BeginObject();
        products.WriteKnown(report, "product", box.product);
        report->FloatsOrNull("matrix", box.matrix, 16);
        report->Floats("vertices", box.vertices, 3 * static_cast<std::size_t>(box.vertexCount));
        report->EndObject();
    }
    report->EndArray();
}

void WriteProduct(Report* report, const ProductNode& product, const Products& products) {
    report->BeginObject();
    report->Name("name", product.name);
    report->Name("fileName", product.fileName);
    report->Number("definitionId", product.definitionId);
    report->Number("formationId", product.formationId);
    report->Number("isRoot", product.isRoot);
    report->Number("hasBox", product.hasBox);
    report->FloatsOrNull("box", product.hasBox != 0 ? product.box : nullptr, 6);
    report->Key("occurrences");
    report->BeginArray();
    for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
        const Occurrence& occurrence = *product.occurrences[i];
        report->BeginObject();
        products.WriteKnown(report, "child", occurrence.child);
        report->Doubles("rotation", occurrence.rotation, 9);
        report->Doubles("translation", occurrence.translation, 3);
        report->EndObject();
    }
    report->EndArray();
    report->EndObject();
}

void WriteResult(Report* report, const ResultMesh* mesh) {
    report->Key("resultMesh");
    if (mesh == nullptr) { return report->Null(); }
    const auto nodes = static_cast<std::size_t>(mesh->nodeCount);
    const auto quads = static_cast<std::size_t>(mesh->quadCount);
    report->BeginObject();
    report->Number("nodeCount", mesh->nodeCount);
    report->Number("quadCount", mesh->quadCount);
    report->Checksum("verticesCrc", mesh->vertices, 3 * nodes * sizeof(float));
    report->Checksum("coloursCrc", mesh->colours, 4 * nodes);
    report->Checksum("quadIndicesCrc", mesh->quadIndices, 4 * quads * sizeof(std::uint32_t));
    if (report->HasArrays()) {
        report->Floats("vertices", mesh->vertices, 3 * nodes);
        report->Integers("colours", mesh->colours, 4 * nodes);
        report->Integers("quadIndices", mesh->quadIndices, 4 * quads);
    }
    report->EndObject();
}

void WriteContainers(Report* report, const SceneView& view) {
    report->Key("containers");
    report->BeginArray();
    for (std::int32_t i = 0; i < view.loaded.containerCount; ++i) {
        const FaceContainer& container = *view.loaded.containers[i];
        report->BeginObject();
        report->Number("kind", container.kind);
        report->Number("containerId", container.containerId);
        report->Number("exactContainerId", container.exactContainerId);
        report->Name("materialName", container.materialName);
        report->EndObject();
    }
    report->EndArray();
}

void WriteView(Report* report, const SceneView& view) {
    report->Number("triangles", view.loaded.drawnTriangles);
    report->Number("pickMode", view.loaded.pickMode);
    report->Number("maxDepth", view.loaded.maxDepth);
    report->Floats("box", view.loaded.box, 6);
    report->Floats("centre", view.centre, 3);
    report->Key("modelSize");
    report->Float(view.modelSize);
    report->Floats("eye", view.eye, 3);
    report->Key("rootName");
    if (view.loaded.hasRootName) {
        report->Text(view.loaded.rootName);
    } else {
        report->Null();
    }
}

} // namespace

void WriteSceneReport(const SceneView& view, const std::string& path, const std::string* status, bool arrays,
                      ByteSink* sink) {
    Products products;
    if (view.loaded.root != nullptr) { NumberTree(view.loaded.root, &products); }
    for (std::int32_t i = 0; i < view.loaded.summaryProductCount; ++i) {
        products.NumberOf(view.loaded.summaryProducts[i]);
    }
    Meshes meshes;
    Report report(arrays, sink);
    report.BeginObject();
    report.Key("format");
    report.Text("tarnwick.scene/1");
    report.Key("path");
    report.Text(path);
    report.Key("status");
    if (status != nullptr) {
        report.Text(*status);
    } else {
        report.Null();
    }
    WriteView(&report, view);
    WriteItems(&report, view.loaded.drawList, products, &meshes);
    report.Key("meshes");
    report.BeginArray();
    for (const StepFaceB* const face : meshes.Records()) { WriteMesh(&report, *face); }
    report.EndArray();
    report.Key("products");
    report.BeginArray();
    for (const ProductNode* const product : products.Records()) { WriteProduct(&report, *product, products); }
    report.EndArray();
    WriteBoxes(&report, view.loaded.boxList, products);
    WriteResult(&report, view.loaded.resultMesh);
    WriteContainers(&report, view);
    report.EndObject();
    report.Flush();
    sink->Write("\n");
}

std::string SceneReport(const SceneView& view, const std::string& path, const std::string* status,
                        bool arrays) {
    std::string text;
    StringSink sink(&text);
    WriteSceneReport(view, path, status, arrays, &sink);
    return text;
}

} // namespace tarnwick
