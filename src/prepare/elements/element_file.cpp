#include "prepare/elements/finite_elements.h"
#include "write/p21_product.h"

#include <map>

namespace tarnwick::prepare {

namespace {

constexpr std::string_view kProgram = "tarnwick-prepare";

class ElementFileWriter {
public:
    ElementFileWriter(const ElementMesh& mesh, std::string_view name, P21Writer* out)
        : mesh_(mesh), name_(name), out_(*out) {}

    void Write() {
        out_.Header({"finite elements", name_, kAp209.schema, kProgram});
        WriteModel();
        WriteNodes();
        for (std::size_t i = 0; i < mesh_.quads.size(); ++i) { WriteQuad(i); }
        out_.Footer();
    }

private:
    void WriteModel() {
        const ContextIds contexts = WriteContexts(&out_, kAp209);
        context_ = contexts.geometry;
        product_ = WriteProduct(&out_, contexts, name_, name_, "part");
        const EntityId origin = out_.Add("CARTESIAN_POINT", "", Vec3{0, 0, 0});
        const EntityId axis = out_.Add("DIRECTION", "", Vec3{0, 0, 1});
        const EntityId reference = out_.Add("DIRECTION", "", Vec3{1, 0, 0});
        system_ = out_.Add("FEA_AXIS2_PLACEMENT_3D", "0", origin, axis, reference, P21Literal{".CARTESIAN."},
                           "basic");
        model_ = out_.Add("FEA_MODEL_3D", name_, std::vector{system_}, context_, kProgram,
                          P21Literal{"('none')"}, "", "");
        const EntityId definition =
            out_.Add("FEA_MODEL_DEFINITION", name_, EntityId{}, product_.shape, P21Literal{".U."});
        const EntityId response = out_.Add("STRUCTURAL_RESPONSE_PROPERTY", name_, EntityId{}, definition);
        out_.Add("STRUCTURAL_RESPONSE_PROPERTY_DEFINITION_REPRESENTATION", response, model_);
        material_ = out_.Add("ELEMENT_MATERIAL", "0", "unspecified", P21Literal{"()"});
        elementSystem_ = out_.Add("PARAMETRIC_SURFACE_3D_ELEMENT_COORDINATE_SYSTEM", "", 1, 0.0);
        elementContext_ = out_.Add("PARAMETRIC_REPRESENTATION_CONTEXT", "element", "parametric");
        descriptor_ =
            out_.Add("SURFACE_3D_ELEMENT_DESCRIPTOR", P21Literal{".LINEAR."}, "linear quadrilateral",
                     P21Literal{"((ENUMERATED_SURFACE_ELEMENT_PURPOSE(.MEMBRANE_DIRECT.)))"},
                     P21Literal{".QUADRILATERAL."});
    }

    // Point and node take turns, so the numbers of the nodes needn't be kept.
    void WriteNodes() {
        firstNode_ = out_.LastId().number + 2;
        for (std::size_t i = 0; i < mesh_.nodes.size(); ++i) {
            const std::string number = std::to_string(i + 1);
            const EntityId point = out_.Add("CARTESIAN_POINT", number, mesh_.nodes[i]);
            out_.Add("NODE", number, std::vector{point}, context_, model_);
        }
        const EntityId set = out_.Begin("NODE_SET");
        out_.Put(P21Literal{"'all nodes',"});
        for (std::size_t i = 0; i < mesh_.nodes.size(); ++i) {
            out_.Put(i == 0 ? '(' : ',');
            out_.Put(Node(static_cast<std::uint32_t>(i)));
        }
        out_.Put(P21Literal{mesh_.nodes.empty() ? "()" : ")"});
        out_.End();
        const EntityId points =
            out_.Add("POINT_REPRESENTATION", "nodes", std::vector{set, system_}, context_);
        out_.Add("SHAPE_DEFINITION_REPRESENTATION", product_.shape, points);
    }
    EntityId Node(std::uint32_t number) const {
        return {static_cast<std::int32_t>(static_cast<std::uint32_t>(firstNode_) + 2 * number)};
    }

    void WriteQuad(std::size_t quad) {
        std::vector<EntityId> nodes;
        for (const std::uint32_t corner : mesh_.quads[quad]) { nodes.push_back(Node(corner)); }
        std::array<float, 4> thickness{};
        thickness.fill(static_cast<float>(kPlainThickness));
        if (!mesh_.values.empty()) { thickness = mesh_.values[quad]; }
        const EntityId property = Property(thickness);
        out_.Add("SURFACE_3D_ELEMENT_REPRESENTATION", std::to_string(quad + 1), std::vector{elementSystem_},
                 elementContext_, nodes, model_, descriptor_, property, material_);
    }

    // Elements of the same thicknesses share their property.
    EntityId Property(const std::array<float, 4>& thickness) {
        EntityId& known = properties_[thickness];
        if (known.number == 0) {
            std::vector<EntityId> sections;
            for (const float t : thickness) { sections.push_back(Section(t)); }
            const EntityId field = out_.Add("SURFACE_SECTION_FIELD_VARYING", sections, P21Literal{".F."});
            known = out_.Add("SURFACE_ELEMENT_PROPERTY", std::to_string(properties_.size()), "", field);
        }
        return known;
    }
    EntityId Section(float thickness) {
        EntityId& known = sections_[thickness];
        if (known.number == 0) {
            const P21Literal none{"UNSPECIFIED_VALUE(.UNSPECIFIED.)"};
            known = out_.Add("UNIFORM_SURFACE_SECTION", none, none, none, static_cast<double>(thickness),
                             none, none);
        }
        return known;
    }

    const ElementMesh& mesh_;
    std::string_view name_;
    P21Writer& out_;
    ProductIds product_;
    EntityId context_;
    EntityId system_;
    EntityId model_;
    EntityId material_;
    EntityId elementSystem_;
    EntityId elementContext_;
    EntityId descriptor_;
    std::int32_t firstNode_ = 0;
    std::map<float, EntityId> sections_;
    std::map<std::array<float, 4>, EntityId> properties_;
};

} // namespace

void WriteElementFile(const ElementMesh& mesh, std::string_view name, P21Writer* out) {
    ElementFileWriter(mesh, name, out).Write();
}

} // namespace tarnwick::prepare
