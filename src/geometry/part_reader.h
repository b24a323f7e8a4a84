#pragma once

#include "geometry/faces_ahead.h"
#include "geometry/triangulated_face.h"
#include "p21/step_model.h"
#include "platform/arena.h"
#include "product/scene_records.h"
#include "text/look_up.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace tarnwick {

// One row of a part's colour table. A colour has a row for each alpha with which styles use it.
struct ColourEntry {
    std::int32_t colourId; // entity number of the colour
    float red, green, blue;
    float alpha; // -1 while no style uses the row
};

// From the entity number of a styled item, or of a style, to a row of the colour table.
using ColourIndex = LookUp<std::int32_t, std::int32_t>;

// What a reading thread keeps from part to part.
struct PartScratch {
    FaceScratch face;
    std::vector<StepFaceB*> faces;
    std::vector<std::int32_t> itemIds;
    std::vector<std::int32_t> faceIds;
    std::vector<ColourEntry> colours;
};

// Turns one opened model that holds the geometry of one part into drawable meshes: from its one
// TESSELLATED_SHAPE_REPRESENTATION to the solids, shells and surface sets that it lists, and to their faces;
// nothing else in the file is touched. Created for one model, run once, thrown away; the records that it
// makes are in `arena`. One thread at a time uses a reader, its model, its scratch and its arena.
class PartReader {
public:
    // `part` may be null for a file that is the whole document; a product is then made from its root PRODUCT.
    PartReader(StepModel& partModel, ProductNode* part, Arena& sceneArena, PartScratch& partScratch);

    // Reads the part and takes the times. Returns 0, even when the part was given up.
    int Run();

    // Returns 0, or what the first face that failed returned; the product then has no draw list.
    int ReadPart();

    // Makes the product of a file that is the whole document, named after its root PRODUCT. False when there
    // is none, its line runs past the end of the text, or (with `noMemory`) memory runs out.
    bool MakeProduct();

    StepModel& model;
    ProductNode* product;
    Arena& arena;
    PartScratch& scratch;
    std::int32_t triangleTotal = 0;       // triangles read
    std::int32_t faceTotal = 0;           // faces read
    FaceContainer** containers = nullptr; // as many slots as the representation has items
    std::int32_t containerCount = 0;      // solids and shells met, also of a part that was given up
    std::uint32_t triangleSum = 0;        // triangles and faces of a part that was read to its end
    std::uint32_t faceSum = 0;
    double readSeconds = 0;
    double inflateSeconds = 0;
    double parseSeconds = 0;
    bool givenUp = false;            // its product gets no meshes
    bool noMemory = false;           // which is why it was given up
    ColourIndex colourIndex;         // by the entity number of a solid, shell, surface set or face
    std::int32_t currentColour = -1; // row of the current container, -1 for none
    float box[6] = {};               // of all faces read so far

private:
    bool ReadItemIds();
    bool FindRawMaterial(bool* isRawMaterial);
    int ReadContainer(const P42Ent* entity);
    bool ReadContainerItems(const P42Ent* entity, std::int32_t* exactContainerId);
    int ReadFace(const P42Ent* entity, const FaceContainer* container);
    int ReadFaceInTurn(const P42Ent* entity, StepFaceB** face);
    bool HandOver();
    void SayMissing(std::int32_t id);
    int GiveUp(const char* reason);
    int GiveUpForMemory();
    int GiveUpUnlessMemory(const char* reason);
    int GiveUpFace(const P42Ent* entity, const FaceProblem& problem);

    FacesAhead ahead_;
    bool missingSaid_ = false; // one line for each part is enough
};

// Fills the colour table in the reader's scratch and its `colourIndex` by the styled items that the first
// MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION lists. What can't be resolved stays out of the
// index. False when a line runs past the end of the text.
bool ReadColours(PartReader& reader);

// Follows a PRESENTATION_STYLE_ASSIGNMENT to its colour and alpha. Returns 0; 1 when the chain has another
// shape than expected, such as that of a curve's style, or ends nowhere. The number of a
// SURFACE_STYLE_TRANSPARENT is the alpha as it is.
int ResolveStyle(const StepModel& model, std::int32_t styleId, std::int32_t* colourId, float* alpha);

// Whether a DRAUGHTING_PRE_DEFINED_COLOUR of this name has a colour.
bool IsKnownColourName(std::string_view name);

// Writes the names of raw materials on the reader's containers: those of the products that a
// MAKE_FROM_USAGE_OPTION names, on the solids that its own shape representation lists. False when a line runs
// past the end of the text, or (with the reader's `noMemory`) memory runs out.
bool LinkRawMaterial(PartReader& reader);

} // namespace tarnwick
