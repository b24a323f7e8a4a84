#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

// Units of a context, as instances from #1 on; the context itself is #10.
enum class LengthUnit { kMillimetre, kInch, kMetre };
enum class AngleUnit { kRadian, kDegree };
std::string ContextText(LengthUnit length = LengthUnit::kMillimetre, AngleUnit angle = AngleUnit::kRadian);
inline constexpr std::uint64_t kContext = 10;

// The instances of solids, numbered one after the other.
class SolidText {
public:
    explicit SolidText(std::uint64_t first) : next_(first) {}

    // A cube from the origin on, as a MANIFOLD_SOLID_BREP of six faces; its number.
    std::uint64_t AddCube(double size);
    // A cone along z, cut off: radius 1 at the origin, and height 1. The half angle of its tip is 45 degrees
    // in the unit of the context. Three faces.
    std::uint64_t AddCone(AngleUnit angle);
    // The faces of the solid that was added last.
    const std::vector<std::uint64_t>& Faces() const { return faces_; }
    std::uint64_t Shell() const { return shell_; }
    const std::string& Text() const { return text_; }
    std::uint64_t Add(std::string_view instance);

private:
    std::uint64_t Point(std::array<double, 3> at);
    std::uint64_t Direction(std::array<double, 3> along);
    std::uint64_t Axes(std::array<double, 3> at, std::array<double, 3> z, std::array<double, 3> x);
    std::uint64_t Edge(std::uint64_t from, std::uint64_t to, std::uint64_t curve);
    std::uint64_t Face(const std::vector<std::uint64_t>& orientedEdges, std::uint64_t surface);
    std::uint64_t Oriented(std::uint64_t edge, bool isForward);
    std::uint64_t Solid();

    std::uint64_t next_;
    std::uint64_t shell_ = 0;
    std::vector<std::uint64_t> faces_;
    std::string text_;
};

// A whole file with these instances.
std::string ExchangeText(std::string_view instances);

} // namespace tarnwick::test
