#include "tools/make/command_line.h"
#include "tools/parse_command_line.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace tarnwick::make {

namespace {

struct Kind {
    CLI::App* command;
    std::function<std::string()> check;
    std::function<int()> run;
};

struct Options {
    PartOptions part;
    AssemblyOptions assembly;
    FemOptions fem;
    StpxOptions stpx;
    StpxOptions stpa;
    StpjOptions stpj;
};

std::vector<Kind> AddKinds(CLI::App* app, Options* o) {
    return {
        {AddPartCommand(app, &o->part), [o] { return CheckPartOptions(o->part); },
         [o] { return RunPart(o->part); }},
        {AddAssemblyCommand(app, &o->assembly), [o] { return CheckAssemblyOptions(o->assembly); },
         [o] { return RunAssembly(o->assembly); }},
        {AddFemCommand(app, &o->fem), [] { return std::string(); }, [o] { return RunFem(o->fem); }},
        {AddStpxCommand(app, &o->stpx), [o] { return CheckStpxOptions(o->stpx); },
         [o] { return RunStpx(o->stpx); }},
        {AddStpaCommand(app, &o->stpa), [o] { return CheckStpaOptions(o->stpa); },
         [o] { return RunStpa(o->stpa); }},
        {AddStpjCommand(app, &o->stpj), [o] { return CheckStpjOptions(o->stpj); },
         [o] { return RunStpj(o->stpj); }},
    };
}

int RunChosen(const std::vector<Kind>& kinds) {
    for (const Kind& kind : kinds) {
        if (!kind.command->parsed()) { continue; }
        const std::string wrong = kind.check();
        if (wrong.empty()) { return kind.run(); }
        std::fprintf(stderr, "tarnwick-make: %s\n", wrong.c_str());
    }
    return 2;
}

} // namespace

int RunCommandLine(int argc, char** argv) {
    CLI::App app("Writes sample models. The same options give the same bytes.", "tarnwick-make");
    app.allow_windows_style_options(false); // a path may begin with "/"
    app.set_version_flag("--version", "tarnwick-make " TARNWICK_VERSION);
    app.require_subcommand(1);
    Options options;
    const std::vector<Kind> kinds = AddKinds(&app, &options);
    int status = 0;
    if (!tools::ParseCommandLine(app, argc, argv, &status)) { return status; }
    return RunChosen(kinds);
}

} // namespace tarnwick::make
