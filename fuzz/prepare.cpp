// An ISO 10303-21 text on its way into the viewer's form, without the geometry kernel: its structure, its
// tessellation and its styles. What is written must be sound to the strict check.
#include "exchange/strict_check.h"
#include "harness.h"
#include "padded.h"
#include "prepare/part_file.h"
#include "prepare/structure/p21_structure.h"
#include "write/byte_sink.h"

#include <string>

using namespace tarnwick;

namespace {

// Sets in sets multiply; no sound text of this size has more shapes than this.
constexpr std::size_t kMostShapes = 200;

void WriteParts(const ExchangeFile& file, const prepare::FileStructure& structure) {
    prepare::Styles styles(file);
    std::size_t shapes = 0;
    for (const prepare::FileProduct& product : structure.products) {
        for (const prepare::FileUse& use : product.uses) {
            if (use.child >= structure.products.size()) { fuzz::Finding("a use of no product"); }
        }
        shapes += product.shape.size();
        if (product.shape.empty() || shapes > kMostShapes) { continue; }
        std::string text;
        StringSink sink(&text);
        const prepare::PartResult result = prepare::WritePart(
            {file, structure, styles}, {"part", product.shape, {}, 0, 0, structure.unit, nullptr}, &sink);
        if (result.triangles == 0) { continue; }
        const fuzz::Padded written(text);
        if (!CheckStrictly(written.Text(), 1).empty()) { fuzz::Finding("a part that isn't sound"); }
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const fuzz::Padded text(fuzz::Text(data, size));
        const ExchangeFile file(text.Text());
        const prepare::FileStructure structure = prepare::ReadP21Structure(file);
        for (const std::size_t root : structure.roots) {
            if (root >= structure.products.size()) { fuzz::Finding("a root that isn't there"); }
        }
        WriteParts(file, structure);
    });
}
