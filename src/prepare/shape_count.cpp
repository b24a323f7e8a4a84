#include "prepare/shape_count.h"

#include "prepare/elements/finite_elements.h"
#include "prepare/part_file.h"
#include "prepare/whole.h"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <vector>

namespace tarnwick::prepare {

namespace {

class NoSink : public ByteSink {
public:
    void Write(std::string_view) override {}
    bool Close() override { return true; }
};

bool HasExactShape(const WholeProduct& product) {
    return std::any_of(product.shape.begin(), product.shape.end(),
                       [](const ShapeItem& item) { return item.kind == ShapeKind::kExact; });
}

// Nothing where some of the shape can't be had.
std::optional<std::size_t> CountElements(const ExchangeFile& file) {
    const ElementMesh mesh = ReadElements(file);
    for (const UndrawnElements& undrawn : mesh.undrawn) {
        if (undrawn.isShape) { return std::nullopt; }
    }
    return 2 * mesh.quads.size();
}
std::optional<std::size_t> CountPart(const PartSource& source, const WholeProduct& product) {
    NoSink sink;
    const PartResult result = WritePart(
        source, {product.name, product.shape, product.turn, product.style, product.context, 1, nullptr},
        &sink);
    if (HasShapeLoss(result.losses)) { return std::nullopt; }
    return result.triangles;
}

// Those that are used and have shape, file by file.
std::vector<std::size_t> ShownProducts(const Whole& whole, const std::vector<std::size_t>& places) {
    std::vector<std::size_t> shown;
    for (std::size_t i = 0; i < whole.products.size(); ++i) {
        if (places[i] > 0 && !whole.products[i].shape.empty()) { shown.push_back(i); }
    }
    std::stable_sort(shown.begin(), shown.end(), [&](std::size_t a, std::size_t b) {
        return whole.products[a].file < whole.products[b].file;
    });
    return shown;
}

ShapeCount Count(const Whole& whole, const std::atomic<bool>* cancel) {
    ShapeCount count;
    const std::vector<std::size_t> places = PlacesOf(whole);
    const std::vector<std::size_t> shown = ShownProducts(whole, places);
    for (const std::size_t i : shown) {
        if (HasExactShape(whole.products[i])) { return count; }
    }
    std::size_t open = whole.files.size(); // the place of the file
    std::unique_ptr<LoadedSource> again;
    const ExchangeFile* file = nullptr;
    std::optional<Styles> styles;
    for (const std::size_t i : shown) {
        if (cancel != nullptr && *cancel) { return count; }
        const WholeProduct& product = whole.products[i];
        const WholeFileEntry& entry = whole.files[product.file];
        if (product.file != open) {
            open = product.file;
            styles.reset();
            again = entry.source != nullptr ? nullptr : LoadSource(entry.path, entry.member);
            file = again != nullptr ? again->file.get() : entry.source->file.get();
            if (file == nullptr) { return count; }
            styles.emplace(*file);
        }
        const std::optional<std::size_t> triangles =
            product.shape[0].kind == ShapeKind::kElements
                ? CountElements(*file)
                : CountPart({*file, entry.structure, *styles}, product);
        if (!triangles) { return count; }
        count.placed += places[i] * *triangles;
    }
    count.isAll = cancel == nullptr || !*cancel; // else some of the whole may not be read
    return count;
}

} // namespace

ShapeCount CountShape(const std::string& path, const std::atomic<bool>* cancel) {
    try {
        const Whole whole = LoadWhole(path, cancel);
        if (!whole.error.empty() || HasShapeLoss(whole.losses)) { return {}; }
        return Count(whole, cancel);
    } catch (const std::bad_alloc&) { return {}; }
}

} // namespace tarnwick::prepare
