#pragma once

#include "p21/step_model.h"
#include "platform/arena.h"
#include "platform/scratch_array.h"
#include "product/scene_records.h"

#include <cstdint>
#include <iterator>
#include <map>
#include <optional>
#include <vector>

namespace tarnwick {

// The points of one COORDINATES_LIST.
struct CoordCache {
    std::int32_t coordinatesId = 0; // entity number of the list; 0 at first
    std::int32_t count = 0;         // points
    const float* points = nullptr;  // x, y, z of each, in the scratch list or in the vertices of a face
};

// A COORDINATES_LIST that a face with pnindex has named.
struct KnownList {
    bool wasRead = false;
    // Whether `points` has the points: from the second reading on, for faces that take turns with other
    // lists, if the list ends on its own line, and until a character of it is written over.
    bool isKept = false;
    bool isWhole = false;      // else it broke off
    std::int32_t end = 0;      // where the reading ended, from the start of the text
    std::vector<float> points; // x, y, z of each
};

// What a reading thread keeps from face to face.
struct FaceScratch {
    // The list that the last face with pnindex took its points from, broken off or whole: it is parsed once
    // for faces that share it and follow one another.
    CoordCache coordCache;
    std::map<std::int32_t, KnownList> knownLists; // by the offset of their lines
    ScratchArray<float> list; // what `coordCache` points into, unless that is a known list
    // The last whole list that a face without pnindex has read, and has as its vertices. A list may be #0.
    std::optional<CoordCache> allPoints;
    ScratchArray<std::int32_t> strip; // the values of one strip or fan

    // Forgets the lists of the part before.
    void Reset() {
        coordCache = {};
        knownLists.clear();
        allPoints.reset();
    }

    // To be called when a parenthesis of the text is written over. The list in `coordCache` stays.
    void ForgetListAt(std::int32_t offset) {
        const auto next = knownLists.upper_bound(offset);
        if (next == knownLists.begin()) { return; }
        KnownList& known = std::prev(next)->second;
        if (offset <= known.end) { known.isKept = false; }
    }
};

inline constexpr char kNoMemoryForFace[] = "no memory for it";

// Why TraiteFace gave a face up, as a phrase after the face's number; null when the console needs no reason.
struct FaceProblem {
    const char* reason = nullptr;
};

// Reads one entity of code 17, 18 or 20 (TRIANGULATED_FACE, COMPLEX_TRIANGULATED_FACE,
// COMPLEX_TRIANGULATED_SURFACE_SET of ISO 10303-42) straight out of the model's text into `face`, whose
// arrays come from `arena` in the layout of vertex arrays. Where a list breaks off, the text is written to.
// Returns 0; 1 when the face has more normals than vertices (the record is complete all the same); -1 when it
// can't be read, with *problem set if the console should name a reason.
int TraiteFace(StepFaceB* face, const P42Ent* entity, StepModel& model, Arena& arena, FaceScratch* scratch,
               FaceProblem* problem);

// Reads a face before its turn, as TraiteFace would, if that would return 0, print nothing, and depend on
// nothing but the lines of the face and of its list. False for any other face: it must be read in its turn,
// and what is in `face` and `arena` then is worth nothing. Nothing is written to the text, so several threads
// may read faces of one model ahead, each with an arena and a scratch of its own. May throw std::bad_alloc.
bool ReadFaceAhead(StepFaceB* face, const P42Ent* entity, const StepModel& model, Arena& arena,
                   FaceScratch* scratch);

} // namespace tarnwick
