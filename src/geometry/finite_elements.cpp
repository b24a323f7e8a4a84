#include "geometry/finite_elements.h"

#include "p21/keyword_codes.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "text/one_line.h"
#include "text/parse_real.h"

#include <algorithm>
#include <cmath>

namespace tarnwick {

namespace {

constexpr int kStopped = 1; // at a bad line; what was read is kept
constexpr int kGivenUp = 2; // the whole file: a line leads nowhere, or memory runs out

// A walk in an entity's line, past its first `attributes` attributes.
TextWalk WalkAfter(const StepModel& model, const P42Ent* entity, int attributes) {
    TextWalk walk = model.WalkFrom(entity);
    walk.Enter();
    walk.SkipArguments(attributes);
    return walk;
}

int GiveUp(const FiniteElementReader& reader, const P42Ent* entity, const char* reason) {
    ConsolePrint("<E> %s: given up, #%d %s\n", OneLine(reader.part.model.fileName).Text(), entity->id,
                 reason);
    return kGivenUp;
}

int GiveUpForMemory(FiniteElementReader& reader) {
    reader.part.noMemory = true;
    ConsolePrint("<E> %s: no memory for its mesh\n", OneLine(reader.part.model.fileName).Text());
    return kGivenUp;
}

int GiveUpPastEnd(const FiniteElementReader& reader, const P42Ent* entity) {
    return GiveUp(reader, entity, "runs past the end of the file");
}

// The limits are kept as f32, and compared in f64.
void WidenBox(float box[6], const FeNode& node, bool first) {
    const double values[3] = {node.x, node.y, node.z};
    for (int axis = 0; axis < 3; ++axis) {
        float& low = box[2 * axis];
        float& high = box[2 * axis + 1];
        if (first || values[axis] < static_cast<double>(low)) { low = static_cast<float>(values[axis]); }
        if (first || values[axis] > static_cast<double>(high)) { high = static_cast<float>(values[axis]); }
    }
}

int ReadNodes(FiniteElementReader& reader, ListP42Ent& lines) {
    const StepModel& model = reader.part.model;
    reader.nodes.reserve(static_cast<std::size_t>(lines.Count()));
    reader.nodeMap.Reserve(static_cast<std::size_t>(lines.Count()));
    std::vector<std::int32_t> ids;
    for (const P42Ent* line = lines.First(); line != nullptr; line = lines.Next()) {
        TextWalk walk = WalkAfter(model, line, 1);
        walk.SkipBlanksAndLineFeeds();
        if (walk.overrun) { return GiveUpPastEnd(reader, line); }
        if (walk.Current() != '(') { return kStopped; }
        ids.clear();
        ParseIdList(&walk, &ids);
        if (walk.overrun) { return GiveUpPastEnd(reader, line); }
        const P42Ent* const point = model.Find(ids.empty() ? 0 : ids.front());
        if (point == nullptr) { return GiveUp(reader, line, "names a point that isn't there"); }
        walk = WalkAfter(model, point, 1);
        walk.SkipBlanks();
        walk.Step();
        double values[3];
        ReadReals(&walk, values, 3);
        if (walk.overrun) { return GiveUpPastEnd(reader, point); }
        const FeNode node{line->id, values[0], values[1], values[2], -1.0, 0, 0, 0, 64};
        reader.nodeMap.Add(line->id, static_cast<std::int32_t>(reader.nodes.size()));
        WidenBox(reader.part.box, node, reader.nodes.empty());
        reader.nodes.push_back(node);
    }
    return 0;
}

int ReadSections(FiniteElementReader& reader, ListP42Ent& lines) {
    const StepModel& model = reader.part.model;
    reader.sectionValues.reserve(static_cast<std::size_t>(lines.Count()));
    reader.sectionMap.Reserve(static_cast<std::size_t>(lines.Count()));
    for (const P42Ent* line = lines.First(); line != nullptr; line = lines.Next()) {
        TextWalk walk = WalkAfter(model, line, 3);
        walk.SkipBlanks();
        if (walk.overrun) { return GiveUpPastEnd(reader, line); }
        reader.sectionMap.Add(line->id, static_cast<std::int32_t>(reader.sectionValues.size()));
        reader.sectionValues.push_back(ParseReal(walk.at));
    }
    return 0;
}

// Gives the corners of a quad the values of the sections that vary over it.
int ReadCornerValues(FiniteElementReader& reader, const FeQuad& quad, const P42Ent* varying,
                     std::vector<std::int32_t>* ids) {
    TextWalk walk = reader.part.model.WalkFrom(varying);
    walk.GoTo('(');
    walk.Step();
    walk.SkipBlanks();
    ids->clear();
    ParseIdList(&walk, ids);
    if (walk.overrun) { return GiveUpPastEnd(reader, varying); }
    if (ids->size() != 4) { return 0; }
    for (std::size_t corner = 0; corner < 4; ++corner) {
        const std::int32_t* const section = reader.sectionMap.Find((*ids)[corner]);
        if (section == nullptr) { return kStopped; }
        const double value = reader.sectionValues[static_cast<std::size_t>(*section)];
        reader.nodes[static_cast<std::size_t>(quad.nodes[corner])].value = value;
        if (value > reader.maxValue) { reader.maxValue = value; }
        if (reader.minValue == -1.0) {
            reader.minValue = reader.maxValue;
        } else if (value < reader.minValue && value > 0.0) {
            reader.minValue = value;
        }
    }
    return 0;
}

int ReadElement(FiniteElementReader& reader, const P42Ent* line, std::vector<std::int32_t>* ids) {
    const StepModel& model = reader.part.model;
    TextWalk walk = WalkAfter(model, line, 3);
    walk.SkipBlanks();
    if (walk.overrun) { return GiveUpPastEnd(reader, line); }
    if (walk.Current() != '(') { return kStopped; }
    ids->clear();
    ParseIdList(&walk, ids);
    // The rest of the list and two more attributes, then the property.
    walk.SkipArguments(3);
    walk.SkipBlanks();
    const std::int32_t propertyId = ReadReference(&walk);
    if (walk.overrun) { return GiveUpPastEnd(reader, line); }
    if (ids->size() != 4) { return 0; }
    FeQuad quad{};
    for (std::size_t corner = 0; corner < 4; ++corner) {
        const std::int32_t* const node = reader.nodeMap.Find((*ids)[corner]);
        if (node == nullptr) { return kStopped; }
        quad.nodes[corner] = *node;
    }
    reader.quads.push_back(quad);
    for (const std::int32_t node : quad.nodes) { reader.nodes[static_cast<std::size_t>(node)].used = 1; }

    const P42Ent* const property = model.Find(propertyId);
    if (property == nullptr) { return 0; }
    walk = WalkAfter(model, property, 1);
    walk.SkipBlanks();
    const std::int32_t sectionId = ReadReference(&walk);
    if (walk.overrun) { return GiveUpPastEnd(reader, property); }
    const P42Ent* const section = model.Find(sectionId);
    if (section == nullptr || section->code != code::kSurfaceSectionFieldVarying) { return 0; }
    return ReadCornerValues(reader, quad, section, ids);
}

int ReadElements(FiniteElementReader& reader, ListP42Ent& lines) {
    reader.quads.reserve(static_cast<std::size_t>(lines.Count()));
    std::vector<std::int32_t> ids;
    for (const P42Ent* line = lines.First(); line != nullptr; line = lines.Next()) {
        const int result = ReadElement(reader, line, &ids);
        if (result != 0) { return result; }
    }
    return 0;
}

void BuildResultMesh(FiniteElementReader& reader) {
    Arena& arena = reader.part.arena;
    const std::size_t nodes = reader.nodes.size();
    const std::size_t quads = reader.quads.size();
    ResultMesh* const mesh = arena.New<ResultMesh>();
    float* const vertices = arena.New<float>(3 * nodes);
    std::uint8_t* const colours = arena.New<std::uint8_t>(4 * nodes);
    std::uint32_t* const indices = arena.New<std::uint32_t>(4 * quads);
    if (mesh == nullptr || vertices == nullptr || colours == nullptr || indices == nullptr) {
        GiveUpForMemory(reader);
        return;
    }
    for (std::size_t i = 0; i < nodes; ++i) {
        const FeNode& node = reader.nodes[i];
        vertices[3 * i] = static_cast<float>(node.x);
        vertices[3 * i + 1] = static_cast<float>(node.y);
        vertices[3 * i + 2] = static_cast<float>(node.z);
        colours[4 * i] = static_cast<std::uint8_t>(node.red);
        colours[4 * i + 1] = static_cast<std::uint8_t>(node.green);
        colours[4 * i + 2] = static_cast<std::uint8_t>(node.blue);
        colours[4 * i + 3] = 255;
    }
    for (std::size_t i = 0; i < quads; ++i) {
        for (std::size_t corner = 0; corner < 4; ++corner) {
            indices[4 * i + corner] = static_cast<std::uint32_t>(reader.quads[i].nodes[corner]);
        }
    }
    *mesh = {vertices, colours, indices, static_cast<std::int32_t>(quads), static_cast<std::int32_t>(nodes)};
    reader.resultMesh = mesh;
    reader.part.triangleTotal = 2 * mesh->quadCount;
}

// Truncated as a part of a colour; 0 for a value that isn't finite.
std::int32_t Truncated(double value) {
    return std::isfinite(value) ? static_cast<std::int32_t>(value) : 0;
}

} // namespace

void ColourNode(FeNode* node, double minValue, double maxValue) {
    const double v = node->value;
    if (v > 8.0) {
        const double c = (v - 8.0) * 255.0 / (maxValue - 8.0);
        node->red = 255;
        node->green = Truncated(255.0 - c);
        node->blue = node->green;
    } else if (v > 7.8) {
        const double c = (v - 7.8) * 255.0 / 0.20000000000000018;
        node->red = Truncated(c);
        node->green = node->red;
        node->blue = 255;
    } else if (v > minValue) {
        const double c = (v - minValue) * 255.0 / (7.8 - minValue);
        node->red = 0;
        node->green = Truncated(255.0 - c);
        node->blue = Truncated(c);
    } else {
        node->red = 0;
        node->green = 0;
        node->blue = 0;
    }
}

namespace {

// Nodes, sections and elements, in this order, since elements refer to both. False when the file is given up.
bool ReadMesh(FiniteElementReader& reader) {
    StepModel& model = reader.part.model;
    Arena* const arena = model.IndexArena();
    ListP42Ent nodeLines(arena);
    ListP42Ent sectionLines(arena);
    ListP42Ent elementLines(arena);
    const auto listOf = [&](std::int32_t keyword) -> ListP42Ent* {
        switch (keyword) {
        case code::kNode:
            return &nodeLines;
        case code::kUniformSurfaceSection:
            return &sectionLines;
        case code::kSurface3dElement:
            return &elementLines;
        default:
            return nullptr;
        }
    };
    MapP42Ent& entities = *model.entityMap;
    for (P42Ent* entity = entities.First(); entity != nullptr; entity = entities.Next()) {
        ListP42Ent* const lines = listOf(entity->code);
        if (lines != nullptr && lines->Add(entity) == 0) {
            GiveUpForMemory(reader);
            return false;
        }
    }
    return ReadNodes(reader, nodeLines) != kGivenUp && ReadSections(reader, sectionLines) != kGivenUp &&
           ReadElements(reader, elementLines) != kGivenUp;
}

} // namespace

int ReadFiniteElements(FiniteElementReader& reader) {
    PartReader& part = reader.part;
    const double start = ClockSeconds();
    part.readSeconds += part.model.readSeconds;
    part.inflateSeconds += part.model.inflateSeconds;
    if (!part.MakeProduct()) {
        part.givenUp = true;
        if (part.noMemory) {
            GiveUpForMemory(reader);
        } else {
            ConsolePrint("<E> %s: given up, it has no PRODUCT\n", OneLine(part.model.fileName).Text());
        }
        return 0;
    }
    part.givenUp = !ReadMesh(reader);
    if (part.givenUp) { return 0; }
    for (FeNode& node : reader.nodes) { ColourNode(&node, reader.minValue, reader.maxValue); }
    BuildResultMesh(reader);
    part.givenUp = part.noMemory;
    part.triangleSum += static_cast<std::uint32_t>(part.triangleTotal);
    if (part.triangleTotal >= 1) {
        std::copy_n(part.box, 6, part.product->box);
        part.product->hasBox = 1;
    }
    part.parseSeconds += ClockSeconds() - start;
    return 0;
}

} // namespace tarnwick
