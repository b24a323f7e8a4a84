#include "support/loaded_file.h"

#include "load/load_commands.h"
#include "load/load_driver.h"
#include "report/report.h"
#include "support/capture.h"

namespace tarnwick::test {

LoadedFile::LoadedFile(const std::string& path, int useThreads) {
    LogCapture log;
    result = TraiteSTEPFile(session, path.c_str(), useThreads);
    console = log.TakeConsole();
    output = log.TakeOutput();
}

ProductNode* LoadedFile::Find(std::string_view name) const {
    for (std::int32_t i = 0; i < session.products.count; ++i) {
        ProductNode* const product = session.products.items[static_cast<std::size_t>(i)];
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
    return Names(session.products);
}

std::vector<std::string> LoadedFile::QueueNames() const {
    return Names(session.queue);
}

std::vector<std::string> LoadedFile::DrawnNames() const {
    std::vector<std::string> names;
    if (session.drawList == nullptr) { return names; }
    for (std::int32_t i = 0; i < session.drawList->count; ++i) {
        names.emplace_back(session.drawList->items[i]->product->name);
    }
    return names;
}

std::string ReportOf(const std::string& path, int useThreads) {
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
