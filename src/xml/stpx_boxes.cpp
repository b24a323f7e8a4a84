#include "xml/stpx_boxes.h"

#include "platform/console.h"
#include "product/draw_list.h"
#include "text/one_line.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace tarnwick {

namespace {

constexpr std::size_t kMostLevels = 30;

struct Matrix {
    float m[16];
};

// The matrix of an occurrence, with the rotation as the document gives it.
Matrix OccurrenceMatrix(const Occurrence& occurrence) {
    Matrix matrix{};
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r) {
            matrix.m[4 * c + r] = static_cast<float>(occurrence.rotation[3 * c + r]);
        }
        matrix.m[12 + c] = static_cast<float>(occurrence.translation[c]);
    }
    matrix.m[15] = 1;
    return matrix;
}

// The product of all matrices, multiplied from the deepest level up.
Matrix WorldMatrix(const std::vector<Matrix>& matrices) {
    Matrix world = matrices.back();
    for (std::size_t i = matrices.size() - 1; i-- > 0;) {
        Matrix product;
        MultiplyMatrix(matrices[i].m, world.m, product.m);
        world = product;
    }
    return world;
}

// The axis-aligned box of a box's eight corners under a matrix, widened to f64.
void TransformBox(const float box[6], const Matrix& world, double transformed[6]) {
    for (int corner = 0; corner < 8; ++corner) {
        const float x = box[corner & 1];
        const float y = box[2 + (corner >> 1 & 1)];
        const float z = box[4 + (corner >> 2)];
        for (int axis = 0; axis < 3; ++axis) {
            const float* const m = world.m + axis;
            const double value = static_cast<double>(m[0] * x + m[4] * y + m[8] * z + m[12]);
            double& low = transformed[2 * axis];
            double& high = transformed[2 * axis + 1];
            low = corner == 0 ? value : std::min(low, value);
            high = corner == 0 ? value : std::max(high, value);
        }
    }
}

bool AddOccurrenceBox(StpxSession& session, const ProductNode& child, const std::vector<Matrix>& matrices) {
    if (child.hasBox == 0) { return true; }
    double box[6];
    TransformBox(child.box, WorldMatrix(matrices), box);
    return AddBoxItem(*session.loaded.boxMemory, session.loaded.boxList, box, nullptr, nullptr);
}

} // namespace

void BuildBoxList(StpxSession& session, const char* fileName) {
    LoadedScene& loaded = session.loaded;
    loaded.boxMemory = std::make_unique<Arena>();
    loaded.boxList = loaded.scene->Main().New<DrawList>();
    if (loaded.boxList == nullptr) { GiveUpForMemory(fileName, "", 0, &loaded.unreadFiles); }
    if (session.root == nullptr || loaded.boxList == nullptr) { return; }
    std::copy_n(session.root->box, 6, loaded.box);
    struct Level {
        const ProductNode* product;
        std::int32_t next; // occurrence
    };
    std::vector<Level> stack{{session.root, 0}};
    std::vector<Matrix> matrices;
    bool tooDeep = false;
    bool enough = true;
    while (enough) {
        Level& level = stack.back();
        if (level.next == level.product->occurrenceCount) {
            stack.pop_back();
            if (stack.empty()) { break; }
            matrices.pop_back();
            continue;
        }
        const Occurrence& occurrence = *level.product->occurrences[level.next++];
        const auto isChild = [&](const Level& above) { return above.product == occurrence.child; };
        if (occurrence.child == nullptr || std::any_of(stack.begin(), stack.end(), isChild)) { continue; }
        if (matrices.size() == kMostLevels) {
            tooDeep = true;
            continue;
        }
        matrices.push_back(OccurrenceMatrix(occurrence));
        enough = AddOccurrenceBox(session, *occurrence.child, matrices);
        stack.push_back({occurrence.child, 0});
    }
    if (tooDeep) {
        ConsolePrint("<E> %s: the tree has more than %zu levels, deeper ones are left out\n",
                     OneLine(fileName).Text(), kMostLevels);
    }
    if (!enough) { ConsolePrint("<E> %s: no memory for all of its boxes\n", OneLine(fileName).Text()); }
}

} // namespace tarnwick
