#include "product/scene_tree.h"

#include "product/assembly_reader.h"

#include <algorithm>

namespace tarnwick::test {

ProductNode* SceneTree::Product(const std::string& name) {
    ProductNode* const product = arena.New<ProductNode>();
    product->isRoot = 1;
    product->name = arena.Copy(name.data(), name.size());
    return product;
}

ProductNode* SceneTree::Part(const std::string& name, int triangles, const std::array<float, 6>& box) {
    ProductNode* const part = Product(name);
    DrawItem* const item = arena.New<DrawItem>();
    item->meshes = arena.New<StepFaceB*>(1);
    item->meshes[0] = arena.New<StepFaceB>();
    item->meshes[0]->triangleCount = triangles;
    item->meshCount = 1;
    item->product = part;
    part->drawList = MakeDrawList(arena, 1);
    AppendItem(arena, part->drawList, item);
    part->hasBox = 1;
    std::copy(box.begin(), box.end(), part->box);
    return part;
}

Occurrence* SceneTree::Use(ProductNode* parent, ProductNode* child, const Translation& translation,
                           const Rotation& rotation) {
    Occurrence* const occurrence = arena.New<Occurrence>();
    std::copy(rotation.begin(), rotation.end(), occurrence->rotation);
    std::copy(translation.begin(), translation.end(), occurrence->translation);
    occurrence->child = child;
    child->isRoot = 0;
    AddOccurrence(arena, parent, occurrence);
    return occurrence;
}

DrawList* SceneTree::List(std::int32_t capacity, std::int32_t count) {
    if (listPart_ == nullptr) { listPart_ = Part("list part", 1); }
    DrawList* const list = MakeDrawList(arena, capacity);
    for (std::int32_t i = 0; i < count; ++i) { AppendItem(arena, list, listPart_->drawList->items[0]); }
    return list;
}

std::vector<float> PlainProduct(const std::vector<float>& a, const std::vector<float>& b) {
    std::vector<float> out(16);
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < 4; ++r) {
            float sum = a[r] * b[4 * c];
            for (std::size_t k = 1; k < 4; ++k) {
                const float product = a[4 * k + r] * b[4 * c + k];
                sum = sum + product;
            }
            out[4 * c + r] = sum;
        }
    }
    return out;
}

std::vector<float> PlainPlacement(const Occurrence& occurrence) {
    const double* const r = occurrence.rotation;
    const double* const t = occurrence.translation;
    const double matrix[16] = {r[0], r[1], r[2], 0, -r[3], r[4], -r[5], 0,
                               r[6], r[7], r[8], 0, t[0],  t[1], t[2],  1};
    std::vector<float> rounded(16);
    for (std::size_t i = 0; i < 16; ++i) { rounded[i] = static_cast<float>(matrix[i]); }
    return rounded;
}

std::vector<PlainItem> PlainItems(const ProductNode& product) {
    std::vector<PlainItem> items;
    if (product.occurrenceCount == 0) {
        if (product.drawList == nullptr) { return items; }
        for (std::int32_t i = 0; i < product.drawList->count; ++i) {
            const DrawItem& item = *product.drawList->items[i];
            items.push_back({item.product, item.meshes, MatrixOf(item)});
        }
        return items;
    }
    for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
        const Occurrence& occurrence = *product.occurrences[i];
        const std::vector<float> placement = PlainPlacement(occurrence);
        for (PlainItem& item : PlainItems(*occurrence.child)) {
            item.matrix = item.matrix.empty() ? placement : PlainProduct(placement, item.matrix);
            items.push_back(std::move(item));
        }
    }
    return items;
}

bool PlainBox(const ProductNode& product, std::array<float, 6>* box) {
    bool any = false;
    for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
        const Occurrence& o = *product.occurrences[i];
        if (o.child->hasBox == 0) { continue; }
        for (const float bx : {o.child->box[0], o.child->box[1]}) {
            for (const float by : {o.child->box[2], o.child->box[3]}) {
                for (const float bz : {o.child->box[4], o.child->box[5]}) {
                    const double x = static_cast<double>(bx);
                    const double y = static_cast<double>(by);
                    const double z = static_cast<double>(bz);
                    const double* const r = o.rotation;
                    const double turned[3] = {x * r[0] + y * r[3] + z * r[6], x * r[1] + y * r[4] + z * r[7],
                                              x * r[2] + y * r[5] + z * r[8]};
                    for (std::size_t axis = 0; axis < 3; ++axis) {
                        const float rounded = static_cast<float>(turned[axis]);
                        const double moved = static_cast<double>(rounded) + o.translation[axis];
                        const float value = static_cast<float>(moved);
                        float& low = (*box)[2 * axis];
                        float& high = (*box)[2 * axis + 1];
                        low = any ? std::min(low, value) : value;
                        high = any ? std::max(high, value) : value;
                    }
                    any = true;
                }
            }
        }
    }
    return any;
}

std::vector<float> MatrixOf(const DrawItem& item) {
    return item.matrix != nullptr ? std::vector<float>(item.matrix, item.matrix + 16) : std::vector<float>();
}

} // namespace tarnwick::test
