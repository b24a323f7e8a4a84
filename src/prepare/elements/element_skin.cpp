#include "prepare/elements/element_skin.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace tarnwick::prepare {

namespace {

constexpr std::uint8_t kEnd = 255; // after the third corner of a triangle

using Face = std::array<std::uint8_t, 4>;

// Corners of each face, counter-clockwise seen from outside where those of the base are counter-clockwise
// seen from the top.
constexpr std::array<Face, 4> kTetrahedron{
    {{0, 2, 1, kEnd}, {0, 1, 3, kEnd}, {1, 2, 3, kEnd}, {2, 0, 3, kEnd}}};
constexpr std::array<Face, 5> kPyramid{
    {{0, 3, 2, 1}, {0, 1, 4, kEnd}, {1, 2, 4, kEnd}, {2, 3, 4, kEnd}, {3, 0, 4, kEnd}}};
constexpr std::array<Face, 5> kWedge{
    {{0, 2, 1, kEnd}, {3, 4, 5, kEnd}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}}};
constexpr std::array<Face, 6> kHexahedron{
    {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 0, 4, 7}}};

std::span<const Face> FacesOf(ElementShape shape) {
    switch (shape) {
    case ElementShape::kTetrahedron:
        return kTetrahedron;
    case ElementShape::kPyramid:
        return kPyramid;
    case ElementShape::kWedge:
        return kWedge;
    case ElementShape::kHexahedron:
        return kHexahedron;
    default:
        return {};
    }
}

std::size_t CountOf(const Quad& quad) {
    return quad[3] == quad[2] ? 3 : 4;
}

// Six times the signed volume of the pyramid with this base and the apex `from`.
double VolumeOver(const Quad& quad, Vec3 from, std::span<const Vec3> nodes) {
    const Vec3 a = nodes[quad[0]] - from;
    const Vec3 b = nodes[quad[1]] - from;
    const Vec3 c = nodes[quad[2]] - from;
    const Vec3 d = nodes[quad[3]] - from;
    return Dot(a, Cross(b, c)) + Dot(a, Cross(c, d));
}

// The corners of a face in ascending order.
Quad KeyOf(const Quad& quad) {
    Quad key = quad;
    const auto end = key.begin() + static_cast<std::ptrdiff_t>(CountOf(quad));
    std::sort(key.begin(), end);
    if (end != key.end()) { key[3] = std::numeric_limits<std::uint32_t>::max(); }
    return key;
}

// Whether the corners go upwards from the smallest one. Two faces with the same corners look the same way
// where both do, or neither.
bool GoesUp(const Quad& quad) {
    const std::size_t count = CountOf(quad);
    const auto smallest = static_cast<std::size_t>(
        std::min_element(quad.begin(), quad.begin() + static_cast<std::ptrdiff_t>(count)) - quad.begin());
    return quad[(smallest + 1) % count] < quad[(smallest + count - 1) % count];
}

} // namespace

std::size_t CornersOf(ElementShape shape) {
    constexpr std::array<std::size_t, 7> kCorners{0, 3, 4, 4, 5, 6, 8};
    return kCorners[static_cast<std::size_t>(shape)];
}

bool MakeQuad(std::span<const std::uint32_t> corners, Quad* quad) {
    std::size_t count = 0;
    for (const std::uint32_t corner : corners.first(std::min<std::size_t>(corners.size(), 4))) {
        if (std::find(quad->begin(), quad->begin() + static_cast<std::ptrdiff_t>(count), corner) ==
            quad->begin() + static_cast<std::ptrdiff_t>(count)) {
            (*quad)[count++] = corner;
        }
    }
    if (count == 3) { (*quad)[3] = (*quad)[2]; }
    return count >= 3;
}

void AppendFaces(ElementShape shape, std::span<const std::uint32_t> corners, std::span<const Vec3> nodes,
                 std::vector<Quad>* faces) {
    const std::size_t before = faces->size();
    for (const Face& face : FacesOf(shape)) {
        std::array<std::uint32_t, 4> numbers{};
        std::size_t count = 0;
        for (const std::uint8_t corner : face) {
            if (corner != kEnd) { numbers[count++] = corners[corner]; }
        }
        Quad quad{};
        if (MakeQuad({numbers.data(), count}, &quad)) { faces->push_back(quad); }
    }
    double volume = 0;
    for (std::size_t i = before; i < faces->size(); ++i) {
        volume += VolumeOver((*faces)[i], nodes[corners[0]], nodes);
    }
    if (volume >= 0) { return; }
    for (std::size_t i = before; i < faces->size(); ++i) {
        Quad& quad = (*faces)[i];
        if (CountOf(quad) == 3) {
            std::swap(quad[0], quad[1]);
        } else {
            std::swap(quad[1], quad[3]);
        }
    }
}

std::vector<Quad> SkinOf(const std::vector<Quad>& faces) {
    std::vector<std::uint32_t> order(faces.size());
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
        const Quad first = KeyOf(faces[a]);
        const Quad second = KeyOf(faces[b]);
        return first != second ? first < second : a < b;
    });
    std::vector<bool> isSkin(faces.size(), false);
    for (std::size_t i = 0; i < order.size();) {
        const Quad key = KeyOf(faces[order[i]]);
        const std::size_t first = i;
        bool isOneSided = true;
        for (; i < order.size() && KeyOf(faces[order[i]]) == key; ++i) {
            isOneSided = isOneSided && GoesUp(faces[order[i]]) == GoesUp(faces[order[first]]);
        }
        isSkin[order[first]] = isOneSided;
    }
    std::vector<Quad> skin;
    for (std::size_t i = 0; i < faces.size(); ++i) {
        if (isSkin[i]) { skin.push_back(faces[i]); }
    }
    return skin;
}

} // namespace tarnwick::prepare
