#include "write/p21_product.h"

#include <array>
#include <string>
#include <utility>

namespace tarnwick {

namespace {

EntityId WriteLengthUnit(P21Writer* out, double millimetres) {
    static constexpr std::array<std::pair<double, std::string_view>, 4> kMetric{
        {{1, ".MILLI."}, {10, ".CENTI."}, {1000, "$"}, {0.001, ".MICRO."}}};
    for (const auto& [size, prefix] : kMetric) {
        if (size == millimetres) {
            return out->AddComplex("LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(" + std::string(prefix) + ",.METRE.)");
        }
    }
    const EntityId millimetre = WriteLengthUnit(out, 1);
    const EntityId dimensions = out->Add("DIMENSIONAL_EXPONENTS", 1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
    const EntityId measure = out->Begin("LENGTH_MEASURE_WITH_UNIT");
    out->Put(P21Literal{"LENGTH_MEASURE("});
    out->Put(millimetres);
    out->Put(P21Literal{"),"});
    out->Put(millimetre);
    out->End();
    const std::string_view name = millimetres == 25.4 ? "INCH" : millimetres == 304.8 ? "FOOT" : "UNIT";
    const EntityId unit = out->Begin("");
    out->Put(P21Literal{"CONVERSION_BASED_UNIT("});
    out->Put(name);
    out->Put(',');
    out->Put(measure);
    out->Put(P21Literal{")LENGTH_UNIT()NAMED_UNIT("});
    out->Put(dimensions);
    out->Put(')');
    out->End();
    return unit;
}

EntityId WriteGeometryContext(P21Writer* out, double millimetres) {
    const EntityId length = WriteLengthUnit(out, millimetres);
    const EntityId radian = out->AddComplex("NAMED_UNIT(*)PLANE_ANGLE_UNIT()SI_UNIT($,.RADIAN.)");
    const EntityId steradian = out->AddComplex("NAMED_UNIT(*)SI_UNIT($,.STERADIAN.)SOLID_ANGLE_UNIT()");
    const EntityId accuracy = out->Add("UNCERTAINTY_MEASURE_WITH_UNIT", P21Literal{"LENGTH_MEASURE(0.001)"},
                                       length, "distance_accuracy_value", "");
    const EntityId context = out->Begin("");
    out->Put(P21Literal{"GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNCERTAINTY_ASSIGNED_CONTEXT("});
    out->Put(std::vector{accuracy});
    out->Put(P21Literal{")GLOBAL_UNIT_ASSIGNED_CONTEXT("});
    out->Put(std::vector{length, radian, steradian});
    out->Put(P21Literal{")REPRESENTATION_CONTEXT('','3D')"});
    out->End();
    return context;
}

} // namespace

ContextIds WriteContexts(P21Writer* out, const Protocol& protocol, double millimetres) {
    const EntityId application = out->Add("APPLICATION_CONTEXT", protocol.application);
    out->Add("APPLICATION_PROTOCOL_DEFINITION", "international standard", protocol.definition, protocol.year,
             application);
    ContextIds contexts;
    contexts.product = out->Add("PRODUCT_CONTEXT", "", application, "mechanical");
    contexts.definition = out->Add("PRODUCT_DEFINITION_CONTEXT", "part definition", application, "design");
    contexts.geometry = WriteGeometryContext(out, millimetres);
    return contexts;
}

ProductIds WriteProduct(P21Writer* out, const ContextIds& contexts, std::string_view id,
                        std::string_view name, std::string_view category) {
    ProductIds ids;
    ids.product = out->Add("PRODUCT", id, name, "", std::vector{contexts.product});
    out->Add("PRODUCT_RELATED_PRODUCT_CATEGORY", category, EntityId{}, std::vector{ids.product});
    const EntityId formation = out->Add("PRODUCT_DEFINITION_FORMATION", "A", "", ids.product);
    ids.definition = out->Add("PRODUCT_DEFINITION", "design", "", formation, contexts.definition);
    ids.shape = out->Add("PRODUCT_DEFINITION_SHAPE", "", "", ids.definition);
    return ids;
}

EntityId WritePlacement(P21Writer* out, const Placement& at) {
    const EntityId origin = out->Add("CARTESIAN_POINT", "", at.origin);
    const EntityId axis = out->Add("DIRECTION", "", at.z);
    const EntityId reference = out->Add("DIRECTION", "", at.x);
    return out->Add("AXIS2_PLACEMENT_3D", "", origin, axis, reference);
}

EntityId WriteShape(P21Writer* out, const ContextIds& contexts, EntityId shape,
                    const std::vector<EntityId>& items) {
    const EntityId representation = out->Add("SHAPE_REPRESENTATION", "", items, contexts.geometry);
    out->Add("SHAPE_DEFINITION_REPRESENTATION", shape, representation);
    return representation;
}

void WriteRepresentations(P21Writer* out, const ContextIds& contexts, EntityId shape,
                          const PartItems& items) {
    const EntityId world = WritePlacement(out, {});
    const EntityId own = WriteShape(out, contexts, shape, {world});
    const auto relate = [&](std::string_view keyword, const std::vector<EntityId>& list) {
        const EntityId other = out->Add(keyword, "", list, contexts.geometry);
        out->Add("SHAPE_REPRESENTATION_RELATIONSHIP", "", "", own, other);
    };
    relate("TESSELLATED_SHAPE_REPRESENTATION", items.tessellated);
    if (!items.exact.empty()) { relate("ADVANCED_BREP_SHAPE_REPRESENTATION", items.exact); }
    out->Add("MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION", "", items.styled, contexts.geometry);
}

} // namespace tarnwick
