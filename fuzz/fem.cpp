// The finite elements of a file, whatever schema it names.
#include "geometry/finite_elements.h"
#include "harness.h"

using namespace tarnwick;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzz::Outcome(size, [&] {
        fuzz::Folder::Own().Clear();
        ReaderWorkspace workspace;
        StepModel model(workspace, fuzz::Folder::Own().Write("x.stp", fuzz::Text(data, size)));
        if (model.Read() != StepModel::kRead) { return; }
        SceneView view;
        view.loaded.scene = std::make_unique<SceneMemory>();
        PartScratch scratch;
        FiniteElementReader reader(model, view.loaded.scene->Main(), scratch);
        ReadFiniteElements(reader);
        view.loaded.root = reader.part.product;
        view.loaded.resultMesh = reader.resultMesh;
        fuzz::Touch(view);
        if (size < 8192) { fuzz::Report(view); }
    });
}
