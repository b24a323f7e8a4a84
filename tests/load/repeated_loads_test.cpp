// A viewer stays open all day: nothing of a load may be lost for good.

#include "formats/load_commands.h"
#include "load/generated_assembly.h"
#include "load/view_setup.h"
#include "support/capture.h"
#include "support/holdings.h"
#include "support/sanitized.h"

#include <unistd.h>

#include <gtest/gtest.h>

namespace tarnwick::test {
namespace {

TEST(RepeatedLoads, HoldWhatTheTenthOfThemHeld) {
    if (kSanitized) { GTEST_SKIP() << "a sanitizer keeps what is freed"; }
    const GeneratedAssembly assembly(17);
    long afterTen = 0;
    long afterAll = 0;
    {
        const LogCapture log;
        SceneView view;
        for (int load = 1; load <= 200; ++load) {
            LoadStepFile(view, assembly.path.c_str(), 1);
            if (load == 10) { afterTen = HoldingsNow().pages; }
        }
        afterAll = HoldingsNow().pages;
    }
    // What the log of the loads takes here is no more than a few pages.
    EXPECT_LT(static_cast<double>(afterAll), 1.02 * static_cast<double>(afterTen) + 64)
        << sysconf(_SC_PAGESIZE) << " bytes a page";
}

} // namespace
} // namespace tarnwick::test
