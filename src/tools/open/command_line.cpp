#include "tools/open/command_line.h"

#include <charconv>
#include <cstdio>
#include <string_view>
#include <vector>

namespace tarnwick::tools {

namespace {

constexpr const char* kHelp =
    "Usage: tarnwick-open FILE\n"
    "Shows any STEP file in the viewer. What the viewer doesn't show whole by itself is prepared first, "
    "into\n"
    "the user's cache; where there is no display, the path of what came goes to standard output.\n"
    "\n"
    "  FILE             stp, step, p21, stpx, xml, plain or packed, stpa or stpj\n"
    "  --path           open no window: write the path of what the viewer shows to standard output\n"
    "  --shows N FILE   end with 0 where the viewer by itself shows N triangles of FILE or more, else with "
    "1\n"
    "  --help           print this text and exit\n"
    "  --version        print the version and exit\n";

bool ReadCount(std::string_view word, OpenCommand* command) {
    std::size_t count = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
    if (error != std::errc{} || end != word.data() + word.size()) { return false; }
    command->shows = count;
    return true;
}

} // namespace

bool ReadOptions(int argc, const char* const* argv, OpenCommand* command, int* status) {
    *status = 0;
    const std::vector<std::string_view> words(argv + (argc > 0 ? 1 : 0), argv + argc);
    std::size_t files = 0;
    bool isRight = true;
    bool hasOptions = true;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (hasOptions && word == "--help") {
            std::fputs(kHelp, stdout);
            return false;
        }
        if (hasOptions && word == "--version") {
            std::puts("tarnwick-open " TARNWICK_VERSION);
            return false;
        }
        if (hasOptions && word == "--") {
            hasOptions = false;
        } else if (hasOptions && word == "--path") {
            command->isPathAsked = true;
        } else if (hasOptions && word == "--shows") {
            isRight = isRight && ++i < words.size() && ReadCount(words[i], command);
        } else if (hasOptions && word.size() > 1 && word[0] == '-') {
            isRight = false;
        } else {
            command->file = word;
            ++files;
        }
    }
    if (isRight && files == 1 && !command->file.empty()) { return true; }
    std::fputs("tarnwick-open: it takes the path of one file; --help tells more\n", stderr);
    *status = 2;
    return false;
}

} // namespace tarnwick::tools
