#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace tarnwick::tools {

// Lets `app` read the command line. Returns false when the program is to end at once, with *status as its
// exit status: 0 after --help and --version, 2 after a wrong command line, which it has explained on standard
// error.
inline bool ParseCommandLine(CLI::App& app, int argc, const char* const* argv, int* status) {
    try {
        app.parse(argc, argv);
    } catch (const CLI::RequiredError& error) {
        // An option that isn't known says more about what went wrong than that something is missing.
        const std::vector<std::string> unknown = app.remaining();
        if (unknown.empty()) {
            app.exit(error);
        } else {
            app.exit(CLI::ExtrasError(unknown));
        }
        *status = 2;
        return false;
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? 0 : 2;
        return false;
    }
    return true;
}

} // namespace tarnwick::tools
