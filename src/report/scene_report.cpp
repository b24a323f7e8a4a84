#include "report/json_values.h"
#include "report/report.h"

#include <unordered_map>
#include <vector>

namespace tarnwick {

using Json = nlohmann::ordered_json;

namespace {

Json Floats(const float* values, std::size_t count) {
    Json array = Json::array();
    for (std::size_t i = 0; i < count; ++i) { array.push_back(JsonFloat(values[i])); }
    return array;
}

Json Doubles(const double* values, std::size_t count) {
    Json array = Json::array();
    for (std::size_t i = 0; i < count; ++i) { array.push_back(JsonDouble(values[i])); }
    return array;
}

template <class T>
Json Integers(const T* values, std::size_t count) {
    Json array = Json::array();
    for (std::size_t i = 0; i < count; ++i) { array.push_back(values[i]); }
    return array;
}

Json Matrix(const float* matrix) {
    return matrix != nullptr ? Floats(matrix, 16) : Json(nullptr);
}

Json TextOrNull(const char* text) {
    return text != nullptr ? Json(JsonText(text)) : Json(nullptr);
}

// Gives each record a number at its first appearance.
template <class Record>
class Numbering {
public:
    // The number of a record; *isNew tells whether it got it just now.
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
    // The record's number, or null where it has none.
    Json Known(const Record* record) const {
        const auto found = numbers_.find(record);
        return found != numbers_.end() ? Json(found->second) : Json(nullptr);
    }
    const std::vector<const Record*>& Records() const { return records_; }

private:
    std::unordered_map<const Record*, std::size_t> numbers_;
    std::vector<const Record*> records_;
};

using Products = Numbering<ProductNode>;
using Meshes = Numbering<StepFaceB>;

// Numbers the products of a tree depth first, in pre-order, by first visit; a stack of our own, since trees
// may be deep.
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

Json Mesh(const StepFaceB& face, bool arrays) {
    const auto vertices = 3 * static_cast<std::size_t>(face.vertexCount);
    const auto normals = 3 * static_cast<std::size_t>(face.normalCount);
    const auto triangles = 3 * static_cast<std::size_t>(face.triangleCount);
    const auto pnindex = static_cast<std::size_t>(face.pnindexCount);
    Json mesh;
    mesh["faceId"] = face.faceId;
    mesh["exactFaceId"] = face.exactFaceId;
    mesh["containerId"] = face.containerId;
    mesh["exactContainerId"] = face.exactContainerId;
    mesh["containerType"] = face.containerType;
    mesh["pnmax"] = face.pnmax;
    mesh["pnindexCount"] = face.pnindexCount;
    mesh["vertexCount"] = face.vertexCount;
    mesh["triangleCount"] = face.triangleCount;
    mesh["normalCount"] = face.normalCount;
    mesh["colour"] = Floats(face.colour, 4);
    mesh["box"] = Floats(face.box, 6);
    mesh["verticesCrc"] = Crc(face.vertices, vertices * sizeof(float));
    mesh["normalsCrc"] = Crc(face.normals, normals * sizeof(float));
    mesh["trianglesCrc"] = Crc(face.triangles, triangles * sizeof(std::uint32_t));
    mesh["pnindexCrc"] = Crc(face.pnindex, pnindex * sizeof(std::int32_t));
    if (arrays) {
        mesh["vertices"] = Floats(face.vertices, vertices);
        mesh["normals"] = Floats(face.normals, normals);
        mesh["triangles"] = Integers(face.triangles, triangles);
        mesh["pnindex"] = Integers(face.pnindex, pnindex);
    }
    return mesh;
}

Json Items(const DrawList* list, const Products& products, Meshes* meshes) {
    if (list == nullptr) { return nullptr; }
    Json items = Json::array();
    for (std::int32_t i = 0; i < list->count; ++i) {
        const DrawItem& item = *list->items[i];
        Json indices = Json::array();
        for (std::int32_t m = 0; m < item.meshCount; ++m) {
            indices.push_back(meshes->NumberOf(item.meshes[m]));
        }
        items.push_back({{"product", products.Known(item.product)},
                         {"matrix", Matrix(item.matrix)},
                         {"meshes", std::move(indices)}});
    }
    return items;
}

Json Boxes(const DrawList* list, const Products& products) {
    if (list == nullptr) { return nullptr; }
    Json boxes = Json::array();
    for (std::int32_t i = 0; i < list->count; ++i) {
        const BoxItem& box = *list->boxes[i];
        boxes.push_back({{"product", products.Known(box.product)},
                         {"matrix", Matrix(box.matrix)},
                         {"vertices", Floats(box.vertices, 3 * static_cast<std::size_t>(box.vertexCount))}});
    }
    return boxes;
}

Json Product(const ProductNode& product, const Products& products) {
    Json occurrences = Json::array();
    for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
        const Occurrence& occurrence = *product.occurrences[i];
        occurrences.push_back({{"child", products.Known(occurrence.child)},
                               {"rotation", Doubles(occurrence.rotation, 9)},
                               {"translation", Doubles(occurrence.translation, 3)}});
    }
    return {{"name", TextOrNull(product.name)},
            {"fileName", TextOrNull(product.fileName)},
            {"definitionId", product.definitionId},
            {"formationId", product.formationId},
            {"isRoot", product.isRoot},
            {"hasBox", product.hasBox},
            {"box", product.hasBox != 0 ? Floats(product.box, 6) : Json(nullptr)},
            {"occurrences", std::move(occurrences)}};
}

Json Result(const ResultMesh* mesh, bool arrays) {
    if (mesh == nullptr) { return nullptr; }
    const auto nodes = static_cast<std::size_t>(mesh->nodeCount);
    const auto quads = static_cast<std::size_t>(mesh->quadCount);
    Json result = {{"nodeCount", mesh->nodeCount},
                   {"quadCount", mesh->quadCount},
                   {"verticesCrc", Crc(mesh->vertices, 3 * nodes * sizeof(float))},
                   {"coloursCrc", Crc(mesh->colours, 4 * nodes)},
                   {"quadIndicesCrc", Crc(mesh->quadIndices, 4 * quads * sizeof(std::uint32_t))}};
    if (arrays) {
        result["vertices"] = Floats(mesh->vertices, 3 * nodes);
        result["colours"] = Integers(mesh->colours, 4 * nodes);
        result["quadIndices"] = Integers(mesh->quadIndices, 4 * quads);
    }
    return result;
}

Json Containers(const SceneView& view) {
    Json containers = Json::array();
    for (std::int32_t i = 0; i < view.loaded.containerCount; ++i) {
        const FaceContainer& container = *view.loaded.containers[i];
        containers.push_back({{"kind", container.kind},
                              {"containerId", container.containerId},
                              {"exactContainerId", container.exactContainerId},
                              {"materialName", TextOrNull(container.materialName)}});
    }
    return containers;
}

} // namespace

std::string SceneReport(const SceneView& view, const std::string& path, const std::string* status,
                        bool arrays) {
    Products products;
    if (view.loaded.root != nullptr) { NumberTree(view.loaded.root, &products); }
    for (std::int32_t i = 0; i < view.loaded.summaryProductCount; ++i) {
        products.NumberOf(view.loaded.summaryProducts[i]);
    }
    Meshes meshes;
    Json items = Items(view.loaded.drawList, products, &meshes);
    Json meshRecords = Json::array();
    for (const StepFaceB* const face : meshes.Records()) { meshRecords.push_back(Mesh(*face, arrays)); }
    Json productRecords = Json::array();
    for (const ProductNode* const product : products.Records()) {
        productRecords.push_back(Product(*product, products));
    }
    Json report;
    report["format"] = "tarnwick.scene/1";
    report["path"] = JsonText(path);
    report["status"] = status != nullptr ? Json(JsonText(*status)) : Json(nullptr);
    report["triangles"] = view.loaded.drawnTriangles;
    report["pickMode"] = view.loaded.pickMode;
    report["maxDepth"] = view.loaded.maxDepth;
    report["box"] = Floats(view.loaded.box, 6);
    report["centre"] = Floats(view.centre, 3);
    report["modelSize"] = JsonFloat(view.modelSize);
    report["eye"] = Floats(view.eye, 3);
    report["rootName"] = view.loaded.hasRootName ? Json(JsonText(view.loaded.rootName)) : Json(nullptr);
    report["drawList"] = std::move(items);
    report["meshes"] = std::move(meshRecords);
    report["products"] = std::move(productRecords);
    report["boxList"] = Boxes(view.loaded.boxList, products);
    report["resultMesh"] = Result(view.loaded.resultMesh, arrays);
    report["containers"] = Containers(view);
    return report.dump() + "\n";
}

} // namespace tarnwick
