#include "tools/make/assembly.h"

#include "tools/make/options.h"
#include "tools/make/output.h"
#include "write/product.h"

#include <filesystem>

namespace tarnwick::make {

namespace {

class StructureWriter {
public:
    StructureWriter(const Machine& machine, P21Writer* out)
        : machine_(machine), out_(*out), partEntities_(machine.parts.size()),
          nodeEntities_(machine.nodes.size()) {}

    void Write(int top) {
        out_.Header("sample assembly", Node(top).id, kAp242Schema);
        context_ = WriteContext(&out_);
        documentType_ = out_.Add("DOCUMENT_TYPE", "geometry");
        locationRole_ = out_.Add("IDENTIFICATION_ROLE", "external document id and location", Id{});
        source_ = out_.Add("EXTERNAL_SOURCE", Literal{"IDENTIFIER('')"});
        objectRole_ = out_.Add("OBJECT_ROLE", "mandatory", Id{});
        WriteNode(top);
        out_.Footer();
    }

private:
    struct Entities {
        Product product;
        Id origin;
        Id representation;
    };

    const Machine::Node& Node(int number) const { return machine_.nodes[static_cast<std::size_t>(number)]; }

    Entities WriteProductWithOrigin(const std::string& id, const std::string& name) {
        Entities e;
        e.product = WriteProduct(&out_, context_, id, name, "part");
        e.origin = WritePlacement(&out_, {});
        return e;
    }

    // The node's representation lists its origin and the places of what it uses.
    const Entities& WriteNode(int number) {
        const Machine::Node& node = Node(number);
        Entities own = WriteProductWithOrigin(node.id, node.name);
        std::vector<Id> places{own.origin};
        std::vector<Entities> children;
        for (const Machine::Use& use : node.uses) {
            children.push_back(use.ofPart ? PartEntities(use.number) : ChildEntities(use.number));
            places.push_back(WritePlacement(&out_, use.at));
        }
        own.representation = out_.Add("SHAPE_REPRESENTATION", "", places, context_.geometry);
        out_.Add("SHAPE_DEFINITION_REPRESENTATION", own.product.shape, own.representation);
        for (std::size_t i = 0; i < children.size(); ++i) { WriteUse(own, children[i], places[i + 1]); }
        return nodeEntities_[static_cast<std::size_t>(number)] = own;
    }

    const Entities& ChildEntities(int number) {
        const Machine::Node& node = Node(number);
        Entities& known = nodeEntities_[static_cast<std::size_t>(number)];
        if (known.representation.number != 0) { return known; }
        return node.stem.empty() ? WriteNode(number) : known = WriteExternal(node.id, node.name, node.stem);
    }
    const Entities& PartEntities(int number) {
        const Machine::Part& part = machine_.parts[static_cast<std::size_t>(number)];
        Entities& known = partEntities_[static_cast<std::size_t>(number)];
        if (known.representation.number == 0) { known = WriteExternal(part.id, part.name, part.stem); }
        return known;
    }

    // A product that another file describes. The file's product has the same id, which is what joins the two.
    Entities WriteExternal(const std::string& id, const std::string& name, const std::string& stem) {
        Entities e = WriteProductWithOrigin(id, name);
        e.representation = out_.Add("SHAPE_REPRESENTATION", "", std::vector{e.origin}, context_.geometry);
        out_.Add("SHAPE_DEFINITION_REPRESENTATION", e.product.shape, e.representation);
        const std::string file = stem + ".stp";
        const Id document = out_.Add("DOCUMENT_FILE", file, "", "", documentType_, "", Id{});
        out_.Add("DOCUMENT_REPRESENTATION_TYPE", "digital", document);
        out_.Add("APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT", file, locationRole_, source_,
                 std::vector{document});
        Id reference =
            out_.Add("APPLIED_DOCUMENT_REFERENCE", document, "", std::vector{e.product.definition});
        out_.Add("ROLE_ASSOCIATION", objectRole_, reference);
        return e;
    }

    void WriteUse(const Entities& parent, const Entities& child, Id place) {
        const std::string number = std::to_string(++uses_);
        const Id transformation = out_.Add("ITEM_DEFINED_TRANSFORMATION", "", "", child.origin, place);
        const Id relationship = out_.Begin("");
        out_.Put(Literal{"REPRESENTATION_RELATIONSHIP('','',"});
        out_.Put(child.representation);
        out_.Put(',');
        out_.Put(parent.representation);
        out_.Put(Literal{")REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION("});
        out_.Put(transformation);
        out_.Put(Literal{")SHAPE_REPRESENTATION_RELATIONSHIP()"});
        out_.End();
        const Id occurrence = out_.Add("NEXT_ASSEMBLY_USAGE_OCCURRENCE", number, "use " + number, "",
                                       parent.product.definition, child.product.definition, Id{});
        const Id shape = out_.Add("PRODUCT_DEFINITION_SHAPE", "", "", occurrence);
        out_.Add("CONTEXT_DEPENDENT_SHAPE_REPRESENTATION", relationship, shape);
    }

    const Machine& machine_;
    P21Writer& out_;
    Context context_;
    Id documentType_;
    Id locationRole_;
    Id source_;
    Id objectRole_;
    std::vector<Entities> partEntities_; // none yet where representation is none
    std::vector<Entities> nodeEntities_;
    int uses_ = 0;
};

class AssemblyFiles {
public:
    explicit AssemblyFiles(const AssemblyOptions& o) : o_(o), machine_(MakeMachine(o.machine)) {}

    bool Write() {
        for (int part = 0; part < Parts(); ++part) {
            if (!(o_.oneMissing && part == Parts() - 1) && !WritePartFile(part)) { return false; }
        }
        for (int node = 1; node < static_cast<int>(machine_.nodes.size()); ++node) {
            const std::string& stem = machine_.nodes[static_cast<std::size_t>(node)].stem;
            if (!stem.empty() && !WriteStructureFile(node, PathOf(stem))) { return false; }
        }
        if (!WriteStructureFile(0, o_.out)) { return false; }
        std::printf("%s: %d parts, %lld uses, %d files\n", o_.out.c_str(), Parts(),
                    static_cast<long long>(Parts()) * o_.machine.uses, files_);
        return true;
    }

private:
    int Parts() const { return static_cast<int>(machine_.parts.size()); }

    // References name the plain file, and a reader of a compressed top file adds that one's kind of suffix to
    // it.
    std::string PathOf(const std::string& stem) const {
        const bool dotZ = o_.out.ends_with(".Z") || o_.out.ends_with(".z");
        const std::string suffix = !o_.compress ? "" : dotZ ? ".Z" : "z";
        return (std::filesystem::path(o_.out).parent_path() / (stem + ".stp" + suffix)).string();
    }

    bool WritePartFile(int number) {
        const Machine::Part& part = machine_.parts[static_cast<std::size_t>(number)];
        const PartPlan plan{part.id, part.name, {{part.dims, {}}}, o_.trianglesPerPart, 0};
        PartStyle style = o_.style;
        style.firstColour = part.colour;
        ++files_;
        return WriteFile(PathOf(part.stem), o_.compress,
                         [&](P21Writer* out) { WritePart(plan, style, out); });
    }
    bool WriteStructureFile(int node, const std::string& path) {
        ++files_;
        return WriteFile(path, o_.compress, [&](P21Writer* out) { WriteStructure(machine_, node, out); });
    }

    const AssemblyOptions& o_;
    Machine machine_;
    int files_ = 0;
};

} // namespace

void WriteStructure(const Machine& machine, int node, P21Writer* out) {
    StructureWriter(machine, out).Write(node);
}

std::string CheckAssemblyOptions(const AssemblyOptions& o) {
    if (static_cast<long long>(o.machine.parts) * o.machine.uses > 20000000) {
        return "--parts times --uses: at most 20,000,000";
    }
    if (IsMachineStem(std::filesystem::path(o.out).stem().string())) {
        return "OUT: one of the parts' files has that name";
    }
    return {};
}

int RunAssembly(const AssemblyOptions& o) {
    return AssemblyFiles(o).Write() ? 0 : 1;
}

CLI::App* AddAssemblyCommand(CLI::App* app, AssemblyOptions* o) {
    CLI::App* assembly =
        app->add_subcommand("assembly", "A machine: a top file, sub-assemblies and part files");
    assembly->add_option("OUT", o->out, "Top file to write; the others go beside it")
        ->required()
        ->option_text(" ");
    AddNumber(assembly, "--parts", &o->machine.parts, 1, 9999, "Different parts (default: 18)");
    AddNumber(assembly, "--uses", &o->machine.uses, 1, 1000000, "Occurrences of each part (default: 4)");
    AddNumber(assembly, "--depth", &o->machine.depth, 0, 30,
              "Levels of sub-assembly files below the top file (default: 1)");
    AddNumber(assembly, "--triangles-per-part", &o->trianglesPerPart, 12, 100000000,
              "Triangles of each part, about (default: 2000)");
    AddStyleOptions(assembly, &o->style);
    assembly->add_flag("--compress", o->compress, "Write zlib streams; the parts' files end in stpz");
    assembly->add_flag("--one-missing", o->oneMissing, "Leave out the file of the last part");
    AddNumber(assembly, "--seed", &o->machine.seed, 0, 1000000000,
              "Another machine for each number (default: 1)");
    return assembly;
}

} // namespace tarnwick::make
