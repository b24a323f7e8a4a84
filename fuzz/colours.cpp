// The colours of a part, and the chain from each of its lines as if it were a style.
#include "geometry/part_reader.h"
#include "harness.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        fuzz::Folder::Own().Clear();
        ReaderWorkspace workspace;
        StepModel model(workspace, fuzz::Folder::Own().Write("x.stp", fuzz::Text(data, size)));
        if (model.Read() != StepModel::kRead) { return; }
        for (std::int32_t i = 0; i < model.entityCount && i < 200; ++i) {
            std::int32_t colourId = 0;
            float alpha = 0;
            ResolveStyle(model, model.EntityAt(i)->id, &colourId, &alpha);
        }
        Arena arena;
        PartScratch scratch;
        PartReader reader(model, nullptr, arena, scratch);
        ReadColours(reader);
    });
}
