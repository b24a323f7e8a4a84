#include "tools/make/assembly.h"

#include "tools/make/options.h"
#include "tools/make/output.h"
#include "write/p21_assembly.h"

#include <filesystem>

namespace tarnwick::make {

namespace {

class StructureWriter {
public:
    StructureWriter(const Machine& machine, P21Writer* out)
        : machine_(machine), out_(out), parts_(machine.parts.size()), nodes_(machine.nodes.size()) {}

    void Write(int top) {
        out_->Header({"sample assembly", Node(top).id, kAp242.schema, kProgram});
        contexts_ = WriteContexts(out_);
        references_ = WriteReferenceRoles(out_);
        WriteNode(top);
        out_->Footer();
    }

private:
    const Machine::Node& Node(int number) const { return machine_.nodes[static_cast<std::size_t>(number)]; }

    // The node's representation lists its origin and the places of what it uses.
    const ComponentIds& WriteNode(int number) {
        const Machine::Node& node = Node(number);
        ComponentIds own;
        own.product = WriteProduct(out_, contexts_, node.id, node.name, "part");
        own.origin = WritePlacement(out_, {});
        std::vector<EntityId> places{own.origin};
        std::vector<ComponentIds> children;
        for (const Machine::Use& use : node.uses) {
            children.push_back(use.ofPart ? PartIds(use.number) : NodeIds(use.number));
            places.push_back(WritePlacement(out_, use.at));
        }
        own.representation = WriteShape(out_, contexts_, own.product.shape, places);
        for (std::size_t i = 0; i < children.size(); ++i) {
            WriteUse(out_, ++uses_, own, children[i], places[i + 1]);
        }
        return nodes_[static_cast<std::size_t>(number)] = own;
    }

    const ComponentIds& NodeIds(int number) {
        const Machine::Node& node = Node(number);
        ComponentIds& known = nodes_[static_cast<std::size_t>(number)];
        if (known.representation != EntityId{}) { return known; }
        if (node.stem.empty()) { return WriteNode(number); }
        return known = External(node.id, node.name, node.stem);
    }
    const ComponentIds& PartIds(int number) {
        const Machine::Part& part = machine_.parts[static_cast<std::size_t>(number)];
        ComponentIds& known = parts_[static_cast<std::size_t>(number)];
        if (known.representation == EntityId{}) { known = External(part.id, part.name, part.stem); }
        return known;
    }
    ComponentIds External(const std::string& id, const std::string& name, const std::string& stem) {
        return WriteExternal(out_, contexts_, references_, id, name, stem + ".stp");
    }

    const Machine& machine_;
    P21Writer* const out_;
    ContextIds contexts_;
    ReferenceIds references_;
    std::vector<ComponentIds> parts_; // none yet where representation is none
    std::vector<ComponentIds> nodes_; // likewise
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
        return WriteP21(PathOf(part.stem), o_.compress, [&](P21Writer* out) { WritePart(plan, style, out); });
    }
    bool WriteStructureFile(int node, const std::string& path) {
        ++files_;
        return WriteP21(path, o_.compress, [&](P21Writer* out) { WriteStructure(machine_, node, out); });
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
