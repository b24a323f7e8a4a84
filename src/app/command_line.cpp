#include "app/command_line.h"
#include "platform/environment.h"

#include <cstdio>

namespace tarnwick {

namespace {

constexpr const char* kHelp = "Usage: tarnwick [--resident] [FILE [PRODUCT]]\n"
                              "Shows STEP product data with tessellated geometry.\n"
                              "\n"
                              "  FILE       the file to show: stp, stpz, stpx, stpxz, stpj or stpa\n"
                              "  PRODUCT    name of the product to show (STEP XML and archives)\n"
                              "  --resident keep the arrays of a scene on the graphics card, up to 1 GiB\n"
                              "  --help     print this text and exit\n"
                              "  --version  print the version and exit\n"
                              "\n"
                              "Left button: turn, and click to select. Right button: zoom. Middle button: "
                              "pan. P: snapshot. Escape: close.\n";

} // namespace

std::optional<int> AnswerAtOnce(int argc, const char* const* argv) {
    for (const std::string& argument : ArgumentsOf(argc, argv)) {
        if (argument == "--help") {
            std::fputs(kHelp, stdout);
            return 0;
        }
        if (argument == "--version") {
            std::puts("tarnwick " TARNWICK_VERSION);
            return 0;
        }
    }
    if (!HasDisplay()) {
        std::fputs("tarnwick: there is no display to open a window on; tarnwick-load needs none\n", stderr);
        return 1;
    }
    return std::nullopt;
}

std::vector<std::string> ArgumentsOf(int argc, const char* const* argv) {
    return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

bool TakeResident(std::vector<std::string>* arguments) {
    const bool isOrdered = EnvironmentText("TARNWICK_RESIDENT") == "1";
    return std::erase(*arguments, "--resident") > 0 || isOrdered;
}

} // namespace tarnwick
