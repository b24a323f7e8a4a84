#include "product/structure_run.h"

#include <cstdlib>

namespace tarnwick::test {

int StructureRun::Read(std::string_view text, bool isTopFile) {
    LogCapture log;
    ReaderWorkspace workspace;
    StepModel model(workspace, folder_.Write("structure.stp", text));
    if (model.Read() != StepModel::kRead) { std::abort(); }
    const int result = ReadAssemblyStructure(tree, model, isTopFile, memory.Main());
    console += log.TakeConsole();
    return result;
}

std::vector<std::string> StructureRun::Names(const ProductArray& products) {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < products.count; ++i) {
        names.emplace_back(products.items[static_cast<std::size_t>(i)]->name);
    }
    return names;
}

std::vector<std::string> StructureRun::QueueNames() const {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < tree.queue.Count().all; ++i) { names.emplace_back(tree.queue.At(i)->name); }
    return names;
}

ProductNode* StructureRun::Find(std::string_view name) const {
    for (std::int32_t i = 0; i < tree.products.count; ++i) {
        if (Product(i)->name == name) { return Product(i); }
    }
    return nullptr;
}

std::vector<std::string> ChildrenOf(const ProductNode& product) {
    std::vector<std::string> names;
    for (std::int32_t i = 0; i < product.occurrenceCount; ++i) {
        names.emplace_back(product.occurrences[i]->child->name);
    }
    return names;
}

Chain::Chain() {
    lines = {
        {kTopProduct, "PRODUCT('top','x',$,(#90))"},
        {kTopFormation, "PRODUCT_DEFINITION_FORMATION('','',#1)"},
        {kTop, "PRODUCT_DEFINITION('','',#2,#90)"},
        {kLeafProduct, "PRODUCT('leaf','x',$,(#90))"},
        {kLeafFormation, "PRODUCT_DEFINITION_FORMATION('','',#4)"},
        {kLeaf, "PRODUCT_DEFINITION('','',#5,#90)"},
        {kOrigin, "CARTESIAN_POINT('',(0.,0.,0.))"},
        {kAxis, "DIRECTION('',(0.,0.,1.))"},
        {kReference, "DIRECTION('',(1.,0.,0.))"},
        {kSource, "AXIS2_PLACEMENT_3D('',#7,#8,#9)"},
        {kPlace, "CARTESIAN_POINT('',(1.,2.,3.))"},
        {kTarget, "AXIS2_PLACEMENT_3D('',#11,#8,#9)"},
        {kTransform, "ITEM_DEFINED_TRANSFORMATION('','',#10,#12)"},
        {kUsage, "NEXT_ASSEMBLY_USAGE_OCCURRENCE('u','n','d',#3,#6,$)"},
        {kShape, "PRODUCT_DEFINITION_SHAPE('','d',#14)"},
        {kRelationship, "(REPRESENTATION_RELATIONSHIP('','',#91,#92)REPRESENTATION_RELATIONSHIP_WITH_"
                        "TRANSFORMATION(#13)SHAPE_REPRESENTATION_RELATIONSHIP())"},
        {kContext, "CONTEXT_DEPENDENT_SHAPE_REPRESENTATION(#16,#15)"},
    };
}

std::string Chain::Text() const {
    Lines data;
    for (const auto& [id, entity] : lines) { data.push_back("#" + std::to_string(id) + "=" + entity + ";"); }
    return P21Text(data);
}

std::string Chain::With(int id, const std::string& entity) const {
    Chain other = *this;
    other.lines[id] = entity;
    return other.Text();
}

std::string Chain::Without(int id) const {
    Chain other = *this;
    other.lines.erase(id);
    return other.Text();
}

} // namespace tarnwick::test
