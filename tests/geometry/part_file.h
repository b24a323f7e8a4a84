#pragma once

#include "geometry/part_reader.h"
#include "support/temp_folder.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

// A part that was written to a file and read by a PartReader, with what the reading printed.
struct PartFile {
    explicit PartFile(std::string_view bytes, std::string_view name = "part.stp",
                      ProductNode* product = nullptr, Helpers* helpers = nullptr);

    const StepFaceB& Face(std::size_t index) const { return *scratch.faces.at(index); }
    // The face of a number; it must have been read.
    const StepFaceB& FaceOf(std::int32_t id) const;
    std::vector<std::int32_t> FaceIds() const;
    const FaceContainer& Container(std::int32_t index) const { return *reader->containers[index]; }
    // The item that was handed over, or null.
    const DrawItem* Item() const;

    TempFolder folder;
    ReaderWorkspace workspace;
    StepModel model;
    Arena arena;
    PartScratch scratch;
    std::unique_ptr<PartReader> reader;
    int result = 0;
    std::string output;
    std::string console;
};

// "red green blue alpha" of a face.
std::string ColourOf(const StepFaceB& face);
inline constexpr const char* kDefaultColour = "0.3 0.3 0.3 1";

// A square of four points, #10, and a face on it.
extern const std::string kSquare;
std::string FaceLine(int id);

} // namespace tarnwick::test
