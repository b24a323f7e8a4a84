#pragma once

#include "support/json.h"
#include "support/p21_text.h"
#include "support/run_program.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarnwick::test {

using nlohmann::json;

// A folder with a good part in it, for runs of the built program.
class LoadProgram : public testing::Test {
protected:
    ProgramRun Run(const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment = {}) {
        return RunProgram(TARNWICK_LOAD, arguments, environment);
    }

    TempFolder folder_;
    std::string part_ = folder_.Write("part.stp", SmallPartText());
};

// The one object with the member "format" that stands in a text among other lines.
inline json ObjectIn(const std::string& text) {
    for (std::size_t from = 0; from < text.size();) {
        std::size_t to = text.find('\n', from);
        if (to == std::string::npos) { to = text.size(); }
        const json object = ParseJson(text.substr(from, to - from));
        if (object.is_object() && object.contains("format")) { return object; }
        from = to + 1;
    }
    return {};
}

} // namespace tarnwick::test
