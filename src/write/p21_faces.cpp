#include "write/p21_faces.h"

namespace tarnwick {

namespace {

// Files count from 1.
void PutIndices(P21Writer& out, std::span<const Index> indices) {
    out.PutList(indices, [&out](Index index) { out.Put(std::size_t{index} + 1); });
}

auto Lists(const IndexLists& lists) {
    return [&lists](P21Writer& out) {
        std::vector<std::span<const Index>> views;
        for (std::size_t k = 0; k < lists.Count(); ++k) { views.push_back(lists.List(k)); }
        out.PutList(views, [&out](std::span<const Index> list) { PutIndices(out, list); });
    };
}

} // namespace

EntityId WriteCoordinates(P21Writer* out, std::span<const Vec3> points) {
    return out->Add("COORDINATES_LIST", "", points.size(), points);
}

EntityId WriteFace(P21Writer* out, const FaceEntity& face, std::span<const Triangle> triangles) {
    const auto putTriangles = [triangles](P21Writer& to) {
        to.PutList(triangles, [&to](const Triangle& triangle) { PutIndices(to, triangle); });
    };
    return out->Add("TRIANGULATED_FACE", "", face.coordinates, face.points, face.normals, face.link,
                    face.pnindex, putTriangles);
}

EntityId WriteComplexFace(P21Writer* out, const FaceEntity& face, const IndexLists& strips,
                          const IndexLists& fans) {
    return out->Add("COMPLEX_TRIANGULATED_FACE", "", face.coordinates, face.points, face.normals, face.link,
                    face.pnindex, Lists(strips), Lists(fans));
}

EntityId WriteSurfaceSet(P21Writer* out, const FaceEntity& face, const IndexLists& strips,
                         const IndexLists& fans) {
    return out->Add("COMPLEX_TRIANGULATED_SURFACE_SET", "", face.coordinates, face.points, face.normals,
                    face.pnindex, Lists(strips), Lists(fans));
}

} // namespace tarnwick
