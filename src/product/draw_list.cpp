#include "product/draw_list.h"

#include "platform/console.h"
#include "text/one_line.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <vector>

namespace tarnwick {

namespace {

constexpr std::int32_t kFirstCapacity = 100;
// A longer list doesn't come from an assembly but from a few lines that multiply each other.
constexpr std::int64_t kMostItems = std::int64_t{1} << 24;
// When a list gets this long, the items of the whole tree are counted before the walk goes on.
constexpr std::int64_t kManyItems = std::int64_t{1} << 20;

constexpr int kBoxTriangles = 12;

// A number of triangles in 32 bits; the console says when there are more.
std::int32_t Limited(std::int64_t count) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    if (count <= kMost) { return static_cast<std::int32_t>(count); }
    ConsolePrint("<W> %lld triangles, of which %d are counted\n", static_cast<long long>(count), kMost);
    return kMost;
}

template <class Item>
bool Regrow(Arena& arena, Item*** items, DrawList* list, std::int32_t capacity) {
    Item** const larger = arena.New<Item*>(static_cast<std::size_t>(capacity));
    if (larger == nullptr) { return false; }
    std::copy_n(*items, list->count, larger);
    *items = larger;
    list->capacity = capacity;
    return true;
}

std::int32_t Twice(std::int32_t capacity) {
    return 2 * capacity < 10 ? 12 : 2 * capacity;
}

template <class Item>
bool Append(Arena& arena, Item*** items, DrawList* list, Item* item) {
    if (list->count >= list->capacity && !Regrow(arena, items, list, Twice(list->capacity))) { return false; }
    (*items)[list->count++] = item;
    return true;
}

// The matrix of an occurrence. The two minus signs cancel the reversed y of W in the placement of a P21
// occurrence, so that with a world-aligned source frame the columns are the target frame's X, Z by X, and Z.
void PlacementMatrix(const double* rotation, const double* translation, float m[16]) {
    std::fill_n(m, 16, 0.0f);
    m[0] = m[5] = m[10] = m[15] = 1.0f;
    if (translation != nullptr) {
        for (int i = 0; i < 3; ++i) { m[12 + i] = static_cast<float>(translation[i]); }
    }
    if (rotation == nullptr) { return; }
    const double* const r = rotation;
    const double columns[3][3] = {{r[0], r[1], r[2]}, {-r[3], r[4], -r[5]}, {r[6], r[7], r[8]}};
    for (int c = 0; c < 3; ++c) {
        for (int i = 0; i < 3; ++i) { m[4 * c + i] = static_cast<float>(columns[c][i]); }
    }
}

// How many items the walk places in the list of `product`, or some number above kMostItems. A product that
// has a list, other than `inWork`, counts by that; the others count by their occurrences, of which those that
// lead back to a product on the way to them place nothing.
std::int64_t CountPlacedItems(const ProductNode* product, const DrawList* inWork) {
    struct Frame {
        const ProductNode* product;
        std::int32_t next; // occurrence
        std::int64_t items;
    };
    std::unordered_map<const ProductNode*, std::int64_t> known{{product, 0}};
    std::vector<Frame> stack{{product, 0, 0}};
    for (;;) {
        Frame& frame = stack.back();
        if (frame.next == frame.product->occurrenceCount) {
            const std::int64_t items = frame.items;
            known[frame.product] = items;
            stack.pop_back();
            if (stack.empty()) { return items; }
            continue;
        }
        const ProductNode* const child = frame.product->occurrences[frame.next]->child;
        if (child != nullptr && child->drawList != nullptr && child->drawList != inWork) {
            frame.items += child->drawList->count;
        } else if (child != nullptr) {
            const auto [found, isNew] = known.emplace(child, 0);
            if (isNew) {
                stack.push_back({child, 0, 0});
                continue;
            }
            frame.items += found->second;
        }
        frame.items = std::min(frame.items, kMostItems + 1);
        ++frame.next;
    }
}

} // namespace

DrawList* MakeDrawList(Arena& arena, std::int32_t capacity) {
    DrawList* const list = arena.New<DrawList>();
    DrawItem** const items = arena.New<DrawItem*>(static_cast<std::size_t>(capacity));
    if (list == nullptr || items == nullptr) { return nullptr; }
    list->items = items;
    list->capacity = capacity;
    return list;
}

bool AppendItem(Arena& arena, DrawList* list, DrawItem* item) {
    return Append(arena, &list->items, list, item);
}

bool AppendPlacedItems(Arena& arena, DrawList* list, std::int32_t count, DrawItem* const* items,
                       const double* rotation, const double* translation) {
    const std::int64_t wanted = static_cast<std::int64_t>(list->count) + count;
    if (wanted > kMostItems) { return false; }
    if (wanted >= list->capacity) {
        const std::int32_t twice = Twice(list->capacity);
        const std::int32_t capacity = wanted >= twice ? list->capacity + count + 1 : twice;
        if (!Regrow(arena, &list->items, list, capacity)) { return false; }
    }
    float placement[16];
    PlacementMatrix(rotation, translation, placement);
    struct PlacedItem {
        DrawItem item;
        float matrix[16];
    };
    for (std::int32_t i = 0; i < count; ++i) {
        PlacedItem* const placed = static_cast<PlacedItem*>(arena.Allocate(sizeof(PlacedItem)));
        if (placed == nullptr) { return false; }
        placed->item = *items[i];
        placed->item.matrix = placed->matrix;
        if (items[i]->matrix != nullptr) {
            MultiplyMatrix(placement, items[i]->matrix, placed->matrix);
        } else {
            std::copy_n(placement, 16, placed->matrix);
        }
        list->items[list->count++] = &placed->item;
    }
    return true;
}

void MultiplyMatrix(const float a[16], const float b[16], float out[16]) {
    for (int c = 0; c < 4; ++c) {
        const float* const column = b + 4 * c;
        for (int r = 0; r < 4; ++r) {
            out[4 * c + r] =
                a[r] * column[0] + a[4 + r] * column[1] + a[8 + r] * column[2] + a[12 + r] * column[3];
        }
    }
}

void ComputeProductBox(ProductNode* product) {
    bool found = false;
    float low[3] = {};
    float high[3] = {};
    for (std::int32_t i = 0; i < product->occurrenceCount; ++i) {
        const Occurrence& occurrence = *product->occurrences[i];
        if (occurrence.child == nullptr || occurrence.child->hasBox == 0) { continue; }
        const float* const box = occurrence.child->box;
        const double* const r = occurrence.rotation;
        for (int corner = 0; corner < 8; ++corner) {
            const double x = static_cast<double>(box[corner & 1]);
            const double y = static_cast<double>(box[2 + (corner >> 1 & 1)]);
            const double z = static_cast<double>(box[4 + (corner >> 2)]);
            for (int axis = 0; axis < 3; ++axis) {
                const float turned = static_cast<float>(x * r[axis] + y * r[3 + axis] + z * r[6 + axis]);
                const float value =
                    static_cast<float>(static_cast<double>(turned) + occurrence.translation[axis]);
                if (!found || value < low[axis]) { low[axis] = value; }
                if (!found || value > high[axis]) { high[axis] = value; }
            }
            found = true;
        }
    }
    if (!found) { return; }
    for (int axis = 0; axis < 3; ++axis) {
        product->box[2 * axis] = low[axis];
        product->box[2 * axis + 1] = high[axis];
    }
    product->hasBox = 1;
}

namespace {

// A walk over a product tree, from the leaves upward, with a stack of its own: a tree may be too deep for
// that of the thread.
class TreeWalk {
public:
    TreeWalk(Arena& arena, const char* fileName, PrepareOccurrence prepare)
        : arena_(arena), fileName_(fileName), prepare_(prepare) {}

    // Gives the products their lists; false when the tree has too many items or memory runs out.
    bool Run(ProductNode* product) {
        root_ = product;
        Enter(product);
        while (!stack_.empty()) {
            Frame& frame = stack_.back();
            if (state_ != State::kGoesOn || frame.next == frame.product->occurrenceCount) {
                frame.product->drawList = frame.list;
                ComputeProductBox(frame.product);
                stack_.pop_back();
            } else {
                StepInto(&frame);
            }
        }
        return state_ == State::kGoesOn;
    }

    bool HasTooManyItems() const { return state_ == State::kTooMany; }

private:
    struct Frame {
        ProductNode* product;
        DrawList* list;
        std::int32_t next; // occurrence
    };
    enum class State { kGoesOn, kTooMany, kNoMemory };

    void Enter(ProductNode* product) {
        DrawList* list = product->drawList;
        if (list == nullptr) {
            list = MakeDrawList(arena_, kFirstCapacity);
            product->drawList = &inWork_;
        }
        stack_.push_back({product, list, 0});
        if (list == nullptr) { state_ = State::kNoMemory; }
    }

    // Enters the child of the next occurrence, or places its items where it has a list.
    void StepInto(Frame* frame) {
        Occurrence* const occurrence = frame->product->occurrences[frame->next];
        ProductNode* const child = occurrence->child;
        if (child != nullptr && child->drawList == nullptr) { return Enter(child); }
        ++frame->next;
        if (child == nullptr) { return; } // the use of a product that no file describes
        if (child->drawList == &inWork_) {
            SayCycle(*child);
        } else if (IsWithinLimit(*frame->list, *child->drawList)) {
            if (prepare_ != nullptr) { prepare_(occurrence); }
            const bool placed =
                AppendPlacedItems(arena_, frame->list, child->drawList->count, child->drawList->items,
                                  occurrence->rotation, occurrence->translation);
            if (!placed) { state_ = State::kNoMemory; }
        } else {
            state_ = State::kTooMany;
        }
    }

    void SayCycle(const ProductNode& product) {
        if (!cycleSaid_) {
            ConsolePrint("<E> %s: product '%s' is part of itself; that use of it is left out\n",
                         OneLine(fileName_).Text(), OneLine(product.name).Text());
        }
        cycleSaid_ = true;
    }

    // Whether a list may get the items of another. The tree is counted once, when a list gets long.
    bool IsWithinLimit(const DrawList& list, const DrawList& more) {
        if (counted_ || list.count + std::int64_t{more.count} <= kManyItems) { return true; }
        counted_ = true;
        return CountPlacedItems(root_, &inWork_) <= kMostItems;
    }

    Arena& arena_;
    const char* fileName_;
    PrepareOccurrence prepare_;
    ProductNode* root_ = nullptr;
    // What a product has while its list is being made, so that a way back to it is noticed.
    DrawList inWork_{};
    std::vector<Frame> stack_;
    State state_ = State::kGoesOn;
    bool cycleSaid_ = false;
    bool counted_ = false;
};

} // namespace

int BuildDrawLists(Arena& arena, ProductNode* product, const char* fileName, PrepareOccurrence prepare) {
    if (product == nullptr) { return 1; }
    TreeWalk walk(arena, fileName, prepare);
    if (walk.Run(product)) { return 0; }
    if (walk.HasTooManyItems()) {
        ConsolePrint("<E> %s: not all of its parts are placed, they are more than %lld\n",
                     OneLine(fileName).Text(), static_cast<long long>(kMostItems));
    } else {
        ConsolePrint("<E> %s: no memory to place all of its parts\n", OneLine(fileName).Text());
    }
    return 1;
}

std::int32_t CountTriangles(const DrawList& list) {
    constexpr std::int32_t kFewMeshes = 16; // faster counted than looked up
    const auto trianglesOf = [](const DrawItem& item) {
        std::int64_t sum = 0;
        for (std::int32_t m = 0; m < item.meshCount; ++m) { sum += item.meshes[m]->triangleCount; }
        return sum;
    };
    std::unordered_map<StepFaceB* const*, std::int64_t> known; // placed copies of a part share its array
    std::int64_t triangles = 0;
    for (std::int32_t i = 0; i < list.count; ++i) {
        const DrawItem& item = *list.items[i];
        if (item.meshCount <= kFewMeshes) {
            triangles += trianglesOf(item);
            continue;
        }
        const auto [place, isNew] = known.try_emplace(item.meshes);
        if (isNew) { place->second = trianglesOf(item); }
        triangles += place->second;
    }
    return Limited(triangles);
}

std::int32_t CountBoxTriangles(const DrawList& boxes) {
    return Limited(std::int64_t{kBoxTriangles} * boxes.count);
}

namespace {

constexpr int kBoxVertices = 24;

// The corners of the six faces, four each: for x, y, z whether it is the maximum.
constexpr std::uint8_t kBoxCorners[kBoxVertices][3] = {
    {1, 1, 0}, {1, 1, 1}, {1, 0, 1}, {1, 0, 0}, {0, 1, 0}, {0, 1, 1}, {1, 1, 1}, {1, 1, 0},
    {0, 1, 1}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 0, 0}, {0, 0, 1}, {0, 1, 1}, {0, 1, 0},
    {1, 0, 0}, {1, 0, 1}, {0, 0, 1}, {0, 0, 0}, {0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0},
};
constexpr float kBoxNormals[6][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0}, {0, -1, 0}, {0, 0, -1}};

struct BoxMemory {
    BoxItem item;
    float vertices[3 * kBoxVertices];
    float normals[3 * kBoxVertices];
    std::uint32_t indices[3 * kBoxTriangles];
    float matrix[16];
};

} // namespace

bool AddBoxItem(Arena& arena, DrawList* list, const double box[6], ProductNode* product,
                const float* matrix) {
    auto* const memory = static_cast<BoxMemory*>(arena.Allocate(sizeof(BoxMemory)));
    if (memory == nullptr) { return false; }
    float limits[6];
    for (int i = 0; i < 6; ++i) { limits[i] = static_cast<float>(box[i]); }
    for (int v = 0; v < kBoxVertices; ++v) {
        for (int axis = 0; axis < 3; ++axis) {
            memory->vertices[3 * v + axis] = limits[2 * axis + kBoxCorners[v][axis]];
            memory->normals[3 * v + axis] = kBoxNormals[v / 4][axis];
        }
    }
    for (std::uint32_t face = 0; face < 6; ++face) {
        const std::uint32_t first = 4 * face;
        const std::uint32_t corners[6] = {first, first + 1, first + 2, first + 2, first + 3, first};
        std::copy_n(corners, 6, memory->indices + 6 * face);
    }
    if (matrix != nullptr) { std::copy_n(matrix, 16, memory->matrix); }
    memory->item = {memory->vertices, memory->normals, memory->indices,
                    kBoxVertices,     kBoxTriangles,   matrix != nullptr ? memory->matrix : nullptr,
                    product};
    return Append(arena, &list->boxes, list, &memory->item);
}

void FreeBoxList(Arena& arena, DrawList* list) {
    if (list->boxes == nullptr) { return; }
    arena.Reset();
    list->boxes = nullptr;
    list->count = 0;
    list->capacity = 0;
}

} // namespace tarnwick
