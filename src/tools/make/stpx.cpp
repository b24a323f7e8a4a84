#include "tools/make/stpx.h"

#include "tools/make/machine_options.h"
#include "tools/make/options.h"
#include "tools/make/output.h"
#include "write/zip_writer.h"

#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

namespace tarnwick::make {

namespace {

using WriteContent = std::function<void(ByteSink*)>;

// Where the files go; false when one couldn't be written, and that is said already.
class Target {
public:
    virtual ~Target() = default;
    virtual bool WriteRoot(const WriteContent& write) = 0;
    virtual bool WriteDocument(const std::string& name, const WriteContent& write) = 0;
    virtual bool WritePart(const std::string& name, const WriteContent& write) = 0;
};

class FolderTarget : public Target {
public:
    explicit FolderTarget(const StpxOptions& o) : o_(o) {}

    bool WriteRoot(const WriteContent& write) override { return WriteFile(o_.out, o_.compress, write); }
    bool WriteDocument(const std::string& name, const WriteContent& write) override {
        return WriteFile(PathOf(name), o_.compress, write);
    }
    bool WritePart(const std::string& name, const WriteContent& write) override {
        return WriteFile(PathOf(name), o_.compress, write);
    }

private:
    std::string PathOf(const std::string& name) const {
        return (std::filesystem::path(o_.out).parent_path() / name).string();
    }

    const StpxOptions& o_;
};

// The names in an archive don't depend on its own, so that it can be renamed.
class ArchiveTarget : public Target {
public:
    explicit ArchiveTarget(const StpxOptions& o) : o_(o), zip_(o.out) {}

    bool WriteRoot(const WriteContent& write) override {
        return zip_.Add("stpa.ini", o_.storedDocuments, [](ByteSink* sink) {
            sink->Write("root = \"machine.stpx\"\n");
        }) && WriteDocument("machine.stpx", write);
    }
    bool WriteDocument(const std::string& name, const WriteContent& write) override {
        return zip_.Add(name, o_.storedDocuments, write);
    }
    // Parts are inflated as they are read, on several threads, so they are never stored.
    bool WritePart(const std::string& name, const WriteContent& write) override {
        return zip_.Add(name, false, write);
    }
    bool Close() {
        if (zip_.Close()) { return true; }
        SayUnwritable(o_.out, zip_.Error());
        return false;
    }

private:
    const StpxOptions& o_;
    ZipWriter zip_;
};

class StpxFiles {
public:
    explicit StpxFiles(const StpxOptions& o)
        : o_(o), machine_(MakeMachine(o.machine)), set_{machine_, {}, o.route} {
        set_.ownDocument = o.documents ? ChooseDocuments(machine_, *o.documents) : ChooseDocuments(machine_);
        if (o.compress) {
            set_.documentSuffix += 'z';
            set_.partSuffix += 'z';
        }
    }

    bool Write(Target* target) {
        if (!target->WriteRoot(DocumentOf(0))) { return false; }
        for (std::size_t node = 1; node < machine_.nodes.size(); ++node) {
            if (set_.ownDocument[node] && !WriteNode(node, target)) { return false; }
        }
        for (const Machine::Part& part : machine_.parts) {
            if (!o_.noParts && !WritePartOf(part, target)) { return false; }
        }
        return true;
    }
    void Report() const {
        std::printf("%s: %zu parts, %lld uses, %d documents\n", o_.out.c_str(), machine_.parts.size(),
                    AllUses(o_.machine), documents_ + 1);
    }

private:
    WriteContent DocumentOf(std::size_t node) const {
        return [this, node](ByteSink* sink) { WriteDocument(set_, node, sink); };
    }
    bool WriteNode(std::size_t node, Target* target) {
        ++documents_;
        const std::string stem = FileStem(machine_.nodes[node]);
        return target->WriteDocument(stem + set_.documentSuffix, DocumentOf(node));
    }
    bool WritePartOf(const Machine::Part& part, Target* target) const {
        return target->WritePart(part.stem + set_.partSuffix, [&](ByteSink* sink) {
            P21Writer writer(sink);
            WriteMachinePart(part, o_.trianglesPerPart, o_.style, &writer);
        });
    }

    const StpxOptions& o_;
    Machine machine_;
    DocumentSet set_;
    int documents_ = 0; // besides the root
};

std::string CheckMachine(const StpxOptions& o) {
    std::string wrong = CheckMachineOptions(o.machine);
    if (!wrong.empty() || !o.documents) { return wrong; }
    const int most = MostDocuments(MakeMachine(o.machine));
    if (*o.documents > most) {
        return "--documents: this machine has " + std::to_string(most) + " sub-assemblies";
    }
    return {};
}

void AddOptions(CLI::App* kind, StpxOptions* o) {
    const std::map<std::string, FileRoute> routes{{"direct", FileRoute::kDirect},
                                                  {"documents", FileRoute::kDocuments}};
    AddMachineOptions(kind, 999999, kGroupLevels, &o->machine);
    AddNumber(kind, "--documents", &o->documents, 0, 20000000,
              "Sub-assemblies in documents of their own, from the top down (default: all groups)");
    AddChoice(kind, "--route", &o->route, routes,
              "How parts lead to their files: at once, or through documents and files (default: direct)");
    AddTrianglesPerPart(kind, &o->trianglesPerPart);
    AddStyleOptions(kind, &o->style);
    kind->add_flag("--no-parts", o->noParts, "Write the documents alone, without the parts' files");
}

} // namespace

std::string CheckStpxOptions(const StpxOptions& o) {
    if (IsMachineStem(std::filesystem::path(o.out).stem().string())) {
        return "OUT: one of the machine's files has that name";
    }
    return CheckMachine(o);
}

std::string CheckStpaOptions(const StpxOptions& o) {
    return CheckMachine(o);
}

int RunStpx(const StpxOptions& o) {
    StpxFiles files(o);
    FolderTarget folder(o);
    if (!files.Write(&folder)) { return 1; }
    files.Report();
    return 0;
}

int RunStpa(const StpxOptions& o) {
    StpxFiles files(o);
    ArchiveTarget archive(o);
    files.Write(&archive); // what went wrong is said at the end
    if (!archive.Close()) { return 1; }
    files.Report();
    return 0;
}

CLI::App* AddStpxCommand(CLI::App* app, StpxOptions* o) {
    CLI::App* const stpx = app->add_subcommand("stpx", "The machine as STEP XML documents and part files");
    stpx->add_option("OUT", o->out, "Root document to write; the others go beside it")
        ->required()
        ->option_text(" ");
    AddOptions(stpx, o);
    stpx->add_flag("--compress", o->compress,
                   "Write zlib streams; the other files end in stpxz and stpz, and so should OUT");
    return stpx;
}

CLI::App* AddStpaCommand(CLI::App* app, StpxOptions* o) {
    CLI::App* const stpa = app->add_subcommand("stpa", "The documents and part files of stpx in one archive");
    stpa->add_option("OUT", o->out, "Archive to write")->required()->option_text(" ");
    AddOptions(stpa, o);
    stpa->add_flag("--stored-documents", o->storedDocuments, "Deflate the parts alone, not the documents");
    return stpa;
}

} // namespace tarnwick::make
