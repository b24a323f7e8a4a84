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

// The faces of a part, read by several threads before the part itself is: all of them or none, so that a part
// of which one face must be read in its turn is read as if nobody had tried.
class FacesAhead {
public:
    // Reads the faces of the items of a representation, with `helpers`, into `arena`. False when that isn't
    // worth it, a face must be read in its turn, or memory runs out: all is then as it was. Says nothing and
    // writes nothing to the text.
    bool Read(const StepModel& model, const std::vector<std::int32_t>& itemIds, Helpers& helpers,
              Arena& arena, FaceScratch* scratch);

    // The face that comes next in the order of the items, if it is that of the entity; else null.
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
    std::vector<StepFaceB*> faces_;       // of them
    std::vector<std::int32_t> ids_;       // of the container in hand
    std::size_t taken_ = 0;
};

} // namespace tarnwick
