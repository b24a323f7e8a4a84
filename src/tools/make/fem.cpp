#include "tools/make/fem.h"

#include "tools/make/options.h"
#include "tools/make/output.h"
#include "tools/make/panel.h"
#include "write/p21_product.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace tarnwick::make {

namespace {

class FemWriter {
public:
    FemWriter(const FemOptions& o, P21Writer* out) : o_(o), panel_(o.quads, o.seed), out_(*out) {}

    void Write() {
        out_.Header({"sample shell mesh", "PANEL", kAp209.schema, kProgram});
        WriteModel();
        WriteNodes();
        WriteNodeSet();
        WriteElements();
        out_.Footer();
    }

private:
    void WriteModel() {
        const ContextIds contexts = WriteContexts(&out_, kAp209);
        context_ = contexts.geometry;
        product_ = WriteProduct(&out_, contexts, "PANEL", "Panel with bulge", "part");
        const EntityId origin = out_.Add("CARTESIAN_POINT", "", Vec3{0, 0, 0});
        const EntityId axis = out_.Add("DIRECTION", "", Vec3{0, 0, 1});
        const EntityId reference = out_.Add("DIRECTION", "", Vec3{1, 0, 0});
        system_ = out_.Add("FEA_AXIS2_PLACEMENT_3D", "0", origin, axis, reference, P21Literal{".CARTESIAN."},
                           "basic");
        model_ = out_.Add("FEA_MODEL_3D", "panel", std::vector{system_}, context_, kProgram,
                          P21Literal{"('none')"}, "", "linear static");
        const EntityId definition =
            out_.Add("FEA_MODEL_DEFINITION", "panel", EntityId{}, product_.shape, P21Literal{".U."});
        const EntityId response = out_.Add("STRUCTURAL_RESPONSE_PROPERTY", "panel", EntityId{}, definition);
        out_.Add("STRUCTURAL_RESPONSE_PROPERTY_DEFINITION_REPRESENTATION", response, model_);
        WriteMaterial();
        WriteDescriptor();
    }

    // Sheet steel: modulus of elasticity in N/mm2 and Poisson's ratio.
    void WriteMaterial() {
        const EntityId object = out_.Add("CHARACTERIZED_OBJECT", "steel", EntityId{});
        const EntityId property = out_.Add("MATERIAL_PROPERTY", "elasticity", EntityId{}, object);
        const EntityId elasticity = out_.Add("FEA_LINEAR_ELASTICITY", "",
                                             P21Literal{"FEA_ISOTROPIC_SYMMETRIC_TENSOR4_3D((210000.,0.3))"});
        const EntityId representation = out_.Add("REPRESENTATION", "", std::vector{elasticity}, context_);
        const EntityId environment = WriteEnvironment();
        const EntityId used =
            out_.Add("FEA_MATERIAL_PROPERTY_REPRESENTATION", property, representation, environment);
        material_ = out_.Add("ELEMENT_MATERIAL", "M1", "steel", std::vector{used});
    }
    EntityId WriteEnvironment() {
        const EntityId kelvin =
            out_.AddComplex("NAMED_UNIT(*)SI_UNIT($,.KELVIN.)THERMODYNAMIC_TEMPERATURE_UNIT()");
        const EntityId object = out_.Add("CHARACTERIZED_OBJECT", "test conditions", EntityId{});
        const EntityId property = out_.Add("PROPERTY_DEFINITION", "temperature", EntityId{}, object);
        const EntityId value = out_.Add("MEASURE_REPRESENTATION_ITEM", "temperature",
                                        P21Literal{"THERMODYNAMIC_TEMPERATURE_MEASURE(293.)"}, kelvin);
        const EntityId representation = out_.Add("REPRESENTATION", "", std::vector{value}, context_);
        const EntityId link = out_.Add("PROPERTY_DEFINITION_REPRESENTATION", property, representation);
        return out_.Add("DATA_ENVIRONMENT", "room", "room temperature", std::vector{link});
    }

    void WriteDescriptor() {
        elementSystem_ = out_.Add("PARAMETRIC_SURFACE_3D_ELEMENT_COORDINATE_SYSTEM", "", 1, 0.0);
        elementContext_ = out_.Add("PARAMETRIC_REPRESENTATION_CONTEXT", "element", "parametric");
        descriptor_ =
            out_.Add("SURFACE_3D_ELEMENT_DESCRIPTOR", P21Literal{".LINEAR."}, "linear quadrilateral",
                     P21Literal{"((ENUMERATED_SURFACE_ELEMENT_PURPOSE(.MEMBRANE_DIRECT.),"
                                "ENUMERATED_SURFACE_ELEMENT_PURPOSE(.MEMBRANE_SHEAR.)),"
                                "(ENUMERATED_SURFACE_ELEMENT_PURPOSE(.BENDING_DIRECT.),"
                                "ENUMERATED_SURFACE_ELEMENT_PURPOSE(.BENDING_TORSION.)),"
                                "(ENUMERATED_SURFACE_ELEMENT_PURPOSE(.NORMAL_TO_PLANE_SHEAR.)))"},
                     P21Literal{".QUADRILATERAL."});
    }

    // Point and node take turns, so the numbers of the nodes needn't be kept.
    void WriteNodes() {
        firstNode_ = out_.LastId().number + 2;
        int count = 0;
        for (int row = 0; row <= panel_.Rows(); ++row) {
            for (int column = 0; column <= panel_.Columns(); ++column) {
                const std::string name = std::to_string(++count);
                const EntityId point = out_.Add("CARTESIAN_POINT", name, panel_.Point(column, row));
                out_.Add("NODE", name, std::vector{point}, context_, model_);
            }
        }
    }
    EntityId Node(int column, int row) const {
        return {firstNode_ + 2 * (row * (panel_.Columns() + 1) + column)};
    }

    void WriteNodeSet() {
        const EntityId set = out_.Begin("NODE_SET");
        out_.Put(P21Literal{"'all nodes',"});
        for (int row = 0; row <= panel_.Rows(); ++row) {
            for (int column = 0; column <= panel_.Columns(); ++column) {
                out_.Put(row + column == 0 ? '(' : ',');
                out_.Put(Node(column, row));
            }
        }
        out_.Put(')');
        out_.End();
        const EntityId points =
            out_.Add("POINT_REPRESENTATION", "nodes", std::vector{set, system_}, context_);
        out_.Add("SHAPE_DEFINITION_REPRESENTATION", product_.shape, points);
    }

    void WriteElements() {
        for (int quad = 0; quad < o_.quads; ++quad) {
            const int column = quad % panel_.Columns();
            const int row = quad / panel_.Columns();
            const std::array<std::array<int, 2>, 4> corners{
                {{column, row}, {column, row + 1}, {column + 1, row + 1}, {column + 1, row}}};
            std::vector<EntityId> nodes;
            std::array<int, 4> thickness{};
            for (std::size_t i = 0; i < 4; ++i) {
                nodes.push_back(Node(corners[i][0], corners[i][1]));
                thickness[i] = panel_.Thickness(corners[i][0], corners[i][1]);
            }
            const EntityId property = Property(thickness);
            out_.Add("SURFACE_3D_ELEMENT_REPRESENTATION", std::to_string(quad + 1),
                     std::vector{elementSystem_}, elementContext_, nodes, model_, descriptor_, property,
                     material_);
        }
    }

    // Elements of one thickness throughout share their property.
    EntityId Property(const std::array<int, 4>& thickness) {
        const bool even =
            std::all_of(thickness.begin(), thickness.end(), [&](int t) { return t == thickness[0]; });
        if (!even) { return WriteProperty(thickness); }
        EntityId& known = evenProperties_[thickness[0]];
        if (known.number == 0) { known = WriteProperty(thickness); }
        return known;
    }
    EntityId WriteProperty(const std::array<int, 4>& thickness) {
        std::vector<EntityId> sections;
        for (const int t : thickness) { sections.push_back(Section(t)); }
        const EntityId field = out_.Add("SURFACE_SECTION_FIELD_VARYING", sections, P21Literal{".F."});
        return out_.Add("SURFACE_ELEMENT_PROPERTY", "P" + std::to_string(++properties_), "sheet", field);
    }
    EntityId Section(int hundredths) {
        EntityId& known = sections_[hundredths];
        if (known.number == 0) {
            const P21Literal none{"UNSPECIFIED_VALUE(.UNSPECIFIED.)"};
            known = out_.Add("UNIFORM_SURFACE_SECTION", none, none, none, hundredths / 100.0, none, none);
        }
        return known;
    }

    const FemOptions& o_;
    Panel panel_;
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
    std::map<int, EntityId> sections_;       // by hundredths of a millimetre
    std::map<int, EntityId> evenProperties_; // likewise
    int properties_ = 0;
};

} // namespace

void WriteFem(const FemOptions& options, P21Writer* out) {
    FemWriter(options, out).Write();
}

int RunFem(const FemOptions& o) {
    const bool written = WriteP21(o.out, o.compress, [&](P21Writer* out) { WriteFem(o, out); });
    if (written) { std::printf("%s: %d quads\n", o.out.c_str(), o.quads); }
    return written ? 0 : 1;
}

CLI::App* AddFemCommand(CLI::App* app, FemOptions* o) {
    CLI::App* const fem =
        app->add_subcommand("fem", "A shell of finite elements with a colour-coded thickness");
    fem->add_option("OUT", o->out, "File to write")->required()->option_text(" ");
    AddNumber(fem, "--quads", &o->quads, 1, 100000000, "Four-noded elements (default: 2000)");
    fem->add_flag("--compress", o->compress, "Write a zlib stream");
    AddNumber(fem, "--seed", &o->seed, 0, 1000000000, "Another panel for each number (default: 1)");
    return fem;
}

} // namespace tarnwick::make
