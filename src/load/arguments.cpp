#include "load/arguments.h"

namespace tarnwick {

std::vector<std::string> SplitArguments(std::string_view line) {
    std::vector<std::string> arguments;
    std::size_t position = 0;
    const auto skipBlanks = [&] {
        while (position < line.size() && line[position] == ' ') { ++position; }
    };
    const auto find = [&](char c, std::size_t from) {
        const std::size_t found = line.find(c, from);
        return found == std::string_view::npos ? line.size() : found;
    };
    while (position < line.size() && arguments.size() < kMostArguments) {
        std::size_t start = position;
        std::size_t end;
        if (line[position] == '"') {
            ++start;
            end = find('"', start);
            position = end + 2;
        } else {
            // A path's folders may have blanks, up to its first ".".
            const bool isPath = arguments.empty() && line[position] != '.';
            end = find(' ', isPath ? find('.', position) : position);
            position = end;
        }
        arguments.emplace_back(line.substr(start, end - start));
        skipBlanks();
    }
    return arguments;
}

std::string JoinArguments(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments) {
        if (!line.empty()) { line += ' '; }
        line += '"' + argument + '"';
    }
    return line;
}

} // namespace tarnwick
