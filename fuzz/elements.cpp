// Finite elements of any ISO 10303-21 text, and what comes back of them once they are written.
#include "harness.h"
#include "padded.h"
#include "prepare/elements/finite_elements.h"
#include "write/byte_sink.h"

#include <cmath>

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const fuzz::Padded padded(fuzz::Text(data, size));
        const prepare::ElementMesh mesh = prepare::ReadElements(ExchangeFile(padded.Text()));
        if (!mesh.values.empty() && mesh.values.size() != mesh.quads.size()) { fuzz::Finding("lost values"); }
        for (const auto& quad : mesh.quads) {
            for (const std::uint32_t node : quad) {
                if (node >= mesh.nodes.size()) { fuzz::Finding("a quad without a node"); }
            }
        }
        for (const Vec3& node : mesh.nodes) {
            if (!std::isfinite(node.x + node.y + node.z)) { fuzz::Finding("a node nowhere"); }
        }
        std::string text;
        StringSink sink(&text);
        P21Writer writer(&sink);
        prepare::WriteElementFile(mesh, "mesh", &writer);
        const fuzz::Padded written(text);
        const prepare::ElementMesh again = prepare::ReadElements(ExchangeFile(written.Text()));
        if (again.quads != mesh.quads) { fuzz::Finding("quads that don't come back"); }
    });
}
