#include "tools/open/open_words.h"

#include "platform/paths.h"
#include "tools/prepare/outcome.h"
#include "tools/prepare/progress.h"

#include <cstdio>

namespace tarnwick::tools {

int OpenInWords(const std::string& file, const prepare::PrepareOptions& options,
                const std::atomic<bool>* cancel) {
    OpenOutcome outcome;
    {
        Progress progress(NameOf(file));
        outcome = FindShown(
            file, options, [&](std::size_t done, std::size_t parts) { progress.Tell(done, parts); }, cancel);
    }
    // Without an input nothing was prepared.
    if (!outcome.result.input.empty()) { std::fputs(OutcomeText(outcome.result).c_str(), stderr); }
    if (outcome.path.empty()) { return 1; }
    return std::printf("%s\n", outcome.path.c_str()) > 0 && std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace tarnwick::tools
