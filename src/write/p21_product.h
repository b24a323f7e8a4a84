#pragma once

#include "write/p21_writer.h"

#include <string_view>
#include <vector>

// The entities around the geometry of a product: contexts, units, the product itself, its representations.
namespace tarnwick {

// Names of the protocol that a file follows.
struct Protocol {
    std::string_view schema; // of the file's header
    std::string_view application;
    std::string_view definition;
    int year = 0;
};

inline constexpr Protocol kAp242{"AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF { 1 0 10303 442 1 1 4 }",
                                 "managed model based 3d engineering",
                                 "ap242_managed_model_based_3d_engineering", 2014};
inline constexpr Protocol kAp209{"AP209_MULTIDISCIPLINARY_ANALYSIS_AND_DESIGN_MIM_LF { 1 0 10303 409 3 1 4 }",
                                 "multidisciplinary analysis and design",
                                 "ap209_multidisciplinary_analysis_and_design", 2014};

struct ContextIds {
    EntityId product;
    EntityId definition;
    EntityId geometry; // one length unit and radians
};
// `millimetres`: of one length unit.
ContextIds WriteContexts(P21Writer* out, const Protocol& protocol = kAp242, double millimetres = 1);

struct ProductIds {
    EntityId product;
    EntityId definition;
    EntityId shape; // PRODUCT_DEFINITION_SHAPE
};
// `category` is "part" for anything that is made or assembled, "raw material" for what it is made from.
ProductIds WriteProduct(P21Writer* out, const ContextIds& contexts, std::string_view id,
                        std::string_view name, std::string_view category);

// An AXIS2_PLACEMENT_3D with both directions.
EntityId WritePlacement(P21Writer* out, const Placement& at);

// A SHAPE_REPRESENTATION of the items, tied to a PRODUCT_DEFINITION_SHAPE. Returns the representation.
EntityId WriteShape(P21Writer* out, const ContextIds& contexts, EntityId shape,
                    const std::vector<EntityId>& items);

// What the representations of a tessellated part list.
struct PartItems {
    std::vector<EntityId> tessellated; // solids, shells and surface sets
    std::vector<EntityId> exact;       // solids that the tessellated ones link to, if any
    std::vector<EntityId> styled;
};
// The part's shape, the tessellated and the exact representation related to it, and its presentation.
void WriteRepresentations(P21Writer* out, const ContextIds& contexts, EntityId shape, const PartItems& items);

} // namespace tarnwick
