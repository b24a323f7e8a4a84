#pragma once

#include "geometry/triangulated_face.h"
#include "p21/step_model.h"
#include "platform/arena.h"
#include "platform/helpers.h"
#include "product/scene_records.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarnwick {

// The faces of a part, read by several threads before the part itself: all of them or none. Where one face
// must be read in its turn, the part is read as if nobody had tried.
class FacesAhead {
public:
    // Reads the faces of the items of a representation, with `helpers`, into `arena`. False, with all as it
    // was, when that isn't worth it, a face must be read in its turn, or memory runs out. Prints nothing and
    // writes nothing to the text.
    bool Read(const StepModel& model, const std::vector<std::int32_t>& itemIds, Helpers& helpers,
              Arena& arena, FaceScratch* scratch);

    // The next face in the order of the items, if it is that of the entity; else null.
    StepFaceB* Take(const P42Ent* entity);

private:
    bool Plan(const StepModel& model, const std::vector<std::int32_t>& itemIds);
    bool PlanContainer(const StepModel& model, const P42Ent* container);
    bool ReadFaces(const StepModel& model, Helpers& helpers, Arena& arena, FaceScratch* scratch);
    bool ReadSome(std::size_t first, std::size_t count, const StepModel& model, Arena& arena,
                  FaceScratch* scratch);
    bool SharesList(std::size_t face, const StepModel& model) const;
    void Forget();

    std::vector<const P42Ent*> entities_; // in the order of the items
    std::vector<StepFaceB*> faces_;       // of the entities
    std::vector<std::int32_t> ids_;       // that the current container lists
    std::size_t taken_ = 0;               // faces
};

} // namespace tarnwick
