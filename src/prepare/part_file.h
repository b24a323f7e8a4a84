#pragma once

#include "exchange/exchange_file.h"
#include "mesher/mesher.h"
#include "prepare/shape/styles.h"
#include "prepare/structure/structure.h"
#include "write/byte_sink.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace tarnwick::prepare {

// The file that holds a part's shape, and what it says of products and styles.
struct PartSource {
    const ExchangeFile& file;
    const FileStructure& structure;
    Styles& styles;
};

struct PartOptions {
    std::string name; // of the product as it is written
    std::span<const ShapeItem> shape;
    Transform turn;          // of the whole part; mirrors or scales it
    std::uint64_t style = 0; // the item whose style its shape has where that has none of its own; 0 for none
    std::uint64_t context = 0; // in which its items have other styles; 0 for none
    double unit = 1;           // millimetres of one length unit of what is written
    Mesher* mesher = nullptr;  // null where there is no kernel
};

struct PartResult {
    std::size_t bodies = 0;
    std::size_t faces = 0;
    std::size_t triangles = 0;
    std::vector<Loss> losses;
    bool isCancelled = false;
};

// Writes a part file in the viewer's form; one without a triangle is of no use. The sink stays open.
PartResult WritePart(const PartSource& source, const PartOptions& options, ByteSink* sink);

} // namespace tarnwick::prepare
