#pragma once

#include "geometry/finite_elements.h"
#include "support/p21_text.h"
#include "support/temp_folder.h"

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

inline constexpr std::string_view kAnalysis = "AP209_MULTIDISCIPLINARY_ANALYSIS_AND_DESIGN_MIM_LF";

// A shell model, put together line by line. #1 is its PRODUCT, "model".
class FeText {
public:
    FeText() { Line("PRODUCT('model','','',(#9000))"); }

    // A line "#n=<entity>;"; returns n.
    int Line(std::string_view entity);
    // A point and its NODE; returns the number of the NODE.
    int Node(double x, double y, double z);
    // A section of one value.
    int Section(double value);
    // The property of an element whose sections vary over it; any number of sections.
    int Property(const std::vector<int>& sections);
    // An element over any number of nodes.
    int Element(const std::vector<int>& nodes, int property);
    // A quad on nodes of its own, one at x = 0, 1, 2, 3, with these values.
    int Quad(const std::array<double, 4>& values);

    int EntityCount() const { return static_cast<int>(lines_.size()); }
    std::string Text() const { return P21Text(lines_, kAnalysis); }

private:
    Lines lines_;
};

// "(#1,#2)"
std::string ReferenceList(const std::vector<int>& ids);

// A text that the finite element reader has read.
struct FeModel {
    explicit FeModel(std::string_view text);

    const FeNode* Node(std::int32_t id) const;
    // The section value of a node.
    double Value(std::int32_t id) const;
    // Red, green and blue of a node.
    std::vector<int> Colour(std::int32_t id) const;
    std::vector<std::array<std::int32_t, 4>> Quads() const; // as entity numbers

    TempFolder folder;
    std::string path;
    ReaderWorkspace workspace;
    StepModel model;
    Arena arena;
    PartScratch scratch;
    std::unique_ptr<FiniteElementReader> reader;
    std::string console;
};

// Expects the reader to end the process at this text.
void ExpectEndOfProcess(std::string_view text);

} // namespace tarnwick::test
