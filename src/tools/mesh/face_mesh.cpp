#include "tools/mesh/face_mesh.h"

#include <BRep_Tool.hxx>
#include <BRepAdaptor_Surface.hxx>
#include <gp_Pnt.hxx>
#include <gp_Trsf.hxx>
#include <gp_Vec.hxx>
#include <Poly_Triangulation.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Face.hxx>

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarnwick::tools {

namespace {

// Shorter derivatives, in millimetres for each unit of the parameter, are noise, and so are more parallel
// ones: at the tip of a cone or the pole of a sphere, for example.
constexpr double kLeastDerivative = 1e-9;
constexpr double kLeastSine = 1e-9;

Vec3 Record(const gp_XYZ& v) {
    return {v.X(), v.Y(), v.Z()};
}

// The normals of a surface, in its own direction.
class SurfaceNormals {
public:
    explicit SurfaceNormals(const TopoDS_Face& face)
        : surface_(face, Standard_False), isPlane_(surface_.GetType() == GeomAbs_Plane) {}

    // False where the surface has none.
    bool At(const gp_Pnt2d& at, Vec3* normal) {
        if (!isPlane_ || !hasLast_) {
            gp_Pnt point;
            gp_Vec alongU;
            gp_Vec alongV;
            surface_.D1(at.X(), at.Y(), point, alongU, alongV);
            const gp_Vec cross = alongU.Crossed(alongV);
            const double u = alongU.Magnitude();
            const double v = alongV.Magnitude();
            const double length = cross.Magnitude();
            hasLast_ =
                std::min(u, v) > kLeastDerivative && length > kLeastSine * u * v && std::isfinite(length);
            if (hasLast_) { last_ = Record(cross.XYZ() / length); }
        }
        *normal = last_;
        return hasLast_;
    }

private:
    const BRepAdaptor_Surface surface_;
    const bool isPlane_;
    bool hasLast_ = false;
    Vec3 last_; // of the whole surface, if that is a plane
};

// Of the triangles around each point, weighted by their areas.
std::vector<Vec3> NormalsOfTriangles(const MeshFace& mesh) {
    std::vector<Vec3> normals(mesh.points.size());
    for (const Triangle& t : mesh.triangles) {
        const Vec3 cross =
            Cross(mesh.points[t[1]] - mesh.points[t[0]], mesh.points[t[2]] - mesh.points[t[0]]);
        for (const Index i : t) { normals[i] = normals[i] + cross; }
    }
    for (Vec3& normal : normals) {
        const double length = Length(normal);
        normal = length > 0 && std::isfinite(length) ? normal * (1 / length) : Vec3{0, 0, 1};
    }
    return normals;
}

void TakeNormals(const TopoDS_Face& face, const Poly_Triangulation& from, bool isReversed, MeshFace* mesh) {
    // Empty until a point needs it.
    std::vector<Vec3> ofTriangles;
    mesh->normals.resize(mesh->points.size());
    SurfaceNormals surface(face);
    for (int i = 1; i <= from.NbNodes(); ++i) {
        Vec3& normal = mesh->normals[static_cast<std::size_t>(i - 1)];
        if (from.HasUVNodes() && surface.At(from.UVNode(i), &normal)) {
            if (isReversed) { normal = normal * -1; }
        } else {
            if (ofTriangles.empty()) { ofTriangles = NormalsOfTriangles(*mesh); }
            normal = ofTriangles[static_cast<std::size_t>(i - 1)];
        }
    }
}

} // namespace

void TakeFaceMesh(const TopoDS_Face& face, double unit, MeshFace* mesh) {
    TopLoc_Location location;
    const Handle(Poly_Triangulation)& from = BRep_Tool::Triangulation(face, location);
    if (from.IsNull() || from->NbTriangles() == 0) { return; }
    const gp_Trsf& place = location.Transformation();
    const bool isMoved = !location.IsIdentity();

    mesh->points.reserve(static_cast<std::size_t>(from->NbNodes()));
    for (int i = 1; i <= from->NbNodes(); ++i) {
        gp_XYZ point = from->Node(i).XYZ();
        if (isMoved) { place.Transforms(point); }
        mesh->points.push_back(Record(point) * (1 / unit));
        if (!IsFinite(mesh->points.back())) { return; }
    }

    // A mirrored place turns over the triangles, and also the cross product of the surface's derivatives.
    const bool isReversed = face.Orientation() == TopAbs_REVERSED;
    const bool isTurned = isReversed != (isMoved && place.IsNegative());
    mesh->triangles.reserve(static_cast<std::size_t>(from->NbTriangles()));
    for (int i = 1; i <= from->NbTriangles(); ++i) {
        int a = 0;
        int b = 0;
        int c = 0;
        from->Triangle(i).Get(a, b, c);
        if (isTurned) { std::swap(b, c); }
        mesh->triangles.push_back(
            {static_cast<Index>(a - 1), static_cast<Index>(b - 1), static_cast<Index>(c - 1)});
    }
    TakeNormals(face, *from, isTurned, mesh);
}

} // namespace tarnwick::tools
