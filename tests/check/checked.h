#pragma once

#include "check/check_path.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tarnwick::test {

using testing::ElementsAre;
using testing::IsEmpty;

// The report of a file, with nothing printed. An archive is only read with threads.
CheckReport Checked(const std::string& path, bool useThreads = 0);

// The same of a P21 file without a trial of the load, for checks by the thousand.
CheckReport CheckedUntried(const std::string& path);

// "kind line #entity" of each finding, as far as it has these; in an assembly the file's name comes first.
std::vector<std::string> Brief(const CheckReport& report);
// The same for a file of that name with this text.
std::vector<std::string> Findings(std::string_view text, std::string_view name = "part.stp");
// The texts of its findings.
std::vector<std::string> Texts(std::string_view text);

// A part in which nothing is wrong: a solid, #20, of the faces #30 and #31, and a surface set, #22, all
// coloured. Its first entity stands on line 8.
std::string GoodPart();
// The same with the one place where `from` stands replaced.
std::string Edited(std::string_view from, std::string_view to);
std::string EditedIn(std::string text, std::string_view from, std::string_view to);

} // namespace tarnwick::test
