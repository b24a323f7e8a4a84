// The scan and the index of one file, plain or inflated.
#include "harness.h"
#include "p21/step_model.h"
#include "report/report.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        fuzz::Folder::Own().Clear();
        const bool isPlain = size > 0 && data[0] == 'I';
        ReaderWorkspace workspace;
        StepModel model(workspace,
                        fuzz::Folder::Own().Write(isPlain ? "x.stp" : "x.stpz", fuzz::Text(data, size)));
        const int result = model.Read();
        if ((model.entityMap != nullptr) != (result == StepModel::kRead)) { fuzz::Finding("half a table"); }
        if (size < 8192) { IndexReport(model, result, true); } // most of the time otherwise
        for (std::int32_t i = 0; result == StepModel::kRead && i < model.entityCount; ++i) {
            const P42Ent* const record = model.EntityAt(i);
            if (model.Find(record->id) == nullptr || model.text[record->offset] != '#') {
                fuzz::Finding("a record out of place");
            }
            TextWalk walk = model.WalkFrom(record);
            std::vector<std::int32_t> ids;
            ParseIdList(&walk, &ids);
        }
    });
}
