#include "offscreen/drawn_reach.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace tarnwick {

namespace {

// A direction in the coordinates of a placed mesh. The scalar product in the model's coordinates is that with
// `along` plus `offset`.
struct LocalDirection {
    double along[3];
    double offset;
};

double Product(const LocalDirection& direction, const float point[3]) {
    return direction.along[0] * static_cast<double>(point[0]) +
           direction.along[1] * static_cast<double>(point[1]) +
           direction.along[2] * static_cast<double>(point[2]) + direction.offset;
}

class Reach {
public:
    explicit Reach(const std::vector<Direction>& directions)
        : directions_(directions), local_(directions.size()),
          farthest_(directions.size(), -std::numeric_limits<double>::infinity()) {}

    // The following polygons are placed by this world matrix; null is the identity.
    void Place(const float* matrix) {
        for (std::size_t d = 0; d < directions_.size(); ++d) {
            const Direction& direction = directions_[d];
            LocalDirection& local = local_[d];
            for (std::size_t c = 0; c < 3; ++c) { local.along[c] = matrix == nullptr ? direction[c] : 0; }
            local.offset = 0;
            if (matrix == nullptr) { continue; }
            for (std::size_t r = 0; r < 3; ++r) {
                for (std::size_t c = 0; c < 3; ++c) {
                    local.along[c] += direction[r] * static_cast<double>(matrix[4 * c + r]);
                }
                local.offset += direction[r] * static_cast<double>(matrix[12 + r]);
            }
        }
    }

    // Polygons of `corners` indices each; one with an index beyond the vertices isn't drawn. `box`, which
    // holds all vertices, saves a look at meshes that can't reach farther; it may be null.
    void Add(const float* vertices, std::int32_t vertexCount, const std::uint32_t* indices,
             std::int32_t polygonCount, std::size_t corners, const float* box) {
        if (polygonCount <= 0 || vertexCount <= 0) { return; }
        wanted_.clear();
        for (std::size_t d = 0; d < local_.size(); ++d) {
            if (box == nullptr || MayReachFarther(local_[d], box, farthest_[d])) { wanted_.push_back(d); }
        }
        if (wanted_.empty()) { return; }
        used_.assign(static_cast<std::size_t>(vertexCount), 0);
        const std::size_t count = corners * static_cast<std::size_t>(polygonCount);
        const auto limit = static_cast<std::uint32_t>(vertexCount);
        for (std::size_t i = 0; i < count; i += corners) {
            const std::uint32_t* const polygon = indices + i;
            if (std::any_of(polygon, polygon + corners, [limit](std::uint32_t k) { return k >= limit; })) {
                continue;
            }
            for (std::size_t k = 0; k < corners; ++k) { used_[polygon[k]] = 1; }
        }
        for (std::size_t v = 0; v < used_.size(); ++v) {
            if (used_[v] != 0) { AddPoint(vertices + 3 * v); }
        }
    }

    // For each direction; minus infinity when nothing was drawn.
    const std::vector<double>& Farthest() const { return farthest_; }

private:
    // False only when no point of the box reaches farther. A box that isn't in order or isn't finite says
    // nothing.
    static bool MayReachFarther(const LocalDirection& direction, const float box[6], double known) {
        double most = direction.offset;
        for (int axis = 0; axis < 3; ++axis) {
            const auto low = static_cast<double>(box[2 * axis]);
            const auto high = static_cast<double>(box[2 * axis + 1]);
            if (!(low <= high)) { return true; }
            most += std::max(direction.along[axis] * low, direction.along[axis] * high);
        }
        return !(most <= known);
    }

    void AddPoint(const float point[3]) {
        for (const std::size_t d : wanted_) {
            const double product = Product(local_[d], point);
            if (product > farthest_[d] && std::isfinite(product)) { farthest_[d] = product; }
        }
    }

    const std::vector<Direction>& directions_;
    std::vector<LocalDirection> local_;
    std::vector<double> farthest_;
    std::vector<std::size_t> wanted_;
    std::vector<unsigned char> used_; // by vertex
};

} // namespace

std::optional<std::vector<double>> DrawnReach(const SceneView& view,
                                              const std::vector<Direction>& directions) {
    const LoadedScene& loaded = view.loaded;
    Reach reach(directions);
    if (loaded.drawList != nullptr) {
        for (std::int32_t i = 0; i < loaded.drawList->count; ++i) {
            const DrawItem& item = *loaded.drawList->items[i];
            reach.Place(item.matrix);
            for (std::int32_t j = 0; j < item.meshCount; ++j) {
                if (item.meshes[j] == nullptr) { continue; }
                const StepFaceB& mesh = *item.meshes[j];
                reach.Add(mesh.vertices, mesh.vertexCount, mesh.triangles, mesh.triangleCount, 3, mesh.box);
            }
        }
    } else if (loaded.resultMesh != nullptr) {
        const ResultMesh& mesh = *loaded.resultMesh;
        reach.Place(nullptr);
        reach.Add(mesh.vertices, mesh.nodeCount, mesh.quadIndices, mesh.quadCount, 4, nullptr);
    } else if (loaded.boxList != nullptr) {
        for (std::int32_t i = 0; i < loaded.boxList->count; ++i) {
            const BoxItem& box = *loaded.boxList->boxes[i];
            reach.Place(box.matrix);
            reach.Add(box.vertices, box.vertexCount, box.indices, box.triangleCount, 3, nullptr);
        }
    }
    const std::vector<double>& farthest = reach.Farthest();
    const bool isDrawn = std::all_of(farthest.begin(), farthest.end(),
                                     [](double distance) { return std::isfinite(distance); });
    return isDrawn ? std::optional(farthest) : std::nullopt;
}

} // namespace tarnwick
