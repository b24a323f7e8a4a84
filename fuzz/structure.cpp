// The product structure of a STEP XML document.
#include "harness.h"
#include "prepare/xml/xml_structure.h"

#include <cmath>

using namespace tarnwick;

namespace {

void ExpectNoCircle(const prepare::FileStructure& structure) {
    std::vector<std::size_t> users(structure.products.size(), 0);
    for (const prepare::FileProduct& product : structure.products) {
        for (const prepare::FileUse& use : product.uses) { ++users.at(use.child); }
    }
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < users.size(); ++i) {
        if (users[i] == 0) { open.push_back(i); }
    }
    for (std::size_t i = 0; i < open.size(); ++i) {
        for (const prepare::FileUse& use : structure.products[open[i]].uses) {
            if (--users[use.child] == 0) { open.push_back(use.child); }
        }
    }
    if (open.size() != users.size()) { fuzz::Finding("a circle of products"); }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        prepare::FileStructure structure;
        std::string error;
        if (!prepare::ReadXmlStructure(fuzz::Text(data, size), &structure, &error)) {
            if (error.empty()) { fuzz::Finding("a failure without a word"); }
            return;
        }
        for (const prepare::FileProduct& product : structure.products) {
            for (const prepare::FileUse& use : product.uses) {
                double sum = use.at.move.x + use.at.move.y + use.at.move.z;
                for (const double number : use.at.linear) { sum += number; }
                if (!std::isfinite(sum)) { fuzz::Finding("a placement nowhere"); }
            }
        }
        for (const std::size_t root : structure.roots) {
            if (root >= structure.products.size()) { fuzz::Finding("a root that isn't there"); }
        }
        if (structure.roots.empty() != structure.products.empty()) {
            fuzz::Finding("products without a root");
        }
        ExpectNoCircle(structure);
    });
}
