#include "tools/make/shapes/shapes.h"

#include "tools/make/shapes/builders.h"

namespace tarnwick::make {

namespace {

std::size_t CountTriangles(const ShapeDims& dims, Fineness fine) {
    MeshBuilder counter(MeshBuilder::Mode::kCount);
    std::visit([&](const auto& d) { Build(d, fine, &counter); }, dims);
    return counter.Triangles();
}

// The largest value from `least` for which fits(value) holds; it holds for `least`.
template <class Fits>
int LargestThatFits(int least, Fits fits) {
    int step = 1;
    while (fits(least + step)) { step *= 2; }
    int low = least + step / 2;
    int high = least + step;
    while (high - low > 1) {
        const int middle = (low + high) / 2;
        (fits(middle) ? low : high) = middle;
    }
    return low;
}

std::size_t Distance(std::size_t a, std::size_t b) {
    return a < b ? b - a : a - b;
}

// The number of extra rows at one level that comes nearest; the level alone doesn't have too many triangles.
Fineness NearestAtLevel(const ShapeDims& dims, int level, std::size_t triangles) {
    const int extra = LargestThatFits(0, [&](int n) {
        return CountTriangles(dims, {level, n}) <= triangles;
    });
    const std::size_t below = Distance(CountTriangles(dims, {level, extra}), triangles);
    const std::size_t above = Distance(CountTriangles(dims, {level, extra + 1}), triangles);
    return {level, above < below ? extra + 1 : extra};
}

// The finest level that fits, but the one below it where that comes clearly nearer: its rows are shorter.
Fineness FindFineness(const ShapeDims& dims, std::size_t triangles) {
    if (CountTriangles(dims, {1, 0}) >= triangles) { return {1, 0}; }
    const int level = LargestThatFits(1, [&](int n) { return CountTriangles(dims, {n, 0}) <= triangles; });
    const Fineness fine = NearestAtLevel(dims, level, triangles);
    if (level == 1 || Distance(CountTriangles(dims, fine), triangles) <= triangles / 40) { return fine; }
    const Fineness coarser = NearestAtLevel(dims, level - 1, triangles);
    return Distance(CountTriangles(dims, coarser), triangles) <
                   Distance(CountTriangles(dims, fine), triangles)
               ? coarser
               : fine;
}

} // namespace

std::size_t FewestTriangles(const ShapeDims& dims) {
    return CountTriangles(dims, {1, 0});
}

Solid MakeSolid(const ShapeDims& dims, std::size_t triangles) {
    const Fineness fine = FindFineness(dims, triangles);
    MeshBuilder builder(MeshBuilder::Mode::kBuild);
    std::visit([&](const auto& d) { Build(d, fine, &builder); }, dims);
    Solid solid;
    solid.faces = std::move(builder.Faces());
    solid.shapeFaces = static_cast<int>(solid.faces.size());
    if (auto* shaft = std::get_if<ShaftDims>(&dims)) { solid.profile = Profile(*shaft); }
    if (auto* washer = std::get_if<WasherDims>(&dims)) { solid.profile = Profile(*washer); }
    return solid;
}

} // namespace tarnwick::make
