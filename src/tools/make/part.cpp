#include "tools/make/part.h"

#include "tools/make/options.h"
#include "tools/make/output.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace tarnwick::make {

namespace {

std::string_view NameOf(Shape shape) {
    constexpr std::string_view kNames[] = {"Plate", "Gear", "Bolt", "Flange", "Shaft", "Washer", "Bracket"};
    return kNames[static_cast<std::size_t>(shape)];
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

void AddUses(const Machine& machine, std::size_t node, const Placement& at, std::size_t triangles,
             PartPlan* plan) {
    for (const Machine::Use& use : machine.nodes[node].uses) {
        const Placement inner = Place(at, use.at);
        if (!use.ofPart) {
            AddUses(machine, use.number, inner, triangles, plan);
            continue;
        }
        const Machine::Part& part = machine.parts[use.number];
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

void WriteMachinePart(const Machine::Part& part, std::size_t triangles, PartStyle style, P21Writer* out) {
    style.firstColour = part.colour;
    WritePart({part.id, part.name, {{part.dims, {}}}, triangles, 0}, style, out);
}

int RunPart(const PartOptions& o) {
    const PartPlan plan = PlanPart(o);
    PartStyle style = o.style;
    style.colours = ColoursOf(o, plan);
    PartCounts counts;
    bool written = WriteP21(o.out, o.compress, [&](P21Writer* out) { counts = WritePart(plan, style, out); });
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
