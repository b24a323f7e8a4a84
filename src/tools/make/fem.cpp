#include "tools/make/fem.h"

#include "tools/make/options.h"
#include "tools/make/output.h"
#include "write/product.h"

#include <algorithm>

namespace tarnwick::make {

namespace {

constexpr double kPanelLength = 900;
constexpr double kPanelRadius = 400;
constexpr double kPanelAngle = 160 * kPi / 180;

// As many columns as make the quads about square; a number near by that leaves no incomplete row is better.
int ColumnsFor(int quads) {
    const double ideal = std::sqrt(quads * kPanelLength / (kPanelRadius * kPanelAngle));
    const int best = std::max(1, static_cast<int>(ideal + 0.5));
    for (int distance = 0; distance < best / 3; ++distance) {
        for (const int columns : {best - distance, best + distance}) {
            if (quads % columns == 0) { return columns; }
        }
    }
    return std::min(best, quads);
}

double Bell(double x, double width) {
    return std::exp(-(x * x) / (width * width));
}

class FemWriter {
public:
    FemWriter(const FemOptions& o, P21Writer* out) : o_(o), panel_(o), out_(*out) {}

    void Write() {
        out_.Header("sample shell mesh", "PANEL",
                    "AP209_MULTIDISCIPLINARY_ANALYSIS_AND_DESIGN_MIM_LF { 1 0 10303 409 3 1 4 }");
        WriteModel();
        WriteNodes();
        WriteNodeSet();
        WriteElements();
        out_.Footer();
    }

private:
    void WriteModel() {
        const Context context = WriteContext(&out_, kAp209);
        context_ = context.geometry;
        product_ = WriteProduct(&out_, context, "PANEL", "Panel with bulge", "part");
        const Id origin = out_.Add("CARTESIAN_POINT", "", Vec3{0, 0, 0});
        const Id axis = out_.Add("DIRECTION", "", Vec3{0, 0, 1});
        const Id reference = out_.Add("DIRECTION", "", Vec3{1, 0, 0});
        system_ =
            out_.Add("FEA_AXIS2_PLACEMENT_3D", "0", origin, axis, reference, Literal{".CARTESIAN."}, "basic");
        model_ = out_.Add("FEA_MODEL_3D", "panel", std::vector{system_}, context_, "tarnwick-make",
                          Literal{"('none')"}, "", "linear static");
        const Id definition = out_.Add("FEA_MODEL_DEFINITION", "panel", Id{}, product_.shape, Literal{".U."});
        const Id response = out_.Add("STRUCTURAL_RESPONSE_PROPERTY", "panel", Id{}, definition);
        out_.Add("STRUCTURAL_RESPONSE_PROPERTY_DEFINITION_REPRESENTATION", response, model_);
        WriteMaterial();
        WriteDescriptor();
    }

    // Sheet steel: modulus of elasticity in N/mm2 and Poisson's ratio.
    void WriteMaterial() {
        const Id object = out_.Add("CHARACTERIZED_OBJECT", "steel", Id{});
        const Id property = out_.Add("MATERIAL_PROPERTY", "elasticity", Id{}, object);
        const Id elasticity = out_.Add("FEA_LINEAR_ELASTICITY", "",
                                       Literal{"FEA_ISOTROPIC_SYMMETRIC_TENSOR4_3D((210000.,0.3))"});
        const Id representation = out_.Add("REPRESENTATION", "", std::vector{elasticity}, context_);
        const Id environment = WriteEnvironment();
        const Id used =
            out_.Add("FEA_MATERIAL_PROPERTY_REPRESENTATION", property, representation, environment);
        material_ = out_.Add("ELEMENT_MATERIAL", "M1", "steel", std::vector{used});
    }
    Id WriteEnvironment() {
        const Id kelvin = out_.AddComplex("NAMED_UNIT(*)SI_UNIT($,.KELVIN.)THERMODYNAMIC_TEMPERATURE_UNIT()");
        const Id object = out_.Add("CHARACTERIZED_OBJECT", "test conditions", Id{});
        const Id property = out_.Add("PROPERTY_DEFINITION", "temperature", Id{}, object);
        const Id value = out_.Add("MEASURE_REPRESENTATION_ITEM", "temperature",
                                  Literal{"THERMODYNAMIC_TEMPERATURE_MEASURE(293.)"}, kelvin);
        const Id representation = out_.Add("REPRESENTATION", "", std::vector{value}, context_);
        const Id link = out_.Add("PROPERTY_DEFINITION_REPRESENTATION", property, representation);
        return out_.Add("DATA_ENVIRONMENT", "room", "room temperature", std::vector{link});
    }

    void WriteDescriptor() {
        elementSystem_ = out_.Add("PARAMETRIC_SURFACE_3D_ELEMENT_COORDINATE_SYSTEM", "", 1, 0.0);
        elementContext_ = out_.Add("PARAMETRIC_REPRESENTATION_CONTEXT", "element", "parametric");
        descriptor_ = out_.Add("SURFACE_3D_ELEMENT_DESCRIPTOR", Literal{".LINEAR."}, "linear quadrilateral",
                               Literal{"((ENUMERATED_SURFACE_ELEMENT_PURPOSE(.MEMBRANE_DIRECT.),"
                                       "ENUMERATED_SURFACE_ELEMENT_PURPOSE(.MEMBRANE_SHEAR.)),"
                                       "(ENUMERATED_SURFACE_ELEMENT_PURPOSE(.BENDING_DIRECT.),"
                                       "ENUMERATED_SURFACE_ELEMENT_PURPOSE(.BENDING_TORSION.)),"
                                       "(ENUMERATED_SURFACE_ELEMENT_PURPOSE(.NORMAL_TO_PLANE_SHEAR.)))"},
                               Literal{".QUADRILATERAL."});
    }

    // Point and node take turns, so the numbers of the nodes needn't be kept.
    void WriteNodes() {
        firstNode_ = out_.LastId().number + 2;
        int count = 0;
        for (int row = 0; row <= panel_.Rows(); ++row) {
            for (int column = 0; column <= panel_.Columns(); ++column) {
                const std::string name = std::to_string(++count);
                const Id point = out_.Add("CARTESIAN_POINT", name, panel_.Point(column, row));
                out_.Add("NODE", name, std::vector{point}, context_, model_);
            }
        }
    }
    Id Node(int column, int row) const { return {firstNode_ + 2 * (row * (panel_.Columns() + 1) + column)}; }

    void WriteNodeSet() {
        const Id set = out_.Begin("NODE_SET");
        out_.Put(Literal{"'all nodes',"});
        for (int row = 0; row <= panel_.Rows(); ++row) {
            for (int column = 0; column <= panel_.Columns(); ++column) {
                out_.Put(row + column == 0 ? '(' : ',');
                out_.Put(Node(column, row));
            }
        }
        out_.Put(')');
        out_.End();
        const Id points = out_.Add("POINT_REPRESENTATION", "nodes", std::vector{set, system_}, context_);
        out_.Add("SHAPE_DEFINITION_REPRESENTATION", product_.shape, points);
    }

    void WriteElements() {
        for (int quad = 0; quad < o_.quads; ++quad) {
            const int column = quad % panel_.Columns();
            const int row = quad / panel_.Columns();
            const std::array<std::array<int, 2>, 4> corners{
                {{column, row}, {column, row + 1}, {column + 1, row + 1}, {column + 1, row}}};
            std::vector<Id> nodes;
            std::array<int, 4> thickness{};
            for (std::size_t i = 0; i < 4; ++i) {
                nodes.push_back(Node(corners[i][0], corners[i][1]));
                thickness[i] = panel_.Thickness(corners[i][0], corners[i][1]);
            }
            const Id property = Property(thickness);
            out_.Add("SURFACE_3D_ELEMENT_REPRESENTATION", std::to_string(quad + 1),
                     std::vector{elementSystem_}, elementContext_, nodes, model_, descriptor_, property,
                     material_);
        }
    }

    // Elements of one thickness throughout share their property.
    Id Property(const std::array<int, 4>& thickness) {
        const bool even =
            std::all_of(thickness.begin(), thickness.end(), [&](int t) { return t == thickness[0]; });
        if (!even) { return WriteProperty(thickness); }
        Id& known = evenProperties_[thickness[0]];
        if (known.number == 0) { known = WriteProperty(thickness); }
        return known;
    }
    Id WriteProperty(const std::array<int, 4>& thickness) {
        std::vector<Id> sections;
        for (const int t : thickness) { sections.push_back(Section(t)); }
        const Id field = out_.Add("SURFACE_SECTION_FIELD_VARYING", sections, Literal{".F."});
        return out_.Add("SURFACE_ELEMENT_PROPERTY", "P" + std::to_string(++properties_), "sheet", field);
    }
    Id Section(int hundredths) {
        Id& known = sections_[hundredths];
        if (known.number == 0) {
            const Literal none{"UNSPECIFIED_VALUE(.UNSPECIFIED.)"};
            known = out_.Add("UNIFORM_SURFACE_SECTION", none, none, none, hundredths / 100.0, none, none);
        }
        return known;
    }

    const FemOptions& o_;
    Panel panel_;
    P21Writer& out_;
    Product product_;
    Id context_;
    Id system_;
    Id model_;
    Id material_;
    Id elementSystem_;
    Id elementContext_;
    Id descriptor_;
    std::int32_t firstNode_ = 0;
    std::map<int, Id> sections_;       // by hundredths of a millimetre
    std::map<int, Id> evenProperties_; // likewise
    int properties_ = 0;
};

} // namespace

Panel::Panel(const FemOptions& o)
    : columns_(ColumnsFor(o.quads)), rows_((o.quads + columns_ - 1) / columns_) {
    Prng prng(o.seed);
    bulgeAlong_ = prng.Range(0.42, 0.58);
    bulgeAround_ = prng.Range(0.42, 0.58);
    bulgeHeight_ = prng.Range(90, 150);
}

double Panel::Bulge(double along, double around) const {
    return Bell(along - bulgeAlong_, 0.26) * Bell(around - bulgeAround_, 0.3);
}

double Panel::Beads(double along) const {
    return Bell(along - 0.07, 0.03) + Bell(along - 0.93, 0.03);
}

Vec3 Panel::Point(int column, int row) const {
    const double along = static_cast<double>(column) / columns_;
    const double around = static_cast<double>(row) / rows_;
    const double radius = kPanelRadius + bulgeHeight_ * Bulge(along, around) + 22 * Beads(along);
    const double angle = kPi / 2 - kPanelAngle / 2 + kPanelAngle * around;
    return {kPanelLength * (along - 0.5), radius * std::cos(angle), radius * std::sin(angle)};
}

int Panel::Thickness(int column, int row) const {
    const double along = static_cast<double>(column) / columns_;
    const double around = static_cast<double>(row) / rows_;
    const double t = std::clamp(Bulge(along, around) + 0.5 * Beads(along), 0.0, 1.0);
    // The limits at 7.8 and 8.0 mm are close together; the middle of the range goes slowly from one to the
    // other.
    double thickness = 5;
    if (t > 0.6) {
        thickness = 8 + 4 * (t - 0.6) / 0.4;
    } else if (t > 0.42) {
        thickness = 7.8 + 0.2 * (t - 0.42) / 0.18;
    } else if (t > 0.04) {
        thickness = 5 + 2.8 * (t - 0.04) / 0.38;
    }
    return static_cast<int>(std::lround(thickness * 100));
}

void WriteFem(const FemOptions& options, P21Writer* out) {
    FemWriter(options, out).Write();
}

int RunFem(const FemOptions& o) {
    const bool written = WriteFile(o.out, o.compress, [&](P21Writer* out) { WriteFem(o, out); });
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
