#include "geometry/faces_ahead.h"

#include "p21/keyword_codes.h"
#include "platform/within_memory.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>

namespace tarnwick {

namespace {

// The number of the list that a face names, if it is near the start of the line, else 0. It only tells which
// faces belong together.
std::int32_t PeekListId(const StepModel& model, const P42Ent* face) {
    constexpr std::ptrdiff_t kNear = 100;
    const char* const line = model.text + face->offset;
    TextWalk walk{line, line + std::min(kNear, model.textEnd - line)};
    walk.GoTo('(');
    walk.PassCommas(1);
    walk.GoTo('#');
    walk.Step();
    return walk.overrun ? 0 : StringToInteger(walk.at);
}

bool IsFace(const P42Ent* entity) {
    return entity->code == code::kTriangulatedFace || entity->code == code::kComplexTriangulatedFace;
}

} // namespace

bool FacesAhead::Read(const StepModel& model, const std::vector<std::int32_t>& itemIds, Helpers& helpers,
                      Arena& arena, FaceScratch* scratch) {
    const Arena::Place place = arena.Here();
    bool read = false;
    WithinMemory([&] {
        read = Plan(model, itemIds) && entities_.size() > 1 && ReadFaces(model, helpers, arena, scratch);
    });
    scratch->Reset();
    if (read) { return true; }
    arena.GoBack(place);
    Forget();
    return false;
}

StepFaceB* FacesAhead::Take(const P42Ent* entity) {
    return taken_ < entities_.size() && entities_[taken_] == entity ? faces_[taken_++] : nullptr;
}

// Finds the faces that there are. False when a list runs past its line.
bool FacesAhead::Plan(const StepModel& model, const std::vector<std::int32_t>& itemIds) {
    for (const std::int32_t id : itemIds) {
        const P42Ent* const item = model.Find(id);
        if (item == nullptr) { continue; }
        if (item->code == code::kTessellatedSolid || item->code == code::kTessellatedShell) {
            if (!PlanContainer(model, item)) { return false; }
        } else if (item->code == code::kComplexTriangulatedSurfaceSet) {
            entities_.push_back(item);
        }
    }
    faces_.resize(entities_.size());
    return true;
}

// False also when there is no place for the link in the container's own line: its reader writes there.
bool FacesAhead::PlanContainer(const StepModel& model, const P42Ent* container) {
    TextWalk walk = model.WalkInLine(container);
    walk.GoTo('(');
    walk.PassCommas(1);
    ids_.clear();
    ParseIdList(&walk, &ids_);
    walk.PassCommas(1);
    if (walk.overrun || walk.Next<'#', ')', '$'>(walk.at) == walk.end) { return false; }
    for (const std::int32_t id : ids_) {
        const P42Ent* const face = model.Find(id);
        if (face != nullptr && IsFace(face)) { entities_.push_back(face); }
    }
    return true;
}

bool FacesAhead::ReadFaces(const StepModel& model, Helpers& helpers, Arena& arena, FaceScratch* scratch) {
    // Threads take a few neighbours at a time, some hundred times each, so that all end at almost the same
    // moment.
    const std::size_t atATime = std::clamp<std::size_t>(entities_.size() / 1000, 1, 64);
    std::array<Arena, Helpers::kMost> arenas;
    std::atomic<std::size_t> joined = 0;
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> failed = false;
    const auto readSome = [&](Arena& ownArena, FaceScratch* ownScratch) {
        while (!failed) {
            const std::size_t first = next.fetch_add(atATime);
            if (first >= entities_.size()) { return; }
            if (!ReadSome(first, atATime, model, ownArena, ownScratch)) { failed = true; }
        }
    };
    const auto readMine = [&](bool isOwn) {
        const bool enough = WithinMemory([&] {
            if (isOwn) { return readSome(arena, scratch); }
            const std::size_t place = joined++;
            if (place >= arenas.size()) { return; }
            FaceScratch ownScratch;
            readSome(arenas[place], &ownScratch);
        });
        if (!enough) { failed = true; }
    };
    helpers.Run(std::ref(readMine)); // a reference, which needs no memory
    bool read = !failed;
    for (std::size_t i = 0; i < arenas.size() && read; ++i) { read = arena.TakeOver(&arenas[i]); }
    return read;
}

// Reads `count` faces from `first` on. Faces that follow one another and take their points from one list are
// all read by the thread that reads the first of them, so that no two threads read the same list.
bool FacesAhead::ReadSome(std::size_t first, std::size_t count, const StepModel& model, Arena& arena,
                          FaceScratch* scratch) {
    const std::size_t last = std::min(first + count, entities_.size());
    while (first < last && SharesList(first, model)) { ++first; }
    if (first == last) { return true; }
    for (std::size_t i = first; i < last || (i < entities_.size() && SharesList(i, model)); ++i) {
        faces_[i] = arena.New<StepFaceB>();
        if (faces_[i] == nullptr || !ReadFaceAhead(faces_[i], entities_[i], model, arena, scratch)) {
            return false;
        }
    }
    return true;
}

// Whether the face takes its points from the list that the one before it takes them from.
bool FacesAhead::SharesList(std::size_t face, const StepModel& model) const {
    if (face == 0) { return false; }
    const std::int32_t listId = PeekListId(model, entities_[face]);
    return listId != 0 && listId == PeekListId(model, entities_[face - 1]);
}

void FacesAhead::Forget() {
    entities_.clear();
    faces_.clear();
    taken_ = 0;
}

} // namespace tarnwick
