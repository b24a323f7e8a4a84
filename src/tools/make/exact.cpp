#include "tools/make/exact.h"

#include "write/p21_product.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarnwick::make {

namespace {

Vec3 Perpendicular(Vec3 axis) {
    const Vec3 other = std::abs(axis.x) > 0.7 ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
    return Unit(other - axis * Dot(other, axis));
}

EntityId WriteSurface(P21Writer* out, const Surface& surface, const Placement& at) {
    if (surface.kind == Surface::Kind::kFree) { return {}; }
    const Placement own{surface.origin, surface.axis, Perpendicular(surface.axis)};
    const EntityId placement = WritePlacement(out, Place(at, own));
    switch (surface.kind) {
    case Surface::Kind::kPlane:
        return out->Add("PLANE", "", placement);
    case Surface::Kind::kCylinder:
        return out->Add("CYLINDRICAL_SURFACE", "", placement, surface.radius);
    default:
        return out->Add("CONICAL_SURFACE", "", placement, surface.radius, surface.halfAngle);
    }
}

// The circle of one corner of the outline as an edge that ends where it starts; none for a corner on the
// axis.
EntityId WriteCircleEdge(P21Writer* out, ProfilePoint p, const Placement& at) {
    if (p.r == 0) { return {}; }
    const EntityId start = out->Add("CARTESIAN_POINT", "", Place(at, Vec3{p.r, 0, p.z}));
    const EntityId vertex = out->Add("VERTEX_POINT", "", start);
    const EntityId placement = WritePlacement(out, Place(at, Placement{{0, 0, p.z}, {0, 0, 1}, {1, 0, 0}}));
    const EntityId circle = out->Add("CIRCLE", "", placement, p.r);
    return out->Add("EDGE_CURVE", "", vertex, vertex, circle, P21Literal{".T."});
}

EntityId WriteBound(P21Writer* out, std::string_view keyword, EntityId edge, bool forward) {
    const P21Literal sense{forward ? ".T." : ".F."};
    const EntityId oriented = out->Add("ORIENTED_EDGE", "", P21Literal{"*"}, P21Literal{"*"}, edge, sense);
    const EntityId loop = out->Add("EDGE_LOOP", "", std::vector{oriented});
    return out->Add(keyword, "", loop, P21Literal{".T."});
}

ExactLinks WriteTurned(P21Writer* out, const Solid& solid, const Placement& at) {
    const std::vector<ProfilePoint>& profile = solid.profile;
    const std::size_t corners = profile.size();
    const std::size_t segments = profile.front().r == 0 ? corners - 1 : corners;
    std::vector<EntityId> edges;
    for (const ProfilePoint p : profile) { edges.push_back(WriteCircleEdge(out, p, at)); }
    ExactLinks links;
    for (std::size_t i = 0; i < segments; ++i) {
        const std::size_t next = (i + 1) % corners;
        std::vector<EntityId> bounds;
        // Seen from outside, the circle at the start of a segment has the face on its left, that at the end
        // on its right.
        if (edges[i].number != 0) { bounds.push_back(WriteBound(out, "FACE_OUTER_BOUND", edges[i], true)); }
        if (edges[next].number != 0) {
            bounds.push_back(
                WriteBound(out, bounds.empty() ? "FACE_OUTER_BOUND" : "FACE_BOUND", edges[next], false));
        }
        const Surface surface = SurfaceOfSegment(profile[i], profile[next]);
        const EntityId written = WriteSurface(out, surface, at);
        // Cylinders and cones face away from their axis, which is inward for a bore; planes are written
        // facing outward.
        const bool bore = surface.kind != Surface::Kind::kPlane && profile[next].z < profile[i].z;
        links.faces.push_back(
            out->Add("ADVANCED_FACE", "", bounds, written, P21Literal{bore ? ".F." : ".T."}));
    }
    const EntityId shell = out->Add("CLOSED_SHELL", "", links.faces);
    links.solid = out->Add("MANIFOLD_SOLID_BREP", "", shell);
    return links;
}

ExactLinks WriteSurfaces(P21Writer* out, const Solid& solid, const Placement& at) {
    ExactLinks links;
    links.faces.resize(static_cast<std::size_t>(solid.shapeFaces));
    std::vector<std::pair<Surface, EntityId>> written; // few: the teeth of a gear share two cylinders
    for (const Face& face : solid.faces) {
        if (face.origin < 0) { continue; }
        auto same = std::find_if(written.begin(), written.end(),
                                 [&](const auto& w) { return w.first == face.surface; });
        if (same == written.end()) {
            same = written.insert(same, {face.surface, WriteSurface(out, face.surface, at)});
        }
        links.faces[static_cast<std::size_t>(face.origin)] = same->second;
    }
    return links;
}

} // namespace

ExactLinks WriteExact(P21Writer* out, const Solid& solid, const Placement& at) {
    return solid.profile.empty() ? WriteSurfaces(out, solid, at) : WriteTurned(out, solid, at);
}

} // namespace tarnwick::make
