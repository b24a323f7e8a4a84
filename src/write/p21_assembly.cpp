#include "write/p21_assembly.h"

#include <string>

namespace tarnwick {

namespace {

// By which file the definition of a product is described.
void WriteReference(P21Writer* out, const ReferenceIds& references, EntityId definition,
                    std::string_view file) {
    const EntityId document =
        out->Add("DOCUMENT_FILE", file, "", "", references.documentType, "", EntityId{});
    out->Add("DOCUMENT_REPRESENTATION_TYPE", "digital", document);
    out->Add("APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT", file, references.locationRole, references.source,
             std::vector{document});
    const EntityId reference = out->Add("APPLIED_DOCUMENT_REFERENCE", document, "", std::vector{definition});
    out->Add("ROLE_ASSOCIATION", references.objectRole, reference);
}

EntityId WriteRelationship(P21Writer* out, EntityId child, EntityId parent, EntityId transformation) {
    const EntityId relationship = out->Begin("");
    out->Put(P21Literal{"REPRESENTATION_RELATIONSHIP('','',"});
    out->Put(child);
    out->Put(',');
    out->Put(parent);
    out->Put(P21Literal{")REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION("});
    out->Put(transformation);
    out->Put(P21Literal{")SHAPE_REPRESENTATION_RELATIONSHIP()"});
    out->End();
    return relationship;
}

} // namespace

ReferenceIds WriteReferenceRoles(P21Writer* out) {
    ReferenceIds ids;
    ids.documentType = out->Add("DOCUMENT_TYPE", "geometry");
    ids.locationRole = out->Add("IDENTIFICATION_ROLE", "external document id and location", EntityId{});
    ids.source = out->Add("EXTERNAL_SOURCE", P21Literal{"IDENTIFIER('')"});
    ids.objectRole = out->Add("OBJECT_ROLE", "mandatory", EntityId{});
    return ids;
}

ComponentIds WriteExternal(P21Writer* out, const ContextIds& contexts, const ReferenceIds& references,
                           std::string_view id, std::string_view name, std::string_view file) {
    ComponentIds ids;
    ids.product = WriteProduct(out, contexts, id, name, "part");
    ids.origin = WritePlacement(out, {});
    ids.representation = WriteShape(out, contexts, ids.product.shape, {ids.origin});
    WriteReference(out, references, ids.product.definition, file);
    return ids;
}

void WriteUse(P21Writer* out, int number, const ComponentIds& parent, const ComponentIds& child,
              EntityId place) {
    const EntityId transformation = out->Add("ITEM_DEFINED_TRANSFORMATION", "", "", child.origin, place);
    const EntityId relationship =
        WriteRelationship(out, child.representation, parent.representation, transformation);
    const std::string digits = std::to_string(number);
    const EntityId occurrence = out->Add("NEXT_ASSEMBLY_USAGE_OCCURRENCE", digits, "use " + digits, "",
                                         parent.product.definition, child.product.definition, EntityId{});
    const EntityId shape = out->Add("PRODUCT_DEFINITION_SHAPE", "", "", occurrence);
    out->Add("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION", relationship, shape);
}

} // namespace tarnwick
