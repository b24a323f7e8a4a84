#include "faults/cases.h"

#include "mesher/solid_text.h"
#include "support/p21_text.h"
#include "write/zip_writer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tarnwick::faults {

namespace {

using Words = std::vector<std::string>;

struct Sample {
    const char* name; // of the file, in a folder of its own
    const char* kind; // of tarnwick-make
    Words options;
};

const std::vector<Sample>& Samples() {
    const Words part{"--triangles", "60", "--faces", "6", "--solids", "2", "--colours", "2"};
    const Words rich{"--triangles", "60",        "--faces",       "6",         "--solids", "2", "--colours",
                     "2",           "--pnindex", "--transparent", "--material"};
    const Words machine{"--parts", "3", "--uses", "2", "--depth", "1", "--triangles-per-part", "40"};
    const auto with = [](Words words, const Words& more) {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    };
    static const std::vector<Sample> samples{
        {"part.stp", "part", rich},
        {"part.stpz", "part", with(part, {"--compress"})},
        {"assembly.stp", "assembly", machine},
        {"missing.stp", "assembly", with(machine, {"--one-missing"})},
        {"assembly.stpz", "assembly", with(machine, {"--compress"})},
        {"mesh.stp", "fem", {"--quads", "9"}},
        {"mesh.stpz", "fem", {"--quads", "9", "--compress"}},
        {"document.stpx", "stpx", with(machine, {"--documents", "1"})},
        {"document.stpxz", "stpx", with(machine, {"--documents", "1", "--route", "documents", "--compress"})},
        {"archive.stpa", "stpa", with(machine, {"--documents", "1"})},
        {"summary.stpj", "stpj", {"--parts", "3", "--uses", "2"}},
    };
    return samples;
}

void Run(const std::string& program, const Words& words) {
    std::string command = program;
    for (const std::string& word : words) { command += " '" + word + "'"; }
    if (std::system((command + " >/dev/null").c_str()) != 0) {
        std::fprintf(stderr, "%s failed\n", command.c_str());
        std::exit(3);
    }
}

Input OverSample(const Programs& programs, const std::string& name, const std::string& path) {
    Input input{name, {}};
    const auto add = [&](const char* what, const Words& options) -> Case& {
        Case one{what + (" " + name), programs.load, options};
        one.arguments.push_back(path);
        input.cases.push_back(std::move(one));
        return input.cases.back();
    };
    add("load", {}).isLog = true;
    const auto addReport = [&](const char* what, Words options) {
        options.insert(options.end(), {"--json", "%o/report.json"});
        Case& one = add(what, options);
        one.isLog = true;
        one.writesText = true;
    };
    addReport("json", {});
    addReport("json --no-threads", {"--no-threads"});
    add("json --arrays", {"--json", "-", "--arrays"});
    add("check", {"--check"}).tellsOnOutput = true;
    add("check --json", {"--check", "--json", "-"}).tellsOnOutput = true;
    const std::string extension = std::filesystem::path(name).extension();
    if (extension == ".stp" || extension == ".stpz") { add("index", {"--index", "--entities"}); }
    for (const char* const threads : {"", " --no-threads"}) {
        Case one{"arenas" + (threads + (" " + name)), programs.arenaLoad, {"--json", "-", "--arrays", path}};
        if (*threads != '\0') { one.arguments.insert(one.arguments.begin(), "--no-threads"); }
        input.cases.push_back(std::move(one));
    }
    Case check{"arenas check " + name, programs.arenaLoad, {"--check", "--json", "-", path}};
    check.tellsOnOutput = true;
    input.cases.push_back(std::move(check));
    return input;
}

// A face of each form, and two that have all points of one list.
void WriteFaces(const std::filesystem::path& path) {
    std::string text = test::SmallPartText();
    const std::string shell = "('',(#32),$);\n";
    text.replace(text.find(shell), shell.size(),
                 "('',(#32,#33),$);\n#33=TRIANGULATED_FACE('',#10,4,$,$,$,((1,2,3)));\n");
    std::ofstream(path, std::ios::binary) << text;
}

// An archive whose documents are stored, with a directory of several blocks, of the files in a folder.
void WriteStored(const std::filesystem::path& path, const std::filesystem::path& folder) {
    ZipWriter archive(path.string());
    const auto add = [&](const std::string& name, bool stored, const std::string& text) {
        archive.Add(name, stored, [&text](ByteSink* sink) { sink->Write(text); });
    };
    add("stpa.ini", true, "\"document.stpx\"");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) { continue; }
        std::ifstream file(entry.path(), std::ios::binary);
        add(entry.path().lexically_relative(folder).string(), entry.path().extension() == ".stpx",
            {std::istreambuf_iterator<char>(file), {}});
    }
    for (int i = 0; i < 300; ++i) { add("nothing/" + std::string(80, 'n') + std::to_string(i), true, "-"); }
    if (!archive.Close()) {
        std::fprintf(stderr, "%s\n", archive.Error().c_str());
        std::exit(3);
    }
}

// Loads one after the other, where a later one finds what an earlier one left.
Input OverLists(const Programs& programs, const std::filesystem::path& folder) {
    Input input{"one after another", {}};
    const auto path = [&](const char* name) { return (folder / name / name).string(); };
    const std::vector<std::vector<const char*>> lists{
        {"part.stp", "none.stp"},
        {"part.stp", "archive.stpa", "document.stpx"},
        {"part.stp", "document.stpx", "mesh.stp"},
        {"part.stp", "summary.stpj", "part.stpz"},
        {"archive.stpa", "broken.stpa", "summary.stpj"},
        {"document.stpx", "broken.stpx", "part.stp"},
        {"assembly.stp", "broken.stp", "archive.stpa"},
        {"mesh.stp", "broken.stpj", "mesh.stp"},
    };
    for (const auto& list : lists) {
        Case one{"list", programs.loadList, {}};
        for (const char* const name : list) {
            one.name += std::string(" ") + name;
            one.arguments.push_back(path(name));
        }
        input.cases.push_back(one);
        Case arenas = one;
        arenas.name.replace(0, 4, "arenas");
        arenas.program = programs.arenaList;
        input.cases.push_back(std::move(arenas));
        one.name += " --no-threads";
        one.arguments.insert(one.arguments.begin(), "--no-threads");
        input.cases.push_back(std::move(one));
    }
    return input;
}

Input OverMaking(const Programs& programs) {
    Input input{"tarnwick-make", {}};
    for (const Sample& sample : Samples()) {
        Case one{"make " + std::string(sample.name), programs.make, {sample.kind}};
        one.arguments.insert(one.arguments.end(), sample.options.begin(), sample.options.end());
        one.arguments.push_back(std::string("%o/") + sample.name);
        input.cases.push_back(std::move(one));
    }
    return input;
}

constexpr int kMillisecondsWithKernel = 20000;

// Writes a text with an exact cube and a cone, each a part of an assembly.
void WriteExact(const std::filesystem::path& path) {
    test::SolidText solids(20);
    std::string parts;
    std::uint64_t next = 2000;
    for (const std::uint64_t solid : {solids.AddCube(10), solids.AddCone(test::AngleUnit::kRadian)}) {
        const auto number = [&](std::uint64_t i) { return "#" + std::to_string(next + i); };
        const std::string name = "'part " + std::to_string(solid) + "'";
        parts += number(0) + "=PRODUCT(" + name + "," + name + ",'',());\n";
        parts += number(1) + "=PRODUCT_DEFINITION_FORMATION('',''," + number(0) + ");\n";
        parts += number(2) + "=PRODUCT_DEFINITION('',''," + number(1) + ",$);\n";
        parts += number(3) + "=PRODUCT_DEFINITION_SHAPE('',''," + number(2) + ");\n";
        parts += number(4) + "=SHAPE_REPRESENTATION('',(#" + std::to_string(solid) + "),#10);\n";
        parts += number(5) + "=SHAPE_DEFINITION_REPRESENTATION(" + number(3) + "," + number(4) + ");\n";
        next += 10;
    }
    std::ofstream(path) << "ISO-10303-21;\nHEADER;\nFILE_SCHEMA(('AUTOMOTIVE_DESIGN'));\nENDSEC;\nDATA;\n"
                        << test::ContextText() << solids.Text() << parts << "ENDSEC;\nEND-ISO-10303-21;\n";
}

// Everything anew, and with what was prepared before in its place.
Input OverPreparing(const Programs& programs, const std::filesystem::path& folder) {
    Input input{"tarnwick-prepare", {}};
    const auto add = [&](const char* name, const char* jobs) -> Case& {
        const std::string path = (folder / name / name).string();
        input.cases.push_back({.name = std::string("prepare ") + name,
                               .program = programs.prepare,
                               .arguments = {path, "-o", "%o/out", "--json", "%o/report.json", "--jobs", jobs,
                                             "--time-limit", "2"},
                               .tellsOnOutput = true,
                               .writesText = true,
                               .milliseconds = kMillisecondsWithKernel});
        return input.cases.back();
    };
    for (const char* const name : {"part.stp", "part.stpz", "mesh.stp", "document.stpx", "archive.stpa"}) {
        add(name, "1");
    }
    add("assembly.stp", "2");
    add("assembly.stpz", "1").arguments.push_back("--compress");
    Case& again = add("assembly.stp", "1");
    again.name += " again";
    again.before = folder / "prepared";
    std::filesystem::create_directories(again.before);
    Run(programs.prepare, {again.arguments[0], "-o", (again.before / "out").string(), "--time-limit", "2"});
    if (!programs.mesh.empty()) { add("exact.stp", "2"); }
    return input;
}

Input OverMeshing(const Programs& programs, const std::filesystem::path& folder) {
    Input input{"tarnwick-mesh", {}};
    const std::string path = (folder / "exact.stp" / "exact.stp").string();
    input.cases.push_back({.name = "mesh exact.stp",
                           .program = programs.prepare,
                           .arguments = {path, "-o", "%o/out", "--jobs", "1", "--time-limit", "2"},
                           .tellsOnOutput = true,
                           .writesText = true,
                           .other = programs.mesh,
                           .milliseconds = kMillisecondsWithKernel});
    return input;
}

// Without a display. What the viewer takes is asked of a further process.
Input OverOpening(const Programs& programs, const std::filesystem::path& folder) {
    Input input{"tarnwick-open", {}};
    const auto add = [&](const char* name, const std::string& other) {
        input.cases.push_back({.name = std::string(other.empty() ? "open " : "open, asking, ") + name,
                               .program = programs.open,
                               .arguments = {(folder / name / name).string()},
                               .tellsOnOutput = true,
                               .writesText = true,
                               .other = other,
                               .mayPrepare = true,
                               .milliseconds = kMillisecondsWithKernel});
    };
    add("part.stp", "");
    add("part.stp", programs.open);
    add("exact.stp", "");
    add("broken.stp", "");
    return input;
}

Input OverPictures(const Programs& programs, const std::filesystem::path& folder) {
    Input input{"tarnwick-picture", {}};
    for (const char* const name : {"part.stp", "assembly.stp", "summary.stpj", "broken.stp"}) {
        const std::string path = (folder / name / name).string();
        input.cases.push_back({.name = std::string("picture ") + name,
                               .program = programs.picture,
                               .arguments = {path, "-o", "%o/shot.png", "--size", "64x48", "--no-fit"},
                               .preloaded = programs.silentGl});
    }
    return input;
}

} // namespace

std::vector<Input> MakeInputs(const Programs& programs, const std::filesystem::path& folder) {
    std::vector<Input> inputs;
    for (const Sample& sample : Samples()) {
        const std::filesystem::path own = folder / sample.name;
        std::filesystem::create_directories(own);
        Words words{sample.kind};
        words.insert(words.end(), sample.options.begin(), sample.options.end());
        words.push_back((own / sample.name).string());
        Run(programs.make, words);
        inputs.push_back(OverSample(programs, sample.name, words.back()));
    }
    const std::filesystem::path faces = folder / "faces.stp";
    WriteFaces(faces);
    inputs.push_back(OverSample(programs, "faces.stp", faces.string()));
    const std::filesystem::path stored = folder / "stored.stpa";
    WriteStored(stored, folder / "document.stpx");
    inputs.push_back(OverSample(programs, "stored.stpa", stored.string()));
    for (const char* const name : {"broken.stp", "broken.stpx", "broken.stpa", "broken.stpj"}) {
        std::filesystem::create_directories(folder / name);
        std::ofstream(folder / name / name) << "no such file\n";
    }
    const std::string broken = (folder / "broken.stp" / "broken.stp").string();
    inputs.push_back({"broken.stp", {{"load broken.stp", programs.load, {broken}}}});
    inputs.back().cases[0].isLog = true;
    std::filesystem::create_directories(folder / "exact.stp");
    WriteExact(folder / "exact.stp" / "exact.stp");
    inputs.push_back(OverLists(programs, folder));
    inputs.push_back(OverMaking(programs));
    inputs.push_back(OverPreparing(programs, folder));
    if (!programs.mesh.empty()) { inputs.push_back(OverMeshing(programs, folder)); }
    if (!programs.open.empty()) { inputs.push_back(OverOpening(programs, folder)); }
    if (!programs.picture.empty()) { inputs.push_back(OverPictures(programs, folder)); }
    if (!programs.snapshot.empty()) {
        const std::string part = (folder / "part.stp" / "part.stp").string();
        inputs.push_back({"snapshot", {{"snapshot", programs.snapshot, {part, "%o/shot.bmp"}}}});
        inputs.back().cases[0].tellsOnOutput = true; // a file that can't be written is told there
    }
    return inputs;
}

std::vector<std::string> FilesOfAllKinds(const std::filesystem::path& folder) {
    std::vector<std::string> files;
    for (const Sample& sample : Samples()) { files.push_back((folder / sample.name / sample.name).string()); }
    std::rotate(files.begin(), files.begin() + 1, files.end());
    return files;
}

} // namespace tarnwick::faults
