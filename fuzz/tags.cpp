// One STEP XML text, read by way of its usual tags and plainly: both must lead to the same tree.
#include "harness.h"
#include "platform/text_block.h"
#include "xml/stpx_document.h"

#include <cstring>

using namespace tarnwick;

namespace {

struct Reading {
    Reading(std::string_view text, bool plainly) {
        assemblies.Allocate();
        parts.Allocate();
        document.text = block.Get(text.size());
        if (!text.empty()) { std::memcpy(document.text, text.data(), text.size()); }
        document.size = text.size();
        document.name = "x.stpx";
        document.plainly = plainly;
        try {
            problem = ReadStpxDocument(document, 0, assemblies, parts, arena);
        } catch (const fuzz::ProgramEnd&) { problem = "stands still"; }
    }

    TextBlock block;
    StpxDocument document;
    NamedProductTable assemblies;
    ProductTable parts;
    Arena arena;
    const char* problem = nullptr;
};

// The place of a product in its document; -1 for none.
std::ptrdiff_t PlaceOf(const StpxDocument& document, const ProductNode* product) {
    for (std::size_t i = 0; product != nullptr && i < document.products.size(); ++i) {
        if (document.products[i] == product) { return static_cast<std::ptrdiff_t>(i); }
    }
    return -1;
}

bool AreEqual(const Reading& a, const Reading& b) {
    if ((a.problem == nullptr) != (b.problem == nullptr) ||
        (a.problem != nullptr && std::strcmp(a.problem, b.problem) != 0)) {
        return false;
    }
    if (a.problem != nullptr) { return true; }
    if (a.document.products.size() != b.document.products.size() ||
        PlaceOf(a.document, a.document.root) != PlaceOf(b.document, b.document.root)) {
        return false;
    }
    for (std::size_t i = 0; i < a.document.products.size(); ++i) {
        const ProductNode* const p = a.document.products[i];
        const ProductNode* const q = b.document.products[i];
        if ((p == nullptr) != (q == nullptr)) { return false; }
        if (p == nullptr) { continue; }
        if (std::strcmp(p->name, q->name) != 0 || p->isRoot != q->isRoot ||
            p->occurrenceCount != q->occurrenceCount) {
            return false;
        }
        for (std::int32_t k = 0; k < p->occurrenceCount; ++k) {
            const Occurrence& u = *p->occurrences[k];
            const Occurrence& v = *q->occurrences[k];
            if (std::memcmp(u.rotation, v.rotation, sizeof u.rotation) != 0 ||
                std::memcmp(u.translation, v.translation, sizeof u.translation) != 0 ||
                std::strcmp(u.relatedUid, v.relatedUid) != 0 ||
                PlaceOf(a.document, u.child) != PlaceOf(b.document, v.child)) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const Reading usual(fuzz::Text(data, size), false);
        const Reading plain(fuzz::Text(data, size), true);
        if (!AreEqual(usual, plain)) { fuzz::Finding("two readings of one text differ"); }
    });
}
