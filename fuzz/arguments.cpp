// The text of a path or of a command line, split and joined again.
#include "load/arguments.h"
#include "harness.h"
#include "text/wide_text.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const std::string_view line = fuzz::Text(data, size);
        if (NarrowFromWide(WideFromNarrow(line)) != line) { fuzz::Finding("a text that comes back changed"); }
        const std::vector<std::string> arguments = SplitArguments(line);
        if (arguments.size() > kMostArguments) { fuzz::Finding("too many arguments"); }
        bool hasQuote = false;
        for (const std::string& argument : arguments) {
            hasQuote = hasQuote || argument.find('"') != std::string::npos;
        }
        if (!hasQuote && SplitArguments(JoinArguments(arguments)) != arguments) {
            fuzz::Finding("arguments that don't come back");
        }
    });
}
