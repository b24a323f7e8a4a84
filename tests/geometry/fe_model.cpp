#include "geometry/fe_model.h"

#include "platform/fail_fast.h"
#include "support/assembly_text.h"
#include "support/capture.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tarnwick::test {

std::string ReferenceList(const std::vector<int>& ids) {
    std::string list = "(";
    for (const int id : ids) {
        if (list.size() > 1) { list += ','; }
        list += '#' + std::to_string(id);
    }
    return list + ")";
}

int FeText::Line(std::string_view entity) {
    const int id = static_cast<int>(lines_.size()) + 1;
    lines_.push_back("#" + std::to_string(id) + "=" + std::string(entity) + ";");
    return id;
}

int FeText::Node(double x, double y, double z) {
    const int point = Line("CARTESIAN_POINT('',(" + Real(x) + "," + Real(y) + "," + Real(z) + "))");
    return Line("NODE('n',(#" + std::to_string(point) + "),#9001,#9002)");
}

int FeText::Section(double value) {
    return Line("UNIFORM_SURFACE_SECTION($,(0.,0.),''," + Real(value) + ",0.,0.)");
}

int FeText::Property(const std::vector<int>& sections) {
    const int varying = Line("SURFACE_SECTION_FIELD_VARYING(" + ReferenceList(sections) + ",.F.)");
    return Line("SURFACE_ELEMENT_PROPERTY('1',#" + std::to_string(varying) + ")");
}

int FeText::Element(const std::vector<int>& nodes, int property) {
    return Line("SURFACE_3D_ELEMENT_REPRESENTATION('e',(#9003),#9001," + ReferenceList(nodes) +
                ",#9002,#9004,#" + std::to_string(property) + ",#9005)");
}

int FeText::Quad(const std::array<double, 4>& values) {
    std::vector<int> nodes;
    std::vector<int> sections;
    for (std::size_t i = 0; i < 4; ++i) { nodes.push_back(Node(static_cast<double>(i), 0, 0)); }
    for (const double value : values) { sections.push_back(Section(value)); }
    return Element(nodes, Property(sections));
}

FeModel::FeModel(std::string_view text) : path(folder.Write("model.stp", text)), model(workspace, path) {
    LogCapture log;
    if (model.Read() != StepModel::kRead) { std::abort(); }
    reader = std::make_unique<FiniteElementReader>(model, arena, scratch);
    if (ReadFiniteElements(*reader) != 0) { std::abort(); }
    console = log.TakeConsole();
}

void ExpectEndOfProcess(std::string_view text) {
    const TempFolder folder; // of the parent: the process that ends leaves what it has made
    ReaderWorkspace workspace;
    StepModel model(workspace, folder.Write("model.stp", text));
    ASSERT_EQ(model.Read(), StepModel::kRead);
    Arena arena;
    PartScratch scratch;
    FiniteElementReader reader(model, arena, scratch);
    EXPECT_EXIT(ReadFiniteElements(reader), ::testing::ExitedWithCode(kFailFastStatus), "");
}

const FeNode* FeModel::Node(std::int32_t id) const {
    for (const FeNode& node : reader->nodes) {
        if (node.id == id) { return &node; }
    }
    return nullptr;
}

double FeModel::Value(std::int32_t id) const {
    const FeNode* const node = Node(id);
    return node != nullptr ? node->value : -999;
}

std::vector<int> FeModel::Colour(std::int32_t id) const {
    const FeNode* const node = Node(id);
    return node != nullptr ? std::vector<int>{node->red, node->green, node->blue} : std::vector<int>();
}

std::vector<std::array<std::int32_t, 4>> FeModel::Quads() const {
    std::vector<std::array<std::int32_t, 4>> quads;
    for (const FeQuad& quad : reader->quads) {
        std::array<std::int32_t, 4> ids{};
        for (std::size_t i = 0; i < 4; ++i) {
            ids[i] = reader->nodes[static_cast<std::size_t>(quad.nodes[i])].id;
        }
        quads.push_back(ids);
    }
    return quads;
}

} // namespace tarnwick::test
