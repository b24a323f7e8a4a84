#pragma once

#include "support/temp_folder.h"
#include "tools/make/command_line.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Runs the sample writer in a folder of its own.
namespace tarnwick::make {

namespace fs = std::filesystem;

inline std::string ReadFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

class MakeFiles : public testing::Test {
protected:
    int Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "tarnwick-make");
        std::vector<char*> argv;
        for (std::string& a : arguments) argv.push_back(a.data());
        return RunCommandLine(static_cast<int>(argv.size()), argv.data());
    }
    std::string Path(const std::string& name) { return (folder / name).string(); }
    std::size_t FileCount() {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }

private:
    test::TempFolder own_;

protected:
    const fs::path folder = own_.Path("");
};

} // namespace tarnwick::make
