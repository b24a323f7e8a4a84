#include "support/loaded_file.h"
#include "formats/load_commands.h"

#include "load/step_driver.h"
#include "load/view_setup.h"
#include "report/report.h"
#include "support/capture.h"

namespace tarnwick::test {

LoadedScene NewScene() {
    LoadedScene scene;
    scene.scene = std::make_unique<SceneMemory>();
    return scene;
}

LoadedFile::LoadedFile(const std::string& path, bool useThreads) {
    LogCapture log;
    result = TraiteSTEPFile(session, path.c_str(), useThreads);
    console = log.TakeConsole();
    output = log.TakeOutput();
}

ProductNode* LoadedFile::Find(std::string_view name) const {
    for (std::int32_t i = 0; i < session.tree.products.count; ++i) {
        ProductNode* const product = session.tree.products.items[static_cast<std::size_t>(i)];
        if (product->name == name) { return product; }
    }
    return nullptr;
}

namespace {

std::vector<std::string> Names(const ProductArray& products) {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < products.count; ++i) {
        names.emplace_back(products.items[static_cast<std::size_t>(i)]->name);
    }
    return names;
}

} // namespace

std::vector<std::string> LoadedFile::ProductNames() const {
    return Names(session.tree.products);
}

std::vector<std::string> LoadedFile::QueueNames() const {
    std::vector<std::string> names;
    const PartQueue& queue = session.tree.queue;
    for (std::int32_t i = 0; i < queue.Count().all; ++i) { names.emplace_back(queue.At(i)->name); }
    return names;
}

std::vector<std::string> LoadedFile::DrawnNames() const {
    std::vector<std::string> names;
    if (session.loaded.drawList == nullptr) { return names; }
    for (std::int32_t i = 0; i < session.loaded.drawList->count; ++i) {
        names.emplace_back(session.loaded.drawList->items[i]->product->name);
    }
    return names;
}

std::string ReportOf(const std::string& path, bool useThreads) {
    const LogCapture log;
    SceneView view;
    LoadStepFile(view, path.c_str(), useThreads);
    return SceneReport(view, path, nullptr, true);
}

std::vector<std::string> ChildNames(const ProductNode& product) {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
        names.emplace_back(product.occurrences[i]->child->name);
    }
    return names;
}

} // namespace tarnwick::test
