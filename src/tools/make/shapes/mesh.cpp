#include "tools/make/shapes/mesh.h"

#include <algorithm>
#include <cmath>

namespace tarnwick::make {

namespace {

std::size_t TrianglesOfLists(const IndexLists& lists) {
    // A list of n vertices gives n - 2 triangles, and no list here is shorter than 3.
    return lists.indices.size() - 2 * lists.Count();
}

// Two triangles of a strip are cut off together: a strip that starts at an odd triangle would be inside out.
std::size_t StripPieces(std::span<const Index> strip) {
    return (strip.size() - 1) / 2;
}
std::size_t FanPieces(std::span<const Index> fan) {
    return fan.size() - 2;
}

std::size_t Pieces(const Face& face) {
    std::size_t pieces = 0;
    for (std::size_t k = 0; k < face.strips.Count(); ++k) { pieces += StripPieces(face.strips.List(k)); }
    for (std::size_t k = 0; k < face.fans.Count(); ++k) { pieces += FanPieces(face.fans.List(k)); }
    return pieces;
}

// Copies vertices of one face to another, each once.
class VertexCopier {
public:
    VertexCopier(const Face& from, std::vector<Index>* numbers) : from_(from), numbers_(*numbers) {
        numbers_.assign(from.points.size(), kNone);
    }
    Index operator()(Index v, Face* to) {
        if (numbers_[v] == kNone) {
            numbers_[v] = static_cast<Index>(to->points.size());
            touched_.push_back(v);
            to->points.push_back(from_.points[v]);
            to->normals.push_back(from_.normals[v]);
        }
        return numbers_[v];
    }
    void StartNextFace() {
        for (const Index v : touched_) { numbers_[v] = kNone; }
        touched_.clear();
    }

private:
    static constexpr Index kNone = 0xFFFFFFFF;
    const Face& from_;
    std::vector<Index>& numbers_;
    std::vector<Index> touched_;
};

// Cuts a face into `count` faces of nearly equal numbers of pieces; count is at most Pieces(face).
class FaceCutter {
public:
    FaceCutter(const Face& face, std::size_t count, std::vector<Face>* out)
        : face_(face), count_(count), total_(Pieces(face)), copy_(face, &numbers_), out_(*out) {}

    void Cut() {
        StartFace();
        for (std::size_t k = 0; k < face_.strips.Count(); ++k) { CutStrip(face_.strips.List(k)); }
        for (std::size_t k = 0; k < face_.fans.Count(); ++k) { CutFan(face_.fans.List(k)); }
    }

private:
    void StartFace() {
        Face& next = out_.emplace_back();
        next.surface = face_.surface;
        next.origin = face_.origin;
        limit_ = total_ * (started_ + 1) / count_;
        ++started_;
        copy_.StartNextFace();
    }
    // How many of the next `wanted` pieces still fit the face in hand; starts a new face when it is full.
    std::size_t Room(std::size_t wanted) {
        if (done_ == limit_) { StartFace(); }
        const std::size_t taken = std::min(wanted, limit_ - done_);
        done_ += taken;
        return taken;
    }
    void CutStrip(std::span<const Index> strip) {
        for (std::size_t piece = 0, all = StripPieces(strip); piece < all;) {
            const std::size_t taken = Room(all - piece);
            const std::size_t end = std::min(strip.size(), 2 * (piece + taken) + 2);
            Face& face = out_.back();
            for (std::size_t i = 2 * piece; i < end; ++i) {
                face.strips.indices.push_back(copy_(strip[i], &face));
            }
            face.strips.CloseList();
            piece += taken;
        }
    }
    void CutFan(std::span<const Index> fan) {
        for (std::size_t piece = 0, all = FanPieces(fan); piece < all;) {
            const std::size_t taken = Room(all - piece);
            Face& face = out_.back();
            face.fans.indices.push_back(copy_(fan[0], &face));
            for (std::size_t i = piece + 1; i <= piece + taken + 1; ++i) {
                face.fans.indices.push_back(copy_(fan[i], &face));
            }
            face.fans.CloseList();
            piece += taken;
        }
    }

    const Face& face_;
    std::size_t count_;
    std::size_t total_;
    std::size_t started_ = 0;
    std::size_t limit_ = 0;
    std::size_t done_ = 0;
    std::vector<Index> numbers_;
    VertexCopier copy_;
    std::vector<Face>& out_;
};

void AppendLists(const IndexLists& from, Index firstVertex, IndexLists* to) {
    const std::size_t start = to->indices.size();
    for (const Index v : from.indices) { to->indices.push_back(v + firstVertex); }
    for (const std::size_t end : from.ends) { to->ends.push_back(start + end); }
}

void AppendFace(const Face& from, Face* to) {
    const auto first = static_cast<Index>(to->points.size());
    to->points.insert(to->points.end(), from.points.begin(), from.points.end());
    to->normals.insert(to->normals.end(), from.normals.begin(), from.normals.end());
    AppendLists(from.strips, first, &to->strips);
    AppendLists(from.fans, first, &to->fans);
}

std::vector<Face> JoinFaces(std::vector<Face> faces, std::size_t count) {
    std::vector<Face> joined(count);
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t first = k * faces.size() / count;
        const std::size_t end = (k + 1) * faces.size() / count;
        joined[k] = std::move(faces[first]);
        if (end - first == 1) { continue; }
        joined[k].surface = {};
        joined[k].origin = -1;
        for (std::size_t i = first + 1; i < end; ++i) { AppendFace(faces[i], &joined[k]); }
    }
    return joined;
}

// Each face keeps one, and the rest go where the pieces are.
std::vector<Face> CutFaces(const std::vector<Face>& faces, std::size_t count) {
    std::size_t spare = 0;
    for (const Face& face : faces) { spare += Pieces(face) - 1; }
    const std::size_t extra = std::min(count - faces.size(), spare);
    std::size_t seen = 0;
    std::size_t given = 0;
    std::vector<Face> cut;
    cut.reserve(faces.size() + extra);
    for (const Face& face : faces) {
        seen += Pieces(face) - 1;
        const std::size_t due = spare == 0 ? 0 : extra * seen / spare;
        FaceCutter(face, 1 + due - given, &cut).Cut();
        given = due;
    }
    return cut;
}

} // namespace

Surface SurfaceOfSegment(ProfilePoint from, ProfilePoint to) {
    if (from.z == to.z) {
        return {Surface::Kind::kPlane, {0, 0, from.z}, {0, 0, from.r > to.r ? 1.0 : -1.0}, 0, 0};
    }
    if (from.r == to.r) { return {Surface::Kind::kCylinder, {0, 0, from.z}, {0, 0, 1}, from.r, 0}; }
    const ProfilePoint narrow = from.r < to.r ? from : to;
    const ProfilePoint wide = from.r < to.r ? to : from;
    return {Surface::Kind::kCone,
            {0, 0, narrow.z},
            {0, 0, wide.z > narrow.z ? 1.0 : -1.0},
            narrow.r,
            std::atan2(wide.r - narrow.r, std::abs(wide.z - narrow.z))};
}

std::size_t TriangleCount(const Face& face) {
    return TrianglesOfLists(face.strips) + TrianglesOfLists(face.fans);
}

std::size_t TriangleCount(const Solid& solid) {
    std::size_t count = 0;
    for (const Face& face : solid.faces) { count += TriangleCount(face); }
    return count;
}

void AppendTriangles(const Face& face, std::vector<Triangle>* triangles) {
    for (std::size_t k = 0; k < face.strips.Count(); ++k) {
        const std::span<const Index> s = face.strips.List(k);
        for (std::size_t i = 0; i + 2 < s.size(); ++i) {
            triangles->push_back(i % 2 == 0 ? Triangle{s[i], s[i + 1], s[i + 2]}
                                            : Triangle{s[i + 2], s[i + 1], s[i]});
        }
    }
    for (std::size_t k = 0; k < face.fans.Count(); ++k) {
        const std::span<const Index> f = face.fans.List(k);
        for (std::size_t i = 1; i + 1 < f.size(); ++i) { triangles->push_back({f[0], f[i], f[i + 1]}); }
    }
}

IndexLists AsStrips(const Face& face) {
    IndexLists strips = face.strips;
    for (std::size_t k = 0; k < face.fans.Count(); ++k) {
        const std::span<const Index> f = face.fans.List(k);
        // Two neighbours (f0 a b), (f0 b c) are the strip a b f0 c; one left over is a strip of three.
        for (std::size_t i = 1; i + 1 < f.size(); i += 2) {
            for (const Index v : {f[i], f[i + 1], f[0]}) { strips.indices.push_back(v); }
            if (i + 2 < f.size()) { strips.indices.push_back(f[i + 2]); }
            strips.CloseList();
        }
    }
    return strips;
}

// Three triangles in a row of a strip have the vertex i + 2 in common, where i is the first one's number.
IndexLists AsFans(const Face& face) {
    IndexLists fans;
    for (std::size_t k = 0; k < face.strips.Count(); ++k) {
        const std::span<const Index> s = face.strips.List(k);
        for (std::size_t i = 0; i + 2 < s.size(); i += 3) {
            std::array<std::size_t, 4> ring{i, i + 1, i + 3, i + 4};
            if (i % 2 == 1) { std::reverse(ring.begin(), ring.end()); }
            fans.indices.push_back(s[i + 2]);
            for (const std::size_t v : ring) {
                if (v < s.size()) { fans.indices.push_back(s[v]); }
            }
            fans.CloseList();
        }
    }
    AppendLists(face.fans, 0, &fans);
    return fans;
}

void SetFaceCount(Solid* solid, std::size_t count) {
    if (count < solid->faces.size()) {
        solid->faces = JoinFaces(std::move(solid->faces), count);
    } else if (count > solid->faces.size()) {
        solid->faces = CutFaces(solid->faces, count);
    }
}

void PlaceMesh(const Placement& at, Solid* solid) {
    for (Face& face : solid->faces) {
        for (Vec3& p : face.points) { p = Place(at, p); }
        for (Vec3& n : face.normals) { n = Turn(at, n); }
    }
}

} // namespace tarnwick::make
