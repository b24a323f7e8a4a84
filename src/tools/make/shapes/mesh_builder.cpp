#include "tools/make/shapes/mesh_builder.h"

#include <algorithm>
#include <numbers>

namespace tarnwick::make {

namespace {

// The outline has the material on its left, so that outside is to the right of its direction.
Vec3 OutwardInProfile(ProfilePoint from, ProfilePoint to) {
    return Unit({to.z - from.z, 0, from.r - to.r});
}

} // namespace

Turns EvenTurns(int count) {
    Turns turns;
    for (int i = 0; i < count; ++i) { turns.Add(2 * std::numbers::pi * i / count); }
    return turns;
}

void MeshBuilder::StartFace(const Surface& surface) {
    if (counting_) { return; }
    Face& face = faces_.emplace_back();
    face.surface = surface;
    face.origin = static_cast<int>(faces_.size()) - 1;
}

void MeshBuilder::AddRowStrips(Index first, int rows, int columns, bool closed) {
    IndexLists& strips = faces_.back().strips;
    const auto width = static_cast<Index>(columns + (closed ? 0 : 1));
    for (Index row = 0; row < static_cast<Index>(rows); ++row) {
        const Index lower = first + row * width;
        const Index upper = lower + width;
        for (Index column = 0; column <= static_cast<Index>(columns); ++column) {
            const Index wrapped = column == width ? 0 : column;
            strips.indices.push_back(upper + wrapped);
            strips.indices.push_back(lower + wrapped);
        }
        strips.CloseList();
    }
}

void MeshBuilder::RevolveSegment(ProfilePoint from, ProfilePoint to, const Turns& turns, int rows) {
    const Vec3 outward = OutwardInProfile(from, to);
    const auto pointAt = [&](int row, int column) {
        return turns.Point(column, Mix(from.r, to.r, row, rows), Mix(from.z, to.z, row, rows));
    };
    const auto normalAt = [&](int, int column) { return turns.Point(column, outward.x, outward.z); };
    // The row that would end in the axis is a disc.
    const int first = from.r == 0 ? 1 : 0;
    const int last = to.r == 0 ? rows - 1 : rows;
    const int count = turns.Count();
    if (last > first) {
        const auto fromFirst = [&](int row, int column) { return pointAt(first + row, column); };
        Grid(last - first, count, true, fromFirst, normalAt);
    }
    if (to.r == 0) {
        Disc({0, 0, to.z}, count, outward, [&](int i) { return pointAt(last, i); });
    }
    if (from.r == 0) {
        Disc({0, 0, from.z}, count, outward, [&](int i) { return pointAt(first, (count - i) % count); });
    }
}

void MeshBuilder::Revolve(const std::vector<ProfilePoint>& profile, bool closed, const Turns& turns,
                          double edge, int spareRows) {
    const int segments = static_cast<int>(profile.size()) - (closed ? 0 : 1);
    const auto pointOf = [&](int i) { return profile[static_cast<std::size_t>(i) % profile.size()]; };
    for (int i = 0; i < segments; ++i) {
        const ProfilePoint from = pointOf(i);
        const ProfilePoint to = pointOf(i + 1);
        const bool nextIsJoined = i + 1 < segments && to.joined;
        if (!from.joined) { StartFace(nextIsJoined ? Surface{} : SurfaceOfSegment(from, to)); }
        const int spare = spareRows * (i + 1) / segments - spareRows * i / segments;
        const double length = std::hypot(to.r - from.r, to.z - from.z);
        RevolveSegment(from, to, turns, RowsFor(length, edge) + spare);
    }
}

} // namespace tarnwick::make
