#include "tools/make/part.h"

#include "tools/make/exact.h"
#include "tools/make/machine.h"
#include "tools/make/options.h"
#include "tools/make/output.h"

#include <algorithm>
#include <map>
#include <tuple>

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
        for (const Vec3 p : face.points) {
            const auto next = static_cast<int>(shared.points.size()) + 1;
            auto [place, isNew] = numbers.try_emplace({p.x, p.y, p.z}, next);
            if (isNew) { shared.points.push_back(p); }
            indices.push_back(place->second);
        }
    }
    return shared;
}

class PartWriter {
public:
    PartWriter(const PartPlan& plan, const PartStyle& style, P21Writer* out)
        : plan_(plan), style_(style), out_(*out), prng_(style.seed) {}

    PartCounts Write() {
        out_.Header("tessellated sample part", plan_.id, kAp242Schema);
        context_ = WriteContext(&out_);
        product_ = WriteProduct(&out_, context_, plan_.id, plan_.name, "part");
        WriteStyles();
        for (std::size_t i = 0; i < plan_.items.size(); ++i) { WriteSolid(i); }
        WriteRepresentations();
        if (style_.material) { WriteMaterials(); }
        out_.Footer();
        counts_.solids = plan_.items.size();
        return counts_;
    }

private:
    std::size_t Colours() const { return static_cast<std::size_t>(style_.colours); }

    // Every other style is see-through, or the only one.
    void WriteStyles() {
        for (int i = 0; i < style_.colours; ++i) {
            const bool seeThrough = style_.transparent && (i % 2 == 1 || style_.colours == 1);
            styles_.push_back(WriteStyle(&out_, PaletteColour(style_.firstColour + i),
                                         seeThrough ? 0.35 + 0.1 * (i / 2 % 4) : 1));
        }
    }

    void WriteSolid(std::size_t number) {
        const PartPlan::Item& item = plan_.items[number];
        Solid solid = MakeNextSolid(number);
        ExactLinks exact;
        if (style_.kind != FaceKind::kSets) { exact = WriteExact(&out_, solid, item.placement); }
        PlaceMesh(item.placement, &solid);

        SharedPoints shared;
        Id list;
        if (style_.sharedCoordinates) {
            shared = SharePoints(solid);
            list = WriteCoordinates(shared.points);
        }
        std::vector<Id> faces;
        for (std::size_t f = 0; f < solid.faces.size(); ++f) {
            const Face& face = solid.faces[f];
            const Id link = face.origin < 0 || exact.faces.empty()
                                ? Id{}
                                : exact.faces[static_cast<std::size_t>(face.origin)];
            if (style_.sharedCoordinates) {
                faces.push_back(WriteFace(face, list, shared.ofFace[f], link));
            } else {
                faces.push_back(WriteFaceWithPoints(face, link));
            }
        }
        if (style_.kind == FaceKind::kSets) {
            representationItems_.insert(representationItems_.end(), faces.begin(), faces.end());
            StyleSets(number, faces);
        } else {
            const Id tessellated = out_.Add("TESSELLATED_SOLID", "", faces, exact.solid);
            representationItems_.push_back(tessellated);
            StyleSolid(number, tessellated, faces);
            if (exact.solid.number != 0) { exactSolids_.push_back(exact.solid); }
            solids_.push_back({tessellated, exact.solid});
        }
        counts_.faces += faces.size();
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

    Id WriteCoordinates(std::span<const Vec3> points) {
        const Id id = out_.Begin("COORDINATES_LIST");
        out_.Put(Literal{"'',"});
        out_.Put(static_cast<std::int64_t>(points.size()));
        out_.Put(Literal{",("});
        PutVectors(points);
        out_.End();
        return id;
    }

    // The face's own list of points, in the face's order or, where an index picks them, in a shuffled one.
    Id WriteFaceWithPoints(const Face& face, Id link) {
        if (!style_.pnindex) { return WriteFace(face, WriteCoordinates(face.points), {}, link); }
        const auto count = static_cast<int>(face.points.size());
        std::vector<int> index(face.points.size());
        for (int i = 0; i < count; ++i) { index[static_cast<std::size_t>(i)] = i + 1; }
        for (int i = count - 1; i > 0; --i) {
            std::swap(index[static_cast<std::size_t>(i)],
                      index[static_cast<std::size_t>(prng_.Below(i + 1))]);
        }
        std::vector<Vec3> points(face.points.size());
        for (std::size_t i = 0; i < index.size(); ++i) {
            points[static_cast<std::size_t>(index[i] - 1)] = face.points[i];
        }
        return WriteFace(face, WriteCoordinates(points), index, link);
    }

    Id WriteFace(const Face& face, Id coordinates, std::span<const int> pnindex, Id link) {
        static constexpr std::string_view keywords[] = {"TRIANGULATED_FACE", "COMPLEX_TRIANGULATED_FACE",
                                                        "COMPLEX_TRIANGULATED_FACE",
                                                        "COMPLEX_TRIANGULATED_SURFACE_SET"};
        const Id id = out_.Begin(keywords[static_cast<std::size_t>(style_.kind)]);
        out_.Put(Literal{"'',"});
        out_.Put(coordinates);
        out_.Put(',');
        out_.Put(static_cast<std::int64_t>(face.points.size()));
        out_.Put(Literal{",("});
        PutVectors(NormalsToWrite(face));
        out_.Put(',');
        if (style_.kind != FaceKind::kSets) {
            out_.Put(link);
            out_.Put(',');
        }
        out_.Put('(');
        for (std::size_t i = 0; i < pnindex.size(); ++i) {
            if (i != 0) { out_.Put(','); }
            out_.Put(pnindex[i]);
        }
        out_.Put(Literal{"),"});
        PutTriangles(face);
        out_.End();
        return id;
    }

    // One normal stands for all points of a face, which is right for flat faces only.
    std::span<const Vec3> NormalsToWrite(const Face& face) const {
        const std::span<const Vec3> all(face.normals);
        if (style_.normals == NormalKind::kNone) { return {}; }
        const bool flat = face.surface.kind == Surface::Kind::kPlane;
        return style_.normals == NormalKind::kOne && flat ? all.first(1) : all;
    }

    void PutTriangles(const Face& face) {
        switch (style_.kind) {
        case FaceKind::kFaces: {
            triangles_.clear();
            AppendTriangles(face, &triangles_);
            for (std::size_t i = 0; i < triangles_.size(); ++i) {
                out_.Put(i == 0 ? '(' : ',');
                PutList(triangles_[i]);
            }
            out_.Put(')');
            return;
        }
        case FaceKind::kStrips:
            return PutStripsAndFans(AsStrips(face), {});
        case FaceKind::kFans:
            return PutStripsAndFans({}, AsFans(face));
        case FaceKind::kSets:
            return PutStripsAndFans(face.strips, face.fans);
        }
    }
    void PutStripsAndFans(const IndexLists& strips, const IndexLists& fans) {
        PutLists(strips);
        out_.Put(',');
        PutLists(fans);
    }
    void PutLists(const IndexLists& lists) {
        out_.Put('(');
        for (std::size_t k = 0; k < lists.Count(); ++k) {
            if (k != 0) { out_.Put(','); }
            PutList(lists.List(k));
        }
        out_.Put(')');
    }
    void PutList(std::span<const Index> list) {
        for (std::size_t i = 0; i < list.size(); ++i) {
            out_.Put(i == 0 ? '(' : ',');
            out_.Put(static_cast<std::int64_t>(list[i]) + 1);
        }
        out_.Put(')');
    }
    // The items of a list and its closing parenthesis.
    void PutVectors(std::span<const Vec3> vectors) {
        for (std::size_t i = 0; i < vectors.size(); ++i) {
            if (i != 0) { out_.Put(','); }
            out_.Put(vectors[i]);
        }
        out_.Put(')');
    }

    // With no more colours than solids, solids take turns; with more, each solid has a range of its own,
    // which its faces run through.
    std::size_t FirstColour(std::size_t solid) const {
        if (plan_.items[solid].colour >= 0) { return static_cast<std::size_t>(plan_.items[solid].colour); }
        const std::size_t solids = plan_.items.size();
        return Colours() <= solids ? solid % Colours() : solid * Colours() / solids;
    }
    std::size_t FaceColour(std::size_t solid, std::size_t face, std::size_t faces) const {
        const std::size_t solids = plan_.items.size();
        if (Colours() <= solids || plan_.items[solid].colour >= 0) { return FirstColour(solid); }
        const std::size_t range = (solid + 1) * Colours() / solids - FirstColour(solid);
        return FirstColour(solid) + face * range / faces;
    }
    void StyleSolid(std::size_t number, Id solid, const std::vector<Id>& faces) {
        const std::size_t own = FirstColour(number);
        const Id styled = out_.Add("STYLED_ITEM", "", std::vector{styles_[own]}, solid);
        styledItems_.push_back(styled);
        for (std::size_t f = 0; f < faces.size(); ++f) {
            const std::size_t colour = FaceColour(number, f, faces.size());
            if (colour == own) { continue; }
            styledItems_.push_back(
                out_.Add("OVER_RIDING_STYLED_ITEM", "", std::vector{styles_[colour]}, faces[f], styled));
        }
    }
    void StyleSets(std::size_t number, const std::vector<Id>& faces) {
        for (std::size_t f = 0; f < faces.size(); ++f) {
            const Id style = styles_[FaceColour(number, f, faces.size())];
            styledItems_.push_back(out_.Add("STYLED_ITEM", "", std::vector{style}, faces[f]));
        }
    }

    void WriteRepresentations() {
        const Id world = WritePlacement(&out_, {});
        const Id shape = out_.Add("SHAPE_REPRESENTATION", "", std::vector{world}, context_.geometry);
        out_.Add("SHAPE_DEFINITION_REPRESENTATION", product_.shape, shape);
        Id tessellated =
            out_.Add("TESSELLATED_SHAPE_REPRESENTATION", "", representationItems_, context_.geometry);
        out_.Add("SHAPE_REPRESENTATION_RELATIONSHIP", "", "", shape, tessellated);
        if (!exactSolids_.empty()) {
            const Id exact =
                out_.Add("ADVANCED_BREP_SHAPE_REPRESENTATION", "", exactSolids_, context_.geometry);
            out_.Add("SHAPE_REPRESENTATION_RELATIONSHIP", "", "", shape, exact);
        }
        out_.Add("MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION", "", styledItems_,
                 context_.geometry);
    }

    // Solids are made of three materials in turn. Each make-from link has a shape of its own that lists its
    // solids, by the exact one where there is one.
    void WriteMaterials() {
        static constexpr std::array<std::array<std::string_view, 2>, 3> materials{{
            {"RM-C45", "Steel C45 quenched and tempered"},
            {"RM-6082", "Aluminium 6082-T6"},
            {"RM-CW614N", "Brass CW614N"},
        }};
        const Id kilogram = out_.AddComplex("MASS_UNIT()NAMED_UNIT(*)SI_UNIT(.KILO.,.GRAM.)");
        for (std::size_t m = 0; m < std::min(materials.size(), solids_.size()); ++m) {
            const Product raw =
                WriteProduct(&out_, context_, materials[m][0], materials[m][1], "raw material");
            const Id quantity = out_.Add("MASS_MEASURE_WITH_UNIT", Literal{"MASS_MEASURE(1.)"}, kilogram);
            const Id use = out_.Add("MAKE_FROM_USAGE_OPTION", std::string("M") + std::to_string(m + 1),
                                    "made from", "", product_.definition, raw.definition, 1, "", quantity);
            const Id shape = out_.Add("PRODUCT_DEFINITION_SHAPE", "", "", use);
            std::vector<Id> madeOfIt;
            for (std::size_t s = m; s < solids_.size(); s += materials.size()) {
                madeOfIt.push_back(solids_[s].exact.number != 0 ? solids_[s].exact : solids_[s].tessellated);
            }
            const Id representation = out_.Add("SHAPE_REPRESENTATION", "", madeOfIt, context_.geometry);
            out_.Add("SHAPE_DEFINITION_REPRESENTATION", shape, representation);
        }
    }

    struct SolidIds {
        Id tessellated;
        Id exact;
    };
    const PartPlan& plan_;
    const PartStyle& style_;
    P21Writer& out_;
    Prng prng_;
    Context context_;
    Product product_;
    std::vector<Id> styles_;
    std::vector<Id> representationItems_;
    std::vector<Id> styledItems_;
    std::vector<Id> exactSolids_;
    std::vector<SolidIds> solids_;
    std::vector<Triangle> triangles_;
    PartCounts counts_;
};

std::string_view NameOf(Shape shape) {
    static constexpr std::string_view names[] = {"Plate", "Gear",   "Bolt",   "Flange",
                                                 "Shaft", "Washer", "Bracket"};
    return names[static_cast<std::size_t>(shape)];
}

constexpr std::size_t kFewestOfAnySolid = 12;   // a block's
constexpr long long kMostTriangles = 500000000; // their entity numbers and file sizes stay within reason

std::size_t SolidsOf(const PartOptions& o) {
    if (o.solids != 0) { return o.solids; }
    const std::size_t solids = (o.triangles + 19999) / 20000;
    return o.faces != 0 ? std::min(solids, o.faces) : solids;
}

// Where a shape can't be had with so few triangles, a block that can takes its place.
ShapeDims ChooseDims(const PartOptions& o, std::size_t number, std::size_t firstShape, std::size_t triangles,
                     Prng* prng) {
    const auto turn = static_cast<Shape>((firstShape + number) % kShapeCount);
    const ShapeDims dims = RandomDims(o.shape.value_or(turn), triangles, prng);
    if (o.shape || FewestTriangles(dims) <= triangles) { return dims; }
    return PlateDims{1, 1, prng->Range(30, 100), prng->Range(30, 100), prng->Range(10, 60), 0, 0};
}

void AddUses(const Machine& machine, int node, const Placement& at, std::size_t triangles, PartPlan* plan) {
    for (const Machine::Use& use : machine.nodes[static_cast<std::size_t>(node)].uses) {
        const Placement inner = Place(at, use.at);
        if (!use.ofPart) {
            AddUses(machine, use.number, inner, triangles, plan);
            continue;
        }
        const Machine::Part& part = machine.parts[static_cast<std::size_t>(use.number)];
        plan->items.push_back({part.dims, inner, triangles, part.colour});
    }
}

PartPlan PlanMachine(const PartOptions& o) {
    MachineOptions options;
    options.seed = o.style.seed;
    const Machine machine = MakeMachine(options);
    PartPlan plan;
    plan.id = plan.name = o.name.empty() ? machine.nodes[0].name : o.name;
    AddUses(machine, 0, {}, o.machine, &plan);
    return plan;
}

int ColoursOf(const PartOptions& o, const PartPlan& plan) {
    if (o.colours != 0) { return o.colours; }
    if (o.machine == 0) { return static_cast<int>(std::min<std::size_t>(plan.items.size(), 8)); }
    int most = 0;
    for (const PartPlan::Item& item : plan.items) { most = std::max(most, item.colour); }
    return most + 1;
}

} // namespace

PartCounts WritePart(const PartPlan& plan, const PartStyle& style, P21Writer* out) {
    return PartWriter(plan, style, out).Write();
}

std::string CheckPartOptions(const PartOptions& o) {
    if (o.machine != 0) {
        const bool sheet = o.solids != 0 || o.faces != 0 || o.colours != 0 || o.shape;
        return sheet ? "--machine: goes with neither --solids, --faces, --colours nor --shape" : "";
    }
    const std::size_t solids = SolidsOf(o);
    if (o.triangles / solids < kFewestOfAnySolid) { return "--triangles: at least 12 for each solid"; }
    if (o.faces != 0 && o.faces < solids) { return "--faces: at least one for each solid"; }
    if (o.faces > o.triangles / 4) { return "--faces: at most a quarter of the triangles"; }
    if (o.style.material && o.style.kind == FaceKind::kSets) {
        return "--material: needs solids, which --kind sets doesn't write";
    }
    return {};
}

PartPlan PlanPart(const PartOptions& o) {
    if (o.machine != 0) { return PlanMachine(o); }
    PartPlan plan;
    const std::size_t solids = SolidsOf(o);
    plan.name = !o.name.empty() ? o.name : o.shape ? std::string(NameOf(*o.shape)) : "Sample sheet";
    plan.id = plan.name;
    plan.triangles = o.triangles;
    plan.faces = o.faces;
    Prng prng(o.style.seed);
    const auto firstShape = static_cast<std::size_t>(prng.Below(kShapeCount));
    const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(solids))));
    for (std::size_t i = 0; i < solids; ++i) {
        const ShapeDims dims = ChooseDims(o, i, firstShape, o.triangles / solids, &prng);
        const double pitch = kSheetCell + 12;
        const Vec3 cell{static_cast<double>(i % columns) * pitch, static_cast<double>(i / columns) * pitch,
                        0};
        plan.items.push_back({dims, Place(Placement{cell}, SheetPlacement(dims))});
    }
    return plan;
}

int RunPart(const PartOptions& o) {
    const PartPlan plan = PlanPart(o);
    PartStyle style = o.style;
    style.colours = ColoursOf(o, plan);
    PartCounts counts;
    bool written =
        WriteFile(o.out, o.compress, [&](P21Writer* out) { counts = WritePart(plan, style, out); });
    if (written) {
        std::printf("%s: %zu triangles, %zu faces, %zu solids\n", o.out.c_str(), counts.triangles,
                    counts.faces, style.kind == FaceKind::kSets ? 0 : counts.solids);
    }
    return written ? 0 : 1;
}

void AddStyleOptions(CLI::App* app, PartStyle* style) {
    const std::map<std::string, FaceKind> kinds{{"faces", FaceKind::kFaces},
                                                {"strips", FaceKind::kStrips},
                                                {"fans", FaceKind::kFans},
                                                {"sets", FaceKind::kSets}};
    const std::map<std::string, NormalKind> normals{
        {"none", NormalKind::kNone}, {"one", NormalKind::kOne}, {"all", NormalKind::kAll}};
    AddChoice(app, "--kind", &style->kind, kinds, "What the faces are written as (default: faces)");
    AddChoice(app, "--normals", &style->normals, normals,
              "No normals, one for a flat face, or one for each point (default: all)");
    app->add_flag("--shared-coordinates", style->sharedCoordinates, "One list of points for each solid");
    app->add_flag("--pnindex", style->pnindex, "Let each face pick from its list of points by an index");
}

CLI::App* AddPartCommand(CLI::App* app, PartOptions* o) {
    const std::map<std::string, Shape> shapes{{"plate", Shape::kPlate},    {"gear", Shape::kGear},
                                              {"bolt", Shape::kBolt},      {"flange", Shape::kFlange},
                                              {"shaft", Shape::kShaft},    {"washer", Shape::kWasher},
                                              {"bracket", Shape::kBracket}};
    CLI::App* const part = app->add_subcommand("part", "One product with tessellated solids");
    part->add_option("OUT", o->out, "File to write")->required()->option_text(" ");
    AddNumber(part, "--triangles", &o->triangles, 12, kMostTriangles,
              "Triangles of all solids together, about (default: 20000)");
    AddNumber(part, "--faces", &o->faces, 1, kMostTriangles,
              "Faces of all solids together (default: those that the shapes have)");
    AddNumber(part, "--solids", &o->solids, 1, kMostTriangles,
              "Solids (default: one for each 20,000 triangles)");
    AddChoice(part, "--shape", &o->shape, shapes, "Shape of all solids (default: all shapes in turn)");
    AddNumber(part, "--machine", &o->machine, 12, 10000000,
              "The machine of the other kinds as one part, N triangles for each of its parts, about");
    part->add_option("--name", o->name, "Id and name of the product (default: after the shape)");
    AddStyleOptions(part, &o->style);
    AddNumber(part, "--colours", &o->colours, 1, 1000, "Colours (default: one for each solid, up to 8)");
    part->add_flag("--transparent", o->style.transparent, "Make every other colour see-through");
    part->add_flag("--material", o->style.material, "Say what the solids are made of");
    part->add_flag("--compress", o->compress, "Write a zlib stream");
    AddNumber(part, "--seed", &o->style.seed, 0, 1000000000, "Another sheet for each number (default: 1)");
    return part;
}

} // namespace tarnwick::make
