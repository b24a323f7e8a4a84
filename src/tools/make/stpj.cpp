#include "tools/make/stpj.h"

#include "tools/make/machine_options.h"
#include "tools/make/options.h"
#include "tools/make/output.h"
#include "write/json_summary.h"
#include "write/real_text.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <vector>

namespace tarnwick::make {

namespace {

// By columns, in single precision.
using Matrix = std::array<float, 16>;

constexpr Matrix kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Vec3 Rounded(Vec3 v) {
    return {RoundReal(v.x), RoundReal(v.y), RoundReal(v.z)};
}

Matrix MatrixOf(const Placement& at) {
    const Vec3 x = Rounded(at.x);
    const Vec3 z = Rounded(at.z);
    Matrix m = kIdentity;
    int column = 0;
    for (const Vec3 v : {x, Cross(z, x), z, at.origin}) {
        float* const c = m.data() + 4 * column++;
        c[0] = RoundReal(v.x);
        c[1] = RoundReal(v.y);
        c[2] = RoundReal(v.z);
    }
    return m;
}

Matrix Product(const Matrix& a, const Matrix& b) {
    Matrix m;
    for (std::size_t c = 0; c < 16; c += 4) {
        for (std::size_t r = 0; r < 4; ++r) {
            m[c + r] = a[r] * b[c] + a[4 + r] * b[c + 1] + a[8 + r] * b[c + 2] + a[12 + r] * b[c + 3];
        }
    }
    return m;
}

struct Box {
    static constexpr double kInfinity = std::numeric_limits<double>::infinity();
    Vec3 low{kInfinity, kInfinity, kInfinity};
    Vec3 high{-kInfinity, -kInfinity, -kInfinity};

    void Add(Vec3 p) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    void Add(const Placement& at, const Box& box) {
        for (int corner = 0; corner < 8; ++corner) {
            Vec3 p{(corner & 1) != 0 ? box.high.x : box.low.x, (corner & 2) != 0 ? box.high.y : box.low.y,
                   (corner & 4) != 0 ? box.high.z : box.low.z};
            Add(Place(at, p));
        }
    }
};

Box BoxOf(const Solid& solid) {
    Box box;
    for (const Face& face : solid.faces) {
        for (const Vec3 p : face.points) { box.Add(p); }
    }
    return box;
}

class SummaryWriter {
public:
    SummaryWriter(const StpjOptions& o, ByteSink* sink) : o_(o), out_(sink) {
        MachineOptions m = o.machine;
        most_ = o.occurrences.value_or(std::numeric_limits<int>::max());
        if (o.occurrences) { m.uses = (most_ + m.parts - 1) / m.parts; }
        machine_ = MakeMachine(m);
    }

    SummaryCounts Write() {
        shown_.resize(machine_.nodes.size());
        nodeProducts_.resize(machine_.nodes.size());
        partProducts_.resize(machine_.parts.size());
        partBoxes_.resize(machine_.parts.size());
        nodeBoxes_.resize(machine_.nodes.size());
        Count({false, 0, {}}, 0);
        for (std::size_t i = 0; i < machine_.parts.size(); ++i) {
            partBoxes_[i] = BoxOf(MakeSolid(machine_.parts[i].dims, o_.trianglesPerPart));
        }
        FindBox(0);
        WriteProducts();
        out_.BeginOccurrences(counts_.occurrences, counts_.depth);
        WriteOccurrence({false, 0, {}}, kIdentity);
        out_.End();
        return counts_;
    }

private:
    Box& BoxOfUse(const Machine::Use& use) { return (use.ofPart ? partBoxes_ : nodeBoxes_)[use.number]; }
    int& ProductOf(const Machine::Use& use) {
        return (use.ofPart ? partProducts_ : nodeProducts_)[use.number];
    }

    // Numbers the products from 1 and finds out how many uses of each node there are before the last
    // occurrence is reached.
    void Count(const Machine::Use& use, int depth) {
        ++counts_.occurrences;
        counts_.depth = std::max(counts_.depth, depth);
        int& product = ProductOf(use);
        if (product == 0) {
            product = ++counts_.products;
            products_.push_back(use);
        }
        if (use.ofPart) { return; }
        for (const Machine::Use& below : machine_.nodes[use.number].uses) {
            if (counts_.occurrences == most_) { return; }
            ++shown_[use.number];
            Count(below, depth + 1);
        }
    }

    // An assembly right at the end that has none of its components left keeps the box that it has with them.
    const Box& FindBox(std::size_t number) {
        const Machine::Node& node = machine_.nodes[number];
        const std::size_t count = shown_[number] != 0 ? shown_[number] : node.uses.size();
        Box box;
        for (std::size_t i = 0; i < count; ++i) {
            const Machine::Use& use = node.uses[i];
            if (!use.ofPart) { FindBox(use.number); }
            box.Add(use.at, BoxOfUse(use));
        }
        return nodeBoxes_[number] = box;
    }

    void WriteProducts() {
        out_.BeginProducts(counts_.products);
        for (const Machine::Use& use : products_) {
            const std::string& id =
                use.ofPart ? machine_.parts[use.number].id : machine_.nodes[use.number].id;
            const std::string& stem =
                use.ofPart ? machine_.parts[use.number].stem : machine_.nodes[use.number].stem;
            const Box& box = BoxOfUse(use);
            out_.AddProduct(id, stem.empty() ? "" : stem + ".stp",
                            {box.low.x, box.high.x, box.low.y, box.high.y, box.low.z, box.high.z});
        }
    }

    void WriteOccurrence(const Machine::Use& use, const Matrix& world) {
        out_.AddOccurrence(static_cast<int>(way_.size()), ProductOf(use), world);
        if (use.ofPart) { return; }
        for (std::size_t i = 0; i < shown_[use.number]; ++i) {
            const Machine::Use& below = machine_.nodes[use.number].uses[i];
            way_.push_back(MatrixOf(below.at));
            // From the deep end: a viewer of the assembly itself multiplies in this order, and single
            // precision would show another one.
            Matrix product = way_.back();
            for (std::size_t level = way_.size() - 1; level-- > 0;) {
                product = Product(way_[level], product);
            }
            WriteOccurrence(below, product);
            way_.pop_back();
        }
    }

    const StpjOptions& o_;
    JsonSummary out_;
    Machine machine_;
    int most_;
    SummaryCounts counts_;
    std::vector<std::size_t> shown_;     // of each node: how many of its uses are among the occurrences
    std::vector<int> nodeProducts_;      // numbers from 1; 0 where there is no occurrence
    std::vector<int> partProducts_;      // likewise
    std::vector<Machine::Use> products_; // one use of each product, by number
    std::vector<Box> partBoxes_;
    std::vector<Box> nodeBoxes_;
    std::vector<Matrix> way_; // placements from the top down to the use in hand
};

} // namespace

SummaryCounts WriteSummary(const StpjOptions& o, ByteSink* sink) {
    return SummaryWriter(o, sink).Write();
}

std::string CheckStpjOptions(const StpjOptions& o) {
    return CheckMachineOptions(o.machine);
}

int RunStpj(const StpjOptions& o) {
    SummaryCounts counts;
    if (!WriteFile(o.out, false, [&](ByteSink* sink) { counts = WriteSummary(o, sink); })) { return 1; }
    std::printf("%s: %d products, %d occurrences, depth %d\n", o.out.c_str(), counts.products,
                counts.occurrences, counts.depth);
    return 0;
}

CLI::App* AddStpjCommand(CLI::App* app, StpjOptions* o) {
    CLI::App* const stpj = app->add_subcommand("stpj", "The machine as a JSON summary of boxes");
    stpj->add_option("OUT", o->out, "File to write")->required()->option_text(" ");
    AddMachineOptions(stpj, 999999, kGroupLevels, &o->machine);
    AddNumber(stpj, "--occurrences", &o->occurrences, 1, 20000000,
              "Occurrences in all, assemblies among them, of a machine that is as large as they take")
        ->excludes(stpj->get_option("--uses"));
    AddNumber(stpj, "--triangles-per-part", &o->trianglesPerPart, 12, 100000000,
              "Triangles of each part whose box is given, about (default: 2000)");
    return stpj;
}

} // namespace tarnwick::make
