#include "tools/make/assembly.h"

#include "tools/make/machine_options.h"
#include "tools/make/options.h"
#include "tools/make/output.h"
#include "write/p21_assembly.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace tarnwick::make {

namespace {

class StructureWriter {
public:
    StructureWriter(const Machine& machine, P21Writer* out)
        : machine_(machine), out_(out), parts_(machine.parts.size()), nodes_(machine.nodes.size()) {}

    void Write(std::size_t top) {
        out_->Header({"sample assembly", machine_.nodes[top].id, kAp242.schema, kProgram});
        contexts_ = WriteContexts(out_);
        references_ = WriteReferenceRoles(out_);
        WriteNode(top);
        out_->Footer();
    }

private:
    // The node's representation lists its origin and the places of what it uses.
    const ComponentIds& WriteNode(std::size_t number) {
        const Machine::Node& node = machine_.nodes[number];
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
        return nodes_[number] = own;
    }

    const ComponentIds& NodeIds(std::size_t number) {
        const Machine::Node& node = machine_.nodes[number];
        ComponentIds& known = nodes_[number];
        if (known.representation != EntityId{}) { return known; }
        if (node.stem.empty()) { return WriteNode(number); }
        return known = External(node.id, node.name, node.stem);
    }
    const ComponentIds& PartIds(std::size_t number) {
        const Machine::Part& part = machine_.parts[number];
        ComponentIds& known = parts_[number];
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
        const std::size_t parts = machine_.parts.size();
        for (std::size_t part = 0; part < (o_.oneMissing ? parts - 1 : parts); ++part) {
            if (!WritePartFile(machine_.parts[part])) { return false; }
        }
        for (std::size_t node = 1; node < machine_.nodes.size(); ++node) {
            const std::string& stem = machine_.nodes[node].stem;
            if (!stem.empty() && !WriteStructureFile(node, PathOf(stem))) { return false; }
        }
        if (!WriteStructureFile(0, o_.out)) { return false; }
        std::printf("%s: %zu parts, %lld uses, %d files\n", o_.out.c_str(), parts, AllUses(o_.machine),
                    files_);
        return true;
    }

private:
    // References name the plain file, and a reader of a compressed top file adds that one's kind of suffix to
    // it.
    std::string PathOf(const std::string& stem) const {
        const bool dotZ = o_.out.ends_with(".Z") || o_.out.ends_with(".z");
        const char* const suffix = !o_.compress ? "" : dotZ ? ".Z" : "z";
        return (std::filesystem::path(o_.out).parent_path() / (stem + ".stp" + suffix)).string();
    }

    bool WritePartFile(const Machine::Part& part) {
        ++files_;
        return WriteP21(PathOf(part.stem), o_.compress,
                        [&](P21Writer* out) { WriteMachinePart(part, o_.trianglesPerPart, o_.style, out); });
    }
    bool WriteStructureFile(std::size_t node, const std::string& path) {
        ++files_;
        return WriteP21(path, o_.compress, [&](P21Writer* out) { WriteStructure(machine_, node, out); });
    }

    const AssemblyOptions& o_;
    const Machine machine_;
    int files_ = 0;
};

} // namespace

void WriteStructure(const Machine& machine, std::size_t node, P21Writer* out) {
    StructureWriter(machine, out).Write(node);
}

std::string CheckAssemblyOptions(const AssemblyOptions& o) {
    if (IsMachineStem(std::filesystem::path(o.out).stem().string())) {
        return "OUT: one of the parts' files has that name";
    }
    return CheckMachineOptions(o.machine);
}

int RunAssembly(const AssemblyOptions& o) {
    return AssemblyFiles(o).Write() ? 0 : 1;
}

CLI::App* AddAssemblyCommand(CLI::App* app, AssemblyOptions* o) {
    CLI::App* const assembly =
        app->add_subcommand("assembly", "A machine: a top file, sub-assemblies and part files");
    assembly->add_option("OUT", o->out, "Top file to write; the others go beside it")
        ->required()
        ->option_text(" ");
    AddMachineOptions(assembly, 9999, "Levels of sub-assembly files below the top file (default: 1)",
                      &o->machine);
    AddTrianglesPerPart(assembly, &o->trianglesPerPart);
    AddStyleOptions(assembly, &o->style);
    assembly->add_flag("--compress", o->compress, "Write zlib streams; the parts' files end in stpz");
    assembly->add_flag("--one-missing", o->oneMissing, "Leave out the file of the last part");
    return assembly;
}

} // namespace tarnwick::make
