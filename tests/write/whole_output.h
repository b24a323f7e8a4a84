#pragma once

#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace tarnwick::test {

// Text that doesn't pack well.
inline std::string LongText() {
    std::string text;
    unsigned number = 1;
    for (int i = 0; i < 300000; ++i) {
        number = number * 1664525u + 1013904223u;
        text += static_cast<char>(' ' + (number >> 24) % 90);
    }
    return text;
}

class WholeOutputTest : public testing::Test {
protected:
    std::size_t FilesThere() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder_.Path("")),
                                                      std::filesystem::directory_iterator()));
    }

    const TempFolder folder_;
    const std::string path_ = folder_.Path("model");
};

} // namespace tarnwick::test
