#pragma once

#include "platform/whole_file.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace tarnwick::test {

// A folder of its own, for a file of one name.
class WholeFileTest : public testing::Test {
protected:
    std::size_t FilesThere() const {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder_.Path(""))) {
            ++count;
        }
        return count;
    }

    TempFolder folder_;
    std::string path_ = folder_.Path("report.json");
};

} // namespace tarnwick::test
