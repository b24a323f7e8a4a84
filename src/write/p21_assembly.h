#pragma once

#include "write/p21_product.h"

#include <string_view>

// Products that use others, and products that another file describes.
namespace tarnwick {

// What all references of a file share.
struct ReferenceIds {
    EntityId documentType;
    EntityId locationRole;
    EntityId source;
    EntityId objectRole;
};
ReferenceIds WriteReferenceRoles(P21Writer* out);

// A product as one that uses others or is used: its origin is an item of its representation.
struct ComponentIds {
    ProductIds product;
    EntityId origin;
    EntityId representation;
};

// A component that another file describes. `file` is its name from the folder of this one; the product in it
// has the same id, which joins the two.
ComponentIds WriteExternal(P21Writer* out, const ContextIds& contexts, const ReferenceIds& references,
                           std::string_view id, std::string_view name, std::string_view file);

// The use of a child at a place, which is an item of the parent's representation. `number` is the use's own
// in this file.
void WriteUse(P21Writer* out, int number, const ComponentIds& parent, const ComponentIds& child,
              EntityId place);

} // namespace tarnwick
