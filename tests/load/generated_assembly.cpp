#include "load/generated_assembly.h"

#include "support/assembly_text.h"

#include <map>
#include <random>
#include <set>

namespace tarnwick::test {

namespace {

constexpr WholeMatrix kUnmoved{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

WholeMatrix Product(const WholeMatrix& a, const WholeMatrix& b) {
    WholeMatrix out{};
    for (std::size_t c = 0; c < 4; ++c) {
        for (std::size_t r = 0; r < 4; ++r) {
            for (std::size_t k = 0; k < 4; ++k) { out[4 * c + r] += a[4 * k + r] * b[4 * c + k]; }
        }
    }
    return out;
}

// One of the 24 turns that take axes to axes, somewhere.
struct Move {
    Frame frame;
    WholeMatrix matrix;
};

Move RandomMove(std::mt19937& random) {
    const std::size_t x = random() % 3;
    const std::size_t z = (x + 1 + random() % 2) % 3;
    std::array<int, 3> columnX{};
    std::array<int, 3> columnZ{};
    columnX[x] = random() % 2 == 0 ? 1 : -1;
    columnZ[z] = random() % 2 == 0 ? 1 : -1;
    std::array<int, 3> columnY{};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t j = (i + 1) % 3;
        const std::size_t k = (i + 2) % 3;
        columnY[i] = columnZ[j] * columnX[k] - columnZ[k] * columnX[j];
    }
    Move move;
    move.matrix = kUnmoved;
    for (std::size_t i = 0; i < 3; ++i) {
        const int place = static_cast<int>(random() % 201) - 100;
        move.matrix[i] = columnX[i];
        move.matrix[4 + i] = columnY[i];
        move.matrix[8 + i] = columnZ[i];
        move.matrix[12 + i] = place;
        move.frame.location[i] = place;
        move.frame.axis[i] = columnZ[i];
        move.frame.reference[i] = columnX[i];
    }
    return move;
}

struct Use {
    std::size_t child;
    Move move;
};

struct Node {
    enum Kind { kSubFile, kLocal, kPart } kind;
    std::string name;
    std::string fileName;
    bool missing = false;
    int triangles = 0;
    std::vector<Use> uses;
};

} // namespace

GeneratedAssembly::GeneratedAssembly(unsigned seed) {
    std::mt19937 random(seed);
    // Products use products of the levels below them only; level 0 is the root, the last has the parts.
    const std::size_t levels = 2 + random() % 3;
    std::vector<Node> nodes;
    std::vector<std::size_t> levelStart;
    for (std::size_t level = 0; level <= levels; ++level) {
        levelStart.push_back(nodes.size());
        const std::size_t count = level == 0 ? 1 : level == levels ? 4 + random() % 8 : 1 + random() % 4;
        for (std::size_t i = 0; i < count; ++i) {
            Node node;
            node.kind = level == levels ? Node::kPart : random() % 4 == 0 ? Node::kLocal : Node::kSubFile;
            node.name = "L" + std::to_string(level) + "." + std::to_string(i);
            node.fileName = "file " + node.name + ".stp";
            if (level == 0) { node.kind = Node::kSubFile; }
            if (node.kind == Node::kPart) {
                node.triangles = 1 + static_cast<int>(random() % 20);
                node.missing = random() % 12 == 0;
            }
            nodes.push_back(node);
        }
    }
    levelStart.push_back(nodes.size());
    for (std::size_t level = 0; level < levels; ++level) {
        for (std::size_t i = levelStart[level]; i < levelStart[level + 1]; ++i) {
            const std::size_t from = levelStart[level + 1];
            const std::size_t count = 2 + random() % 4;
            for (std::size_t u = 0; u < count; ++u) {
                nodes[i].uses.push_back({from + random() % (nodes.size() - from), RandomMove(random)});
            }
        }
    }

    // A product without a file has its uses in each file that uses it, and there it is a product of its own.
    std::set<std::size_t> read;
    const auto writeFile = [&](std::size_t file) {
        AssemblyText text(1 + static_cast<int>(random() % 500));
        std::map<std::size_t, int> definitions;
        std::vector<std::size_t> toDo{file};
        const auto define = [&](std::size_t node) {
            const auto [place, isNew] = definitions.emplace(node, 0);
            if (!isNew) { return place->second; }
            place->second = text.Product(nodes[node].name);
            if (node == file) { return place->second; }
            if (nodes[node].kind == Node::kLocal) {
                toDo.push_back(node);
            } else {
                text.File(place->second, nodes[node].fileName);
                read.insert(node);
            }
            return place->second;
        };
        while (!toDo.empty()) {
            const std::size_t parent = toDo.back();
            toDo.pop_back();
            const int parentDefinition = define(parent);
            for (const Use& use : nodes[parent].uses) {
                text.Use(parentDefinition, define(use.child), use.move.frame);
            }
        }
        return folder.Write(file == 0 ? "top.stp" : nodes[file].fileName, text.Text());
    };
    path = writeFile(0);
    std::set<std::size_t> written{0};
    for (bool more = true; more;) {
        more = false;
        for (const std::size_t node : std::set<std::size_t>(read)) {
            if (!written.insert(node).second) { continue; }
            more = true;
            if (nodes[node].kind == Node::kSubFile) {
                writeFile(node);
                ++files;
            } else if (nodes[node].missing) {
                ++missing;
            } else {
                folder.Write(nodes[node].fileName, PlateText(nodes[node].triangles));
                ++files;
                ++parts;
            }
        }
    }

    struct Visit {
        std::size_t node;
        WholeMatrix matrix;
    };
    std::vector<Visit> visits{{0, kUnmoved}};
    while (!visits.empty()) {
        const Visit visit = visits.back();
        visits.pop_back();
        const Node& node = nodes[visit.node];
        if (node.kind == Node::kPart && !node.missing) {
            items.push_back({node.name, visit.matrix});
            triangles += node.triangles;
        }
        for (const Use& use : node.uses) {
            visits.push_back({use.child, Product(visit.matrix, use.move.matrix)});
        }
    }
}

} // namespace tarnwick::test
