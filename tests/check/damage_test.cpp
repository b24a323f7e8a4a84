// A check of damaged files comes to its end, with findings whose lines are there. Under AddressSanitizer
// this shows that no walk leaves the text.

#include "check/checked.h"

#include "support/assembly_text.h"
#include "support/p21_text.h"
#include "support/sanitized.h"

#include <algorithm>
#include <ostream>

namespace tarnwick::test {
namespace {

std::string SmallAssembly() {
    AssemblyText text;
    const int top = text.Product("top");
    const int wheel = text.Product("wheel");
    text.Use(top, wheel, At(1, 2, 3));
    text.File(wheel, "wheel.stp");
    return text.Text();
}

// False when a finding names a line that the text doesn't have.
bool HasSoundLines(const TempFolder& folder, const std::string& text) {
    const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
    const CheckReport report = CheckedUntried(folder.Write("top.stp", text));
    return std::all_of(report.findings.begin(), report.findings.end(), [lines](const Finding& finding) {
        return finding.line >= 0 && finding.line <= lines && (finding.offset >= 0) == (finding.line > 0);
    });
}

struct Model {
    const char* name;
    std::string (*text)();
};

void PrintTo(const Model& model, std::ostream* out) {
    *out << model.name;
}

class CheckDamaged : public testing::TestWithParam<Model> {};

TEST_P(CheckDamaged, FilesThatAreCutAnywhere) {
    const TempFolder folder;
    const std::string good = GetParam().text();
    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_TRUE(HasSoundLines(folder, good.substr(0, size))) << size;
    }
}

TEST_P(CheckDamaged, FilesWithAnotherCharacterAnywhere) {
    const TempFolder folder;
    const std::string good = GetParam().text();
    const std::size_t step = kSanitized ? 3 : 1;
    for (const char c : std::string_view("'(),#\n;9\0", 9)) {
        for (std::size_t place = 0; place < good.size(); place += step) {
            std::string text = good;
            text[place] = c;
            EXPECT_TRUE(HasSoundLines(folder, text)) << place << " '" << c << "'";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Each, CheckDamaged,
                         testing::Values(Model{"Part", GoodPart}, Model{"OtherPart", SmallPartText},
                                         Model{"Assembly", SmallAssembly}),
                         [](const auto& model) { return std::string(model.param.name); });

} // namespace
} // namespace tarnwick::test
