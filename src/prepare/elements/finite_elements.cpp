#include "prepare/elements/finite_elements.h"

#include "exchange/arguments.h"
#include "prepare/elements/element_nodes.h"
#include "prepare/elements/element_skin.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <unordered_map>
#include <utility>

namespace tarnwick::prepare {

namespace {

constexpr std::string_view kElement = "_ELEMENT_REPRESENTATION";
// A longer section is ignored: one that many elements lead to is read for each of them.
constexpr std::uint32_t kLongestSection = 4096;
constexpr float kUnknown = std::numeric_limits<float>::quiet_NaN();

// An element's own record and its list of nodes.
struct ElementText {
    std::string_view keyword;
    std::string_view nodes;
    std::uint64_t descriptor = 0;
    std::uint64_t property = 0;
};

// The keyword of an element, or empty for anything else.
std::string_view ElementKeyword(std::string_view text) {
    for (const Record& record : RecordsOf(text)) {
        if (record.keyword.ends_with(kElement)) { return record.keyword; }
    }
    return {};
}

ElementText TextOfElement(std::string_view text, std::string_view keyword) {
    const Arguments own(FindRecord(text, keyword).arguments);
    const Record list = FindRecord(text, "ELEMENT_REPRESENTATION");
    if (list.IsFound()) {
        return {keyword, Arguments(list.arguments)[0], ReferenceOf(own[1]), ReferenceOf(own[2])};
    }
    return {keyword, own[3], ReferenceOf(own[5]), ReferenceOf(own[6])};
}

bool HasSurface(std::string_view keyword) {
    return keyword.find("SURFACE_3D") != std::string_view::npos ||
           keyword.find("VOLUME") != std::string_view::npos;
}

ElementShape ShapeByCount(std::string_view keyword, std::size_t nodes) {
    using enum ElementShape;
    if (!HasSurface(keyword)) { return kNone; }
    constexpr std::pair<std::size_t, ElementShape> kFlat[] = {
        {3, kTriangle},      {6, kTriangle},       {7, kTriangle},
        {10, kTriangle},     {4, kQuadrilateral},  {8, kQuadrilateral},
        {9, kQuadrilateral}, {12, kQuadrilateral}, {16, kQuadrilateral}};
    constexpr std::pair<std::size_t, ElementShape> kSolid[] = {
        {4, kTetrahedron}, {10, kTetrahedron}, {5, kPyramid},     {13, kPyramid},
        {14, kPyramid},    {6, kWedge},        {15, kWedge},      {18, kWedge},
        {8, kHexahedron},  {20, kHexahedron},  {26, kHexahedron}, {27, kHexahedron}};
    if (keyword == "VOLUME_3D_ELEMENT_REPRESENTATION") {
        for (const auto& [count, shape] : kSolid) {
            if (nodes == count) { return shape; }
        }
        return kNone;
    }
    for (const auto& [count, shape] : kFlat) {
        if (nodes == count) { return shape; }
    }
    return kNone;
}

ElementShape ShapeOfDescriptor(const ExchangeFile& file, std::uint64_t descriptor) {
    using enum ElementShape;
    constexpr std::pair<std::string_view, ElementShape> kShapes[] = {{"TRIANGLE", kTriangle},
                                                                     {"QUADRILATERAL", kQuadrilateral},
                                                                     {"TETRAHEDRON", kTetrahedron},
                                                                     {"PYRAMID", kPyramid},
                                                                     {"WEDGE", kWedge},
                                                                     {"HEXAHEDRON", kHexahedron}};
    const Instance* const instance = file.Find(descriptor);
    if (instance == nullptr) { return kNone; }
    for (const Record& record : RecordsOf(file.TextOf(*instance))) {
        ArgumentCursor cursor(record.arguments);
        for (std::string_view argument; cursor.Next(&argument);) {
            for (const auto& [name, shape] : kShapes) {
                if (EnumerationOf(argument) == name) { return shape; }
            }
        }
    }
    return kNone;
}

class ElementReader {
public:
    explicit ElementReader(const ExchangeFile& file) : file_(file), nodes_(file) {}

    ElementMesh Run() {
        for (std::uint32_t keyword = 0; keyword < file_.Keywords().size(); ++keyword) {
            const std::string& name = file_.Keywords()[keyword];
            if (!name.ends_with(kElement)) { continue; }
            for (const std::uint32_t place : file_.OfPlace(keyword)) { ReadElement(place, name); }
        }
        for (const std::uint32_t place : file_.ComplexInstances()) {
            const std::string_view keyword = ElementKeyword(file_.TextOf(file_.Instances()[place]));
            if (!keyword.empty()) { ReadElement(place, keyword); }
        }
        for (const Quad& quad : SkinOf(faces_)) {
            mesh_.quads.push_back(quad);
            mesh_.values.push_back({kUnknown, kUnknown, kUnknown, kUnknown});
        }
        SettleValues();
        KeepUsedNodes();
        return std::move(mesh_);
    }

private:
    void Count(std::string_view keyword, std::string_view why, bool isShape) {
        const std::string kind = std::string(keyword) + std::string(why);
        const auto [at, isNew] = undrawn_.try_emplace(kind, mesh_.undrawn.size());
        if (isNew) { mesh_.undrawn.push_back({kind, 0, isShape}); }
        ++mesh_.undrawn[at->second].count;
    }

    void ReadElement(std::uint32_t place, std::string_view keyword) {
        const ElementText text = TextOfElement(file_.TextOf(file_.Instances()[place]), keyword);
        ids_.clear();
        AppendReferences(text.nodes, &ids_);
        const auto [known, isNew] = shapes_.try_emplace(text.descriptor, ElementShape::kNone);
        if (isNew) { known->second = ShapeOfDescriptor(file_, text.descriptor); }
        ElementShape shape = known->second;
        if (shape == ElementShape::kNone) { shape = ShapeByCount(keyword, ids_.size()); }
        const std::size_t corners = CornersOf(shape);
        if (shape == ElementShape::kNone || ids_.size() < corners) {
            Count(keyword, HasSurface(keyword) ? " of an unknown form" : "", HasSurface(keyword));
            return;
        }
        std::array<std::uint32_t, 8> numbers{};
        for (std::size_t i = 0; i < corners; ++i) {
            numbers[i] = nodes_.NumberOf(ids_[i]);
            if (numbers[i] == ElementNodes::kAbsent) {
                Count(keyword, " without one of its nodes", true);
                return;
            }
        }
        if (IsVolume(shape)) {
            AppendFaces(shape, {numbers.data(), corners}, nodes_.Positions(), &faces_);
            return;
        }
        Quad quad{};
        if (!MakeQuad({numbers.data(), corners}, &quad)) {
            Count(keyword, " without an extent", true);
            return;
        }
        mesh_.quads.push_back(quad);
        mesh_.values.push_back(ValuesOf(text.property, numbers, quad));
    }

    // Those of the element's corners, in the order of the quad's.
    std::array<float, 4> ValuesOf(std::uint64_t property, const std::array<std::uint32_t, 8>& numbers,
                                  const Quad& quad) {
        const auto [known, isNew] = sections_.try_emplace(property);
        if (isNew) { known->second = ReadProperty(property); }
        const double unit = nodes_.UnitOf(numbers[0]);
        std::array<float, 4> values{};
        for (std::size_t corner = 0; corner < 4; ++corner) {
            const auto at = std::find(numbers.begin(), numbers.begin() + 4, quad[corner]) - numbers.begin();
            values[corner] = static_cast<float>(
                unit * known->second[static_cast<std::size_t>(std::min<std::ptrdiff_t>(at, 3))]);
        }
        return values;
    }

    // The thickness at each corner, in the unit of the file.
    std::array<float, 4> ReadProperty(std::uint64_t property) {
        const std::array<float, 4> unknown{kUnknown, kUnknown, kUnknown, kUnknown};
        const Instance* const instance = file_.Find(property);
        if (instance == nullptr) { return unknown; }
        const std::uint64_t section = ReferenceOf(
            Arguments(FindRecord(file_.TextOf(*instance), "SURFACE_ELEMENT_PROPERTY").arguments)[2]);
        const auto [known, isNew] = fields_.try_emplace(section, unknown);
        if (isNew) { known->second = ReadField(section); }
        return known->second;
    }
    std::array<float, 4> ReadField(std::uint64_t field) const {
        std::array<float, 4> values{kUnknown, kUnknown, kUnknown, kUnknown};
        const Instance* const instance = file_.Find(field);
        if (instance == nullptr) { return values; }
        const std::string_view text = file_.TextOf(*instance);
        const Record constant = FindRecord(text, "SURFACE_SECTION_FIELD_CONSTANT");
        if (constant.IsFound()) {
            values.fill(ThicknessOf(ReferenceOf(Arguments(constant.arguments)[0])));
            return values;
        }
        ArgumentCursor record(FindRecord(text, "SURFACE_SECTION_FIELD_VARYING").arguments);
        std::string_view list;
        if (!record.Next(&list)) { return values; }
        ArgumentCursor sections(ListOf(list));
        std::size_t count = 0;
        for (std::string_view section; count < 4 && sections.Next(&section); ++count) {
            values[count] = ThicknessOf(ReferenceOf(section));
        }
        if (count == 1) { values.fill(values[0]); }
        return values;
    }
    float ThicknessOf(std::uint64_t section) const {
        const Instance* const instance = file_.Find(section);
        if (instance == nullptr || instance->length > kLongestSection) { return kUnknown; }
        const Record record = FindRecord(file_.TextOf(*instance), "UNIFORM_SURFACE_SECTION");
        const Arguments arguments(record.arguments);
        // A complex instance keeps the first three elsewhere.
        const std::size_t at = arguments.Count() >= 6 ? 3 : 0;
        const std::optional<double> value = RealOf(arguments[at]);
        return value && std::isfinite(*value) ? static_cast<float>(*value) : kUnknown;
    }

    // Leaves values only where they differ.
    void SettleValues() {
        float least = std::numeric_limits<float>::infinity();
        float most = -least;
        for (const std::array<float, 4>& corners : mesh_.values) {
            for (const float value : corners) {
                if (!std::isfinite(value)) { continue; }
                least = std::min(least, value);
                most = std::max(most, value);
            }
        }
        if (!(most > least + 1e-6f * std::abs(most))) {
            mesh_.values.clear();
            return;
        }
        for (std::array<float, 4>& corners : mesh_.values) {
            for (float& value : corners) {
                if (!std::isfinite(value)) { value = static_cast<float>(kPlainThickness); }
            }
        }
    }

    void KeepUsedNodes() {
        const std::vector<Vec3>& positions = nodes_.Positions();
        std::vector<std::uint32_t> numbers(positions.size(), ElementNodes::kAbsent);
        for (Quad& quad : mesh_.quads) {
            for (std::uint32_t& corner : quad) {
                if (numbers[corner] == ElementNodes::kAbsent) {
                    numbers[corner] = static_cast<std::uint32_t>(mesh_.nodes.size());
                    mesh_.nodes.push_back(positions[corner]);
                }
                corner = numbers[corner];
            }
        }
    }

    const ExchangeFile& file_;
    ElementNodes nodes_;
    ElementMesh mesh_;
    std::vector<Quad> faces_; // of volumes
    std::vector<std::uint64_t> ids_;
    std::map<std::string, std::size_t> undrawn_;
    std::unordered_map<std::uint64_t, ElementShape> shapes_;           // of descriptors
    std::unordered_map<std::uint64_t, std::array<float, 4>> sections_; // of properties
    std::unordered_map<std::uint64_t, std::array<float, 4>> fields_;
};

} // namespace

bool HasElements(const ExchangeFile& file) {
    for (const std::string& keyword : file.Keywords()) {
        if (keyword.ends_with(kElement)) { return true; }
    }
    return std::any_of(
        file.ComplexInstances().begin(), file.ComplexInstances().end(),
        [&](std::uint32_t place) { return !ElementKeyword(file.TextOf(file.Instances()[place])).empty(); });
}

ElementMesh ReadElements(const ExchangeFile& file) {
    return ElementReader(file).Run();
}

} // namespace tarnwick::prepare
