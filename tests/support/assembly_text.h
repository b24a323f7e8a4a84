#pragma once

#include "support/p21_text.h"

#include <array>
#include <string>
#include <string_view>

namespace tarnwick::test {

// Location, axis and reference direction of an AXIS2_PLACEMENT_3D.
struct Frame {
    std::array<double, 3> location{0, 0, 0};
    std::array<double, 3> axis{0, 0, 1};
    std::array<double, 3> reference{1, 0, 0};
};

// A world-aligned frame at a place.
Frame At(double x, double y, double z);

// The structure of an assembly file, put together line by line. Entities are numbered from `firstId`, one
// more for each line.
class AssemblyText {
public:
    explicit AssemblyText(int firstId = 1) : nextId_(firstId) {}

    // A line "#n=<entity>;"; returns n.
    int Line(std::string_view entity);
    // PRODUCT, formation and definition; returns the number of the PRODUCT_DEFINITION.
    int Product(std::string_view name);
    int Placement(const Frame& frame);
    // An occurrence of `child` under `parent` with everything that hangs on it; returns the number of its
    // CONTEXT_DEPENDENT_SHAPE_REPRESENTATION.
    int Use(int parent, int child, const Frame& target = {}, const Frame& source = {});
    // The same with a transformation that is there already.
    int UseWith(int parent, int child, int transform);
    // A document and the reference that gives it to a definition; returns the number of the
    // APPLIED_DOCUMENT_REFERENCE.
    int File(int definition, std::string_view fileName);
    // A line that makes the file an assembly, and nothing else.
    void MarkAsAssembly();

    const Lines& DataLines() const { return lines_; }
    std::string Text(std::string_view schema = kManagedModel) const { return P21Text(lines_, schema); }

private:
    int nextId_;
    Lines lines_;
};

// A part of so many triangles, all over the diagonal of the box (x minimum, x maximum, y minimum, ...).
std::string PlateText(int triangles, const std::array<double, 6>& box = {0, 1, 0, 1, 0, 1});

// A number as P21 writes it, read back without loss.
std::string Real(double value);

} // namespace tarnwick::test
