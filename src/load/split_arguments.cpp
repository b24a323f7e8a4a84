#include "load/load_file.h"
#include "text/wide_text.h"

namespace tarnwick {

std::vector<std::string> SplitArguments(const std::wstring& text) {
    const std::string line = NarrowFromWide(text);
    std::vector<std::string> arguments;
    std::size_t position = 0;
    const auto skipBlanks = [&] {
        while (position < line.size() && line[position] == ' ') { ++position; }
    };
    const auto find = [&](char c, std::size_t from) {
        const std::size_t found = line.find(c, from);
        return found == std::string::npos ? line.size() : found;
    };
    while (position < line.size() && arguments.size() < kMostArguments) {
        std::size_t start = position;
        std::size_t end;
        if (line[position] == '"') {
            ++start;
            end = find('"', start);
            position = end + 2;
        } else {
            // Blanks up to the first "." belong to a path's folders.
            const bool isPath = arguments.empty() && line[position] != '.';
            end = find(' ', isPath ? find('.', position) : position);
            position = end;
        }
        arguments.push_back(line.substr(start, end - start));
        skipBlanks();
    }
    return arguments;
}

std::wstring JoinArguments(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments) {
        if (!line.empty()) { line += ' '; }
        line += '"' + argument + '"';
    }
    return WideFromNarrow(line);
}

} // namespace tarnwick
