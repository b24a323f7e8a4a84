// What all fuzz targets share: a folder in memory for the files of an input, and the two ways in which a load
// may end the program as outcomes like any other.
#pragma once

#include "load/scene_view.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::fuzz {

// Thrown where the program would end by a bounds check, or would stand still for good.
struct ProgramEnd {};

// Limits the memory that an input may ask for at once.
void SetInputSize(std::size_t size);

// Runs one input of `size` bytes. Returns 0, which tells libFuzzer to keep the input if it found something
// new.
template <class Run>
int Outcome(std::size_t size, Run run) {
    SetInputSize(size);
    try {
        run();
    } catch (const ProgramEnd&) {}
    return 0;
}

// The folder of this process; it goes with it.
class Folder {
public:
    static Folder& Own();
    // Writes a file of that name; returns its path.
    std::string Write(const std::string& name, std::string_view bytes);
    // Removes what was written.
    void Clear();

    // Writes the files of a bundle: the text after a line "@@name" is the file of that name. Text before the
    // first such line, or without any, is the file `firstName`. Returns the paths, in their order.
    std::vector<std::string> WriteBundle(std::string_view bundle, const std::string& firstName);

private:
    Folder();
    ~Folder();
    std::string path_;
    std::vector<std::string> written_;
};

// Reads every number and index of what the view draws.
void Touch(const SceneView& view);

// Writes the scene report, the whole tree with all names; much slower.
void Report(const SceneView& view);

inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// Ends the process with a finding.
[[noreturn]] void Finding(const char* what);

} // namespace tarnwick::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
