#include "mesher/solid_text.h"

#include <iomanip>
#include <sstream>

namespace tarnwick::test {

namespace {

// The words of an instance; numbers have points.
template <class... Pieces>
std::string Words(const Pieces&... pieces) {
    std::ostringstream out;
    out << std::showpoint << std::setprecision(12);
    (out << ... << pieces);
    return out.str();
}

std::string References(const std::vector<std::uint64_t>& numbers) {
    std::string list = "(";
    for (const std::uint64_t number : numbers) {
        if (list.size() > 1) { list += ","; }
        list += "#";
        list += std::to_string(number);
    }
    return list + ")";
}

} // namespace

std::string ContextText(LengthUnit length, AngleUnit angle) {
    std::string text = "#1=(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.MILLI.,.METRE.));\n"
                       "#2=(NAMED_UNIT(*)PLANE_ANGLE_UNIT()SI_UNIT($,.RADIAN.));\n"
                       "#3=(NAMED_UNIT(*)SI_UNIT($,.STERADIAN.)SOLID_ANGLE_UNIT());\n";
    std::uint64_t lengthUnit = 1;
    std::uint64_t angleUnit = 2;
    if (length == LengthUnit::kInch) {
        text += "#4=LENGTH_MEASURE_WITH_UNIT(LENGTH_MEASURE(25.4),#1);\n"
                "#5=DIMENSIONAL_EXPONENTS(1.,0.,0.,0.,0.,0.,0.);\n"
                "#6=(CONVERSION_BASED_UNIT('INCH',#4)LENGTH_UNIT()NAMED_UNIT(#5));\n";
        lengthUnit = 6;
    } else if (length == LengthUnit::kMetre) {
        text += "#4=(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT($,.METRE.));\n";
        lengthUnit = 4;
    }
    if (angle == AngleUnit::kDegree) {
        text += "#7=PLANE_ANGLE_MEASURE_WITH_UNIT(PLANE_ANGLE_MEASURE(0.0174532925199433),#2);\n"
                "#8=DIMENSIONAL_EXPONENTS(0.,0.,0.,0.,0.,0.,0.);\n"
                "#9=(CONVERSION_BASED_UNIT('DEGREE',#7)NAMED_UNIT(#8)PLANE_ANGLE_UNIT());\n";
        angleUnit = 9;
    }
    return text + Words("#11=UNCERTAINTY_MEASURE_WITH_UNIT(LENGTH_MEASURE(1.E-5),#", lengthUnit,
                        ",'distance_accuracy_value','');\n#10=(GEOMETRIC_REPRESENTATION_CONTEXT(3)"
                        "GLOBAL_UNCERTAINTY_ASSIGNED_CONTEXT((#11))GLOBAL_UNIT_ASSIGNED_CONTEXT((#",
                        lengthUnit, ",#", angleUnit, ",#3))REPRESENTATION_CONTEXT('',''));\n");
}

std::uint64_t SolidText::Add(std::string_view instance) {
    text_ += Words("#", next_, "=", instance, ";\n");
    return next_++;
}

std::uint64_t SolidText::Point(std::array<double, 3> at) {
    return Add(Words("CARTESIAN_POINT('',(", at[0], ",", at[1], ",", at[2], "))"));
}

std::uint64_t SolidText::Direction(std::array<double, 3> along) {
    return Add(Words("DIRECTION('',(", along[0], ",", along[1], ",", along[2], "))"));
}

std::uint64_t SolidText::Axes(std::array<double, 3> at, std::array<double, 3> z, std::array<double, 3> x) {
    const std::uint64_t point = Point(at);
    const std::uint64_t axis = Direction(z);
    const std::uint64_t reference = Direction(x);
    return Add(Words("AXIS2_PLACEMENT_3D('',#", point, ",#", axis, ",#", reference, ")"));
}

std::uint64_t SolidText::Edge(std::uint64_t from, std::uint64_t to, std::uint64_t curve) {
    return Add(Words("EDGE_CURVE('',#", from, ",#", to, ",#", curve, ",.T.)"));
}

std::uint64_t SolidText::Oriented(std::uint64_t edge, bool isForward) {
    return Add(Words("ORIENTED_EDGE('',*,*,#", edge, isForward ? ",.T.)" : ",.F.)"));
}

std::uint64_t SolidText::Face(const std::vector<std::uint64_t>& orientedEdges, std::uint64_t surface) {
    const std::uint64_t loop = Add("EDGE_LOOP(''," + References(orientedEdges) + ")");
    const std::uint64_t bound = Add(Words("FACE_OUTER_BOUND('',#", loop, ",.T.)"));
    faces_.push_back(Add(Words("ADVANCED_FACE('side',(#", bound, "),#", surface, ",.T.)")));
    return faces_.back();
}

std::uint64_t SolidText::Solid() {
    shell_ = Add("CLOSED_SHELL(''," + References(faces_) + ")");
    return Add(Words("MANIFOLD_SOLID_BREP('solid',#", shell_, ")"));
}

std::uint64_t SolidText::AddCube(double size) {
    faces_.clear();
    // Corner i stands at the bits of i.
    std::array<std::uint64_t, 8> corners;
    const auto at = [&](std::size_t i) {
        return std::array<double, 3>{(i & 1) != 0 ? size : 0, (i & 2) != 0 ? size : 0,
                                     (i & 4) != 0 ? size : 0};
    };
    for (std::size_t i = 0; i < 8; ++i) {
        const std::uint64_t point = Point(at(i));
        corners[i] = Add(Words("VERTEX_POINT('',#", point, ")"));
    }
    // Edges by their lower corner and their direction.
    std::array<std::array<std::uint64_t, 3>, 8> edges{};
    for (std::size_t i = 0; i < 8; ++i) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const std::size_t to = i | (std::size_t{1} << axis);
            if (to == i) { continue; }
            const std::uint64_t point = Point(at(i));
            const std::uint64_t direction =
                Direction({axis == 0 ? 1.0 : 0.0, axis == 1 ? 1.0 : 0.0, axis == 2 ? 1.0 : 0.0});
            const std::uint64_t vector = Add(Words("VECTOR('',#", direction, ",1.)"));
            const std::uint64_t line = Add(Words("LINE('',#", point, ",#", vector, ")"));
            edges[i][axis] = Edge(corners[i], corners[to], line);
        }
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const std::size_t u = (axis + 1) % 3;
        const std::size_t v = (axis + 2) % 3;
        for (const bool isUpper : {false, true}) {
            const std::size_t base = isUpper ? std::size_t{1} << axis : 0;
            std::array<double, 3> normal{};
            normal[axis] = isUpper ? 1 : -1;
            std::array<double, 3> along{};
            along[u] = 1;
            const std::uint64_t axes = Axes(at(base), normal, along);
            const std::uint64_t plane = Add(Words("PLANE('',#", axes, ")"));
            const std::uint64_t bottom = edges[base][u];
            const std::uint64_t right = edges[base | (std::size_t{1} << u)][v];
            const std::uint64_t top = edges[base | (std::size_t{1} << v)][u];
            const std::uint64_t left = edges[base][v];
            std::vector<std::uint64_t> loop;
            if (isUpper) {
                loop = {Oriented(bottom, true), Oriented(right, true), Oriented(top, false),
                        Oriented(left, false)};
            } else {
                loop = {Oriented(left, true), Oriented(top, true), Oriented(right, false),
                        Oriented(bottom, false)};
            }
            Face(loop, plane);
        }
    }
    return Solid();
}

std::uint64_t SolidText::AddCone(AngleUnit angle) {
    faces_.clear();
    const std::array<double, 3> up{0, 0, 1};
    const std::array<double, 3> down{0, 0, -1};
    const std::array<double, 3> side{1, 0, 0};
    const double halfAngle = angle == AngleUnit::kDegree ? 45 : 0.785398163397;
    const std::uint64_t lowPoint = Point({1, 0, 0});
    const std::uint64_t highPoint = Point({2, 0, 1});
    const std::uint64_t low = Add(Words("VERTEX_POINT('',#", lowPoint, ")"));
    const std::uint64_t high = Add(Words("VERTEX_POINT('',#", highPoint, ")"));
    const std::uint64_t lowAxes = Axes({0, 0, 0}, up, side);
    const std::uint64_t highAxes = Axes({0, 0, 1}, up, side);
    const std::uint64_t lowCircle = Add(Words("CIRCLE('',#", lowAxes, ",1.)"));
    const std::uint64_t highCircle = Add(Words("CIRCLE('',#", highAxes, ",2.)"));
    const std::uint64_t slope = Direction({0.707106781187, 0, 0.707106781187});
    const std::uint64_t vector = Add(Words("VECTOR('',#", slope, ",1.)"));
    const std::uint64_t line = Add(Words("LINE('',#", lowPoint, ",#", vector, ")"));
    const std::uint64_t lowEdge = Edge(low, low, lowCircle);
    const std::uint64_t highEdge = Edge(high, high, highCircle);
    const std::uint64_t seam = Edge(low, high, line);
    const std::uint64_t cone = Add(Words("CONICAL_SURFACE('',#", lowAxes, ",1.,", halfAngle, ")"));
    Face({Oriented(lowEdge, true), Oriented(seam, true), Oriented(highEdge, false), Oriented(seam, false)},
         cone);
    const std::uint64_t bottomAxes = Axes({0, 0, 0}, down, side);
    const std::uint64_t bottom = Add(Words("PLANE('',#", bottomAxes, ")"));
    Face({Oriented(lowEdge, false)}, bottom);
    const std::uint64_t top = Add(Words("PLANE('',#", highAxes, ")"));
    Face({Oriented(highEdge, true)}, top);
    return Solid();
}

std::string ExchangeText(std::string_view instances) {
    return "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\nFILE_NAME('','',(''),(''),'','','');\n"
           "FILE_SCHEMA(('AUTOMOTIVE_DESIGN'));\nENDSEC;\nDATA;\n" +
           std::string(instances) + "ENDSEC;\nEND-ISO-10303-21;\n";
}

} // namespace tarnwick::test
