#include "tools/load/options.h"
#include "tools/parse_command_line.h"

#include <CLI/CLI.hpp>

#include <limits>
#include <string>
#include <vector>

namespace tarnwick::tools {

bool ReadOptions(int argc, char** argv, LoadOptions* options, int* status) {
    CLI::App app("Loads a STEP file as the viewer does and prints the status text; what the load says goes "
                 "to standard error.",
                 "tarnwick-load");
    app.allow_windows_style_options(false); // a path may begin with "/"
    app.set_version_flag("--version", std::string("tarnwick-load ") + TARNWICK_VERSION);
    app.add_option("PATH", options->path, "the file to load")->required();
    app.add_option("PRODUCT", options->product, "name of the product to show (STEP XML and archives)");
    auto* const json =
        app.add_option("--json", options->jsonFile, "write the scene report to FILE (- for standard output)")
            ->type_name("FILE");
    auto* const arrays =
        app.add_flag("--arrays", options->arrays, "put the arrays of all meshes into the report");
    auto* const depth =
        app.add_option("--depth", options->depth, "set the Depth slider to N after the load (summary files)")
            ->type_name("N")
            ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()));
    auto* const noThreads = app.add_flag("--no-threads", options->noThreads, "read all files on one thread");
    auto* const repeat = app.add_option("--repeat", options->repeat, "load N times in one process")
                             ->type_name("N")
                             ->check(CLI::PositiveNumber);
    auto* const index =
        app.add_flag("--index", options->index, "print the entity index of one P21 file instead");
    auto* const entities =
        app.add_flag("--entities", options->entities, "put the whole entity table into the index");
    auto* const check = app.add_flag(
        "--check", options->check, "tell instead why a file shows less than it should; with --json as JSON");
    auto* const verbose =
        app.add_flag("--verbose", options->verbose,
                     "end the check with what the load says and the number of entities of each keyword");
    verbose->needs(check);
    arrays->needs(json);
    entities->needs(index);
    for (CLI::Option* const other : {json, arrays, depth, noThreads, repeat}) { index->excludes(other); }
    for (CLI::Option* const other : {arrays, depth, repeat, index}) { check->excludes(other); }
    return ParseCommandLine(app, argc, argv, status);
}

} // namespace tarnwick::tools
