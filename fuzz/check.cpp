// Why a file shows less than it should: the check of the files of an assembly, and its two reports.
#include "check/check_path.h"
#include "harness.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        const auto paths = fuzz::Folder::Own().WriteBundle(fuzz::Text(data, size), "top.stp");
        const CheckReport report = CheckWith(paths[0], nullptr, {});
        CheckText(report);
        CheckJson(report);
    });
}
