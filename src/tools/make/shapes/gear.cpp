#include "tools/make/shapes/builders.h"

#include <algorithm>
#include <numbers>

namespace tarnwick::make {

namespace {

constexpr double kPressureAngle = 20 * std::numbers::pi / 180;

// Half the thickness of a tooth, as an angle, at a radius: an involute above the base circle, and below it a
// straight flank that leans outward a little, so that no two points of the outline lie in one direction from
// the centre.
double HalfTooth(const GearDims& d, double radius) {
    const auto involute = [](double a) { return std::tan(a) - a; };
    const double base = d.module * d.teeth / 2 * std::cos(kPressureAngle);
    const double atBase =
        0.96 * std::numbers::pi / (2 * d.teeth) + involute(kPressureAngle); // a little play between two gears
    if (radius <= base) { return atBase + 0.5 * (base - radius) / base; }
    return atBase - involute(std::acos(base / radius));
}

// The points of a run of the outline, and which way it faces.
struct GearOutline {
    struct Run {
        int first;
        int segments;
        bool round; // around the gear's own axis
    };
    Turns turns;
    std::vector<double> radii;
    std::vector<Run> runs;

    int Count() const { return turns.Count(); }
    Vec3 At(int i, double z) const { return turns.Point(i, radii[static_cast<std::size_t>(i % Count())], z); }

    Vec3 NormalAt(const Run& run, int i) const {
        if (run.round) { return turns.Direction(run.first + i); }
        Vec3 sum;
        for (const int k : {i - 1, i}) {
            if (k < 0 || k >= run.segments) { continue; }
            const Vec3 along = At(run.first + k + 1, 0) - At(run.first + k, 0);
            sum = sum + Unit({along.y, -along.x, 0});
        }
        return Unit(sum);
    }
};

GearOutline MakeGearOutline(const GearDims& d, int level) {
    const double pitch = d.module * d.teeth / 2;
    const double tip = pitch + d.module;
    const double root = pitch - 1.25 * d.module;
    const int onFlank = level;
    const int onArc = (level + 2) / 3;
    GearOutline outline;
    const auto add = [&](double angle, double radius) {
        outline.turns.Add(angle);
        outline.radii.push_back(radius);
    };
    const auto startRun = [&](int segments, bool round) {
        outline.runs.push_back({outline.Count(), segments, round});
    };
    const double tipHalf = HalfTooth(d, tip);
    const double rootHalf = HalfTooth(d, root);
    for (int tooth = 0; tooth < d.teeth; ++tooth) {
        const double centre = 2 * std::numbers::pi * tooth / d.teeth;
        const double next = 2 * std::numbers::pi * (tooth + 1) / d.teeth;
        const auto flank = [&](double from, double to, double side) {
            startRun(onFlank, false);
            for (int i = 0; i < onFlank; ++i) {
                const double radius = Mix(from, to, i, onFlank);
                add(centre + side * HalfTooth(d, radius), radius);
            }
        };
        const auto arc = [&](double from, double to, double radius) {
            startRun(onArc, true);
            for (int i = 0; i < onArc; ++i) { add(Mix(from, to, i, onArc), radius); }
        };
        flank(root, tip, -1);
        arc(centre - tipHalf, centre + tipHalf, tip);
        flank(tip, root, 1);
        arc(centre + rootHalf, next - rootHalf, root);
    }
    return outline;
}

std::vector<ProfilePoint> GearProfile(const GearDims& d, double outer) {
    const double hub = d.bore + std::max(2.0, 0.3 * (outer - d.bore));
    const double rim = outer - 0.6 * d.module;
    if (!d.web || rim < hub + d.module) {
        return {{outer, d.width, true}, {d.bore, d.width}, {d.bore, 0}, {outer, 0}};
    }
    const double low = d.width * 0.3;
    const double high = d.width * 0.7;
    return {{outer, d.width, true},
            {rim, d.width},
            {rim, high},
            {hub, high},
            {hub, d.width},
            {d.bore, d.width},
            {d.bore, 0},
            {hub, 0},
            {hub, low},
            {rim, low},
            {rim, 0},
            {outer, 0}};
}

// The face between the outline and the ring that the turned inside starts with. A coarse gear has one point
// of the ring for each tooth, where the tooth starts, and a fan for each tooth and each gap.
class GearRim {
public:
    GearRim(const GearOutline& outline, const Turns& ringTurns, double ring)
        : outline_(outline), turns_(ringTurns), ring_(ring) {}

    void Build(double z, bool up, int rows, MeshBuilder* out) const {
        const Vec3 normal{0, 0, up ? 1.0 : -1.0};
        const int count = outline_.Count();
        const int perTooth = count / turns_.Count();
        if (perTooth == 1) {
            const auto pointAt = [&](int row, int i) {
                const Vec3 outer = outline_.At(i, z);
                const Vec3 inner = turns_.Point(i, ring_, z);
                return up ? Mix(outer, inner, row, rows) : Mix(inner, outer, row, rows);
            };
            return out->Grid(rows, count, true, pointAt, Constant(normal));
        }
        for (int tooth = 0; tooth < turns_.Count(); ++tooth) {
            const int first = tooth * perTooth;
            const int root = first + perTooth - 1; // of the last run, which has one segment
            const Vec3 start = turns_.Point(tooth, ring_, z);
            const Vec3 next = turns_.Point(tooth + 1, ring_, z);
            Fan(start, perTooth + 1, up, normal, out,
                [&](int i) { return i < perTooth ? outline_.At(first + i, z) : next; });
            Fan(next, 2, up, normal, out, [&](int i) { return outline_.At(root + i, z); });
        }
    }

private:
    template <class PointAt>
    static void Fan(Vec3 centre, int count, bool up, Vec3 normal, MeshBuilder* out, PointAt pointAt) {
        out->Fan(centre, count, normal, [&](int i) { return pointAt(up ? i : count - 1 - i); });
    }

    const GearOutline& outline_;
    const Turns& turns_;
    double ring_;
};

Turns EveryTooth(const GearOutline& outline, int teeth) {
    Turns turns;
    for (int tooth = 0; tooth < teeth; ++tooth) {
        const auto first = static_cast<std::size_t>(tooth * outline.Count() / teeth);
        turns.cosines.push_back(outline.turns.cosines[first]);
        turns.sines.push_back(outline.turns.sines[first]);
    }
    return turns;
}

} // namespace

void Build(const GearDims& d, Fineness fine, MeshBuilder* out) {
    const GearOutline outline = MakeGearOutline(d, std::max(1, fine.level - 1));
    const Turns ringTurns = fine.level == 1 ? EveryTooth(outline, d.teeth) : outline.turns;
    const double pitch = d.module * d.teeth / 2;
    const double ring = pitch - 1.75 * d.module;
    // The teeth make the outline fine already when all else is still coarse.
    const double edge = 2 * std::numbers::pi * pitch / outline.Count() * (1.5 + 6.0 / fine.level);
    const int rows = RowsFor(1.5 * d.module, edge);
    const GearRim rim(outline, ringTurns, ring);
    out->StartFace(Plane({0, 0, d.width}, {0, 0, 1}));
    rim.Build(d.width, true, rows, out);
    out->Revolve(GearProfile(d, ring), false, ringTurns, edge, fine.extraRows);
    rim.Build(0, false, rows, out);

    const int up = RowsFor(d.width, edge);
    for (const GearOutline::Run& run : outline.runs) {
        const double radius = outline.radii[static_cast<std::size_t>(run.first)];
        out->StartFace(run.round ? Cylinder({0, 0, 0}, {0, 0, 1}, radius) : Surface{});
        const auto pointAt = [&](int row, int i) {
            return outline.At(run.first + i, Mix(0, d.width, row, up));
        };
        out->Grid(up, run.segments, false, pointAt, [&](int, int i) { return outline.NormalAt(run, i); });
    }
}

} // namespace tarnwick::make
