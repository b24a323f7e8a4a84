#include "tools/prepare/options.h"
#include "tools/parse_command_line.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <set>

namespace tarnwick::tools {

namespace {

// Two files with one name of the outcome would write over each other.
std::string FindClash(const PrepareCommand& command) {
    std::set<std::string> names;
    for (const std::string& file : command.files) {
        const std::string name = prepare::OutcomeName(file, command.options.isCompressed);
        if (!names.insert(name).second) { return name; }
    }
    return {};
}

} // namespace

bool ReadOptions(int argc, char** argv, PrepareCommand* command, int* status) {
    prepare::PrepareOptions& options = command->options;
    options.folder = "prepared";
    CLI::App app(
        "Brings STEP files of any kind into the form that the viewer shows: FOLDER/NAME.stp and, for an "
        "assembly, its parts in FOLDER/NAME.parts.",
        "tarnwick-prepare");
    app.allow_windows_style_options(false); // a path may begin with "/"
    app.set_version_flag("--version", std::string("tarnwick-prepare ") + TARNWICK_VERSION);
    app.add_option("FILE", command->files, "STEP files: stp, step, p21, stpx, xml, plain or packed")
        ->required();
    app.add_option("-o,--output", options.folder, "where the outcome goes (default: prepared)")
        ->type_name("FOLDER");
    app.add_option(
           "--deflection", options.deflection,
           "how far triangles may be off a curved surface, as a part of the part's diagonal (default: 0.001)")
        ->type_name("PART")
        ->check(CLI::Range(1e-6, 1.0));
    app.add_option("--angle", options.angle,
                   "the most between neighbouring pieces of a curve, in degrees (default: 20)")
        ->type_name("DEGREES")
        ->check(CLI::Range(1.0, 90.0));
    app.add_option("--jobs", options.jobs, "parts to work on at once (default: one for each processor)")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    app.add_option("--time-limit", options.timeLimit,
                   "for the exact shape of one part, in seconds (default: 60)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.1, 1e6));
    app.add_flag("--force", options.isForced, "prepare again what is there already");
    app.add_flag("--compress", options.isCompressed, "write zlib streams: NAME.stpz");
    app.add_option("--json", command->jsonFile, "write a report to FILE (- for standard output)")
        ->type_name("FILE");
    if (!ParseCommandLine(app, argc, argv, status)) { return false; }
    if (const std::string clash = FindClash(*command); !clash.empty()) {
        std::fprintf(stderr, "tarnwick-prepare: two of the files would both become %s\n", clash.c_str());
        *status = 2;
        return false;
    }
    return true;
}

} // namespace tarnwick::tools
