#include "tools/make/part_writer.h"

#include "tools/make/exact.h"
#include "tools/make/output.h"
#include "tools/make/palette.h"
#include "tools/make/prng.h"
#include "write/p21_faces.h"
#include "write/p21_product.h"

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace tarnwick::make {

namespace {

// The points of a solid, each once, and where those of each face are among them (from 1, as files count).
struct SharedPoints {
    std::vector<Vec3> points;
    std::vector<std::vector<int>> ofFace;
};

SharedPoints SharePoints(const Solid& solid) {
    std::map<std::tuple<double, double, double>, int> numbers;
    SharedPoints shared;
    for (const Face& face : solid.faces) {
        std::vector<int>& indices = shared.ofFace.emplace_back();
        for (const Vec3& p : face.points) {
            const auto next = static_cast<int>(shared.points.size()) + 1;
            const auto [place, isNew] = numbers.try_emplace({p.x, p.y, p.z}, next);
            if (isNew) { shared.points.push_back(p); }
            indices.push_back(place->second);
        }
    }
    return shared;
}

struct Material {
    std::string_view use; // id of the link to what is made of it
    std::string_view id;
    std::string_view name;
};
constexpr std::array<Material, 3> kMaterials{{
    {"M1", "RM-C45", "Steel C45 quenched and tempered"},
    {"M2", "RM-6082", "Aluminium 6082-T6"},
    {"M3", "RM-CW614N", "Brass CW614N"},
}};

class PartWriter {
public:
    PartWriter(const PartPlan& plan, const PartStyle& style, P21Writer* out)
        : plan_(plan), style_(style), out_(out), prng_(style.seed) {}

    PartCounts Write() {
        out_->Header({"tessellated sample part", plan_.id, kAp242.schema, kProgram});
        contexts_ = WriteContexts(out_);
        product_ = WriteProduct(out_, contexts_, plan_.id, plan_.name, "part");
        WriteStyles();
        for (std::size_t i = 0; i < plan_.items.size(); ++i) { WriteSolid(i); }
        WriteRepresentations(out_, contexts_, product_.shape, items_);
        if (style_.material) { WriteMaterials(); }
        out_->Footer();
        counts_.solids = plan_.items.size();
        return counts_;
    }

private:
    std::size_t Colours() const { return static_cast<std::size_t>(style_.colours); }

    // Every other style is see-through, or the only one.
    void WriteStyles() {
        for (int i = 0; i < style_.colours; ++i) {
            std::optional<double> transparency;
            if (style_.transparent && (i % 2 == 1 || style_.colours == 1)) {
                transparency = 0.35 + 0.1 * (i / 2 % 4);
            }
            styles_.push_back(WriteStyle(out_, PaletteColour(style_.firstColour + i), transparency));
        }
    }

    void WriteSolid(std::size_t number) {
        const Placement& placement = plan_.items[number].placement;
        Solid solid = MakeNextSolid(number);
        ExactLinks exact;
        if (style_.kind != FaceKind::kSets) { exact = WriteExact(out_, solid, placement); }
        PlaceMesh(placement, &solid);
        const std::vector<EntityId> faces = WriteFaces(solid, exact);
        counts_.faces += faces.size();
        if (style_.kind == FaceKind::kSets) {
            items_.tessellated.insert(items_.tessellated.end(), faces.begin(), faces.end());
            StyleSets(number, faces);
            return;
        }
        const EntityId tessellated = out_->Add("TESSELLATED_SOLID", "", faces, exact.solid);
        items_.tessellated.push_back(tessellated);
        StyleSolid(number, tessellated, faces);
        const bool isExact = exact.solid != EntityId{};
        if (isExact) { items_.exact.push_back(exact.solid); }
        solids_.push_back(isExact ? exact.solid : tessellated);
    }

    // Each solid makes good what the ones before it have spent too much or too little.
    Solid MakeNextSolid(std::size_t number) {
        const PartPlan::Item& item = plan_.items[number];
        const std::size_t solids = plan_.items.size();
        const std::size_t due = plan_.triangles * (number + 1) / solids;
        const std::size_t share = due > counts_.triangles ? due - counts_.triangles : 0;
        Solid solid = MakeSolid(item.dims, item.triangles != 0 ? item.triangles : share);
        counts_.triangles += TriangleCount(solid);
        if (plan_.faces != 0) {
            SetFaceCount(&solid, plan_.faces * (number + 1) / solids - plan_.faces * number / solids);
        }
        return solid;
    }

    std::vector<EntityId> WriteFaces(const Solid& solid, const ExactLinks& exact) {
        SharedPoints shared;
        EntityId list;
        if (style_.sharedCoordinates) {
            shared = SharePoints(solid);
            list = WriteCoordinates(out_, shared.points);
        }
        std::vector<EntityId> faces;
        for (std::size_t f = 0; f < solid.faces.size(); ++f) {
            const Face& face = solid.faces[f];
            const bool isLinked = face.origin >= 0 && !exact.faces.empty();
            const EntityId link = isLinked ? exact.faces[static_cast<std::size_t>(face.origin)] : EntityId{};
            faces.push_back(
                style_.sharedCoordinates
                    ? WriteOneFace(face, {list, face.points.size(), NormalsOf(face), link, shared.ofFace[f]})
                    : WriteFaceWithPoints(face, link));
        }
        return faces;
    }

    // The face's own list of points, in the face's order or, where an index picks them, in a shuffled one.
    EntityId WriteFaceWithPoints(const Face& face, EntityId link) {
        const std::size_t count = face.points.size();
        if (!style_.pnindex) {
            return WriteOneFace(face,
                                {WriteCoordinates(out_, face.points), count, NormalsOf(face), link, {}});
        }
        std::vector<int> index(count);
        std::iota(index.begin(), index.end(), 1);
        for (std::size_t i = count; i-- > 1;) {
            std::swap(index[i], index[static_cast<std::size_t>(prng_.Below(static_cast<int>(i) + 1))]);
        }
        std::vector<Vec3> points(count);
        for (std::size_t i = 0; i < count; ++i) {
            points[static_cast<std::size_t>(index[i] - 1)] = face.points[i];
        }
        return WriteOneFace(face, {WriteCoordinates(out_, points), count, NormalsOf(face), link, index});
    }

    EntityId WriteOneFace(const Face& face, const FaceEntity& entity) {
        switch (style_.kind) {
        case FaceKind::kStrips:
            return WriteComplexFace(out_, entity, AsStrips(face), {});
        case FaceKind::kFans:
            return WriteComplexFace(out_, entity, {}, AsFans(face));
        case FaceKind::kSets:
            return WriteSurfaceSet(out_, entity, face.strips, face.fans);
        case FaceKind::kFaces:
            break;
        }
        triangles_.clear();
        AppendTriangles(face, &triangles_);
        return WriteFace(out_, entity, triangles_);
    }

    // One normal stands for all points of a face, which is right for flat faces only.
    std::span<const Vec3> NormalsOf(const Face& face) const {
        const std::span<const Vec3> all(face.normals);
        if (style_.normals == NormalKind::kNone) { return {}; }
        const bool flat = face.surface.kind == Surface::Kind::kPlane;
        return style_.normals == NormalKind::kOne && flat ? all.first(1) : all;
    }

    // With no more colours than solids, solids take turns; with more, each solid has a range of its own,
    // which its faces run through.
    std::size_t FirstColour(std::size_t solid) const {
        const int own = plan_.items[solid].colour;
        if (own >= 0) { return static_cast<std::size_t>(own); }
        const std::size_t solids = plan_.items.size();
        return Colours() <= solids ? solid % Colours() : solid * Colours() / solids;
    }
    std::size_t FaceColour(std::size_t solid, std::size_t face, std::size_t faces) const {
        const std::size_t solids = plan_.items.size();
        const std::size_t first = FirstColour(solid);
        if (Colours() <= solids || plan_.items[solid].colour >= 0) { return first; }
        const std::size_t range = (solid + 1) * Colours() / solids - first;
        return first + face * range / faces;
    }
    void StyleSolid(std::size_t number, EntityId solid, const std::vector<EntityId>& faces) {
        const std::size_t own = FirstColour(number);
        const EntityId styled = WriteStyledItem(out_, styles_[own], solid);
        items_.styled.push_back(styled);
        for (std::size_t f = 0; f < faces.size(); ++f) {
            const std::size_t colour = FaceColour(number, f, faces.size());
            if (colour == own) { continue; }
            items_.styled.push_back(WriteOverridingStyle(out_, styles_[colour], faces[f], styled));
        }
    }
    void StyleSets(std::size_t number, const std::vector<EntityId>& faces) {
        for (std::size_t f = 0; f < faces.size(); ++f) {
            const EntityId style = styles_[FaceColour(number, f, faces.size())];
            items_.styled.push_back(WriteStyledItem(out_, style, faces[f]));
        }
    }

    // Solids are made of the materials in turn. Each make-from link has a shape of its own that lists its
    // solids, by the exact one where there is one.
    void WriteMaterials() {
        const EntityId kilogram = out_->AddComplex("MASS_UNIT()NAMED_UNIT(*)SI_UNIT(.KILO.,.GRAM.)");
        for (std::size_t m = 0; m < std::min(kMaterials.size(), solids_.size()); ++m) {
            const Material& material = kMaterials[m];
            const ProductIds raw = WriteProduct(out_, contexts_, material.id, material.name, "raw material");
            const EntityId quantity =
                out_->Add("MASS_MEASURE_WITH_UNIT", P21Literal{"MASS_MEASURE(1.)"}, kilogram);
            const EntityId use = out_->Add("MAKE_FROM_USAGE_OPTION", material.use, "made from", "",
                                           product_.definition, raw.definition, 1, "", quantity);
            const EntityId shape = out_->Add("PRODUCT_DEFINITION_SHAPE", "", "", use);
            std::vector<EntityId> madeOfIt;
            for (std::size_t s = m; s < solids_.size(); s += kMaterials.size()) {
                madeOfIt.push_back(solids_[s]);
            }
            WriteShape(out_, contexts_, shape, madeOfIt);
        }
    }

    const PartPlan& plan_;
    const PartStyle& style_;
    P21Writer* const out_;
    Prng prng_;
    ContextIds contexts_;
    ProductIds product_;
    std::vector<EntityId> styles_;
    PartItems items_;
    std::vector<EntityId> solids_; // the exact ones where there are any
    std::vector<Triangle> triangles_;
    PartCounts counts_;
};

} // namespace

PartCounts WritePart(const PartPlan& plan, const PartStyle& style, P21Writer* out) {
    return PartWriter(plan, style, out).Write();
}

} // namespace tarnwick::make
