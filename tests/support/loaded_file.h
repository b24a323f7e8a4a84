#pragma once

#include "load/load_session.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

// A record that a driver can fill.
LoadedScene NewScene();

// A P21 file that the driver has loaded, with what it printed.
struct LoadedFile {
    explicit LoadedFile(const std::string& path, bool useThreads = false);

    // The first of the session's products with this name; null when there is none.
    ProductNode* Find(std::string_view name) const;
    // The names of the session's products, in the order of its list.
    std::vector<std::string> ProductNames() const;
    // The names on the queue, in its order.
    std::vector<std::string> QueueNames() const;
    // The names of the products whose meshes the draw list places, in its order.
    std::vector<std::string> DrawnNames() const;

    LoadedScene loaded = NewScene();
    LoadSession session{loaded};
    int result = -1;
    std::string console;
    std::string output;
};

// The scene report, with all arrays, of a P21 file that a new view has loaded. Nothing is printed.
std::string ReportOf(const std::string& path, bool useThreads);

// The names of the children of a product, in the order of its occurrences.
std::vector<std::string> ChildNames(const ProductNode& product);

} // namespace tarnwick::test
