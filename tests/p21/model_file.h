#pragma once

#include "p21/step_model.h"
#include "support/temp_folder.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

// A text that was written to a file and read by a StepModel, with what the reading printed.
struct ModelFile {
    explicit ModelFile(std::string_view bytes, std::string_view name = "part.stp");
    // Reads a path in a folder that the test has filled.
    ModelFile(const TempFolder& folder, std::string_view name);

    // The record of a number; null when there is none.
    P42Ent* Find(std::int32_t id) const { return model->Find(id); }
    // The numbers of all records in file order.
    std::vector<std::int32_t> Ids() const;
    std::int32_t CodeOf(std::int32_t id) const;

    TempFolder own;
    ReaderWorkspace workspace;
    std::unique_ptr<StepModel> model;
    int result = -1;
    std::string output;
    std::string console;

private:
    void Read(const std::string& path);
};

// "\nNombre d'entites ..." as the scan ends with it.
std::string CountLine(int count);

} // namespace tarnwick::test
