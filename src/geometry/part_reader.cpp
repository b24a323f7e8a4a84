#include "geometry/part_reader.h"

#include "p21/keyword_codes.h"
#include "platform/clock.h"
#include "platform/console.h"
#include "product/draw_list.h"
#include "product/merge_box.h"
#include "text/one_line.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace tarnwick {

namespace {

constexpr std::int32_t kFailed = -1;

} // namespace

PartReader::PartReader(StepModel& partModel, ProductNode* part, Arena& sceneArena, PartScratch& partScratch)
    : model(partModel), product(part), arena(sceneArena), scratch(partScratch) {
    scratch.face.Reset();
    scratch.faces.clear();
    scratch.itemIds.clear();
    scratch.colours.clear();
}

int PartReader::Run() {
    readSeconds += model.readSeconds;
    inflateSeconds += model.inflateSeconds;
    const double start = ClockSeconds();
    givenUp = ReadPart() != 0;
    parseSeconds += ClockSeconds() - start;
    return 0;
}

int PartReader::ReadPart() {
    if (!ReadColours(*this)) { return GiveUp("a colour's line runs past the end of the file"); }
    if (product == nullptr && !MakeProduct()) { return GiveUpUnlessMemory("it has no PRODUCT"); }
    if (!ReadItemIds()) {
        return GiveUp("its TESSELLATED_SHAPE_REPRESENTATION runs past the end of the file");
    }
    containers = arena.New<FaceContainer*>(scratch.itemIds.size());
    if (containers == nullptr) { return GiveUpForMemory(); }
    bool isRawMaterial = false;
    if (!FindRawMaterial(&isRawMaterial)) {
        return GiveUp("a product category runs past the end of the file");
    }
    if (Helpers* const helpers = model.HelpersForIt()) {
        ahead_.Read(model, scratch.itemIds, *helpers, arena, &scratch.face);
    }
    for (const std::int32_t id : scratch.itemIds) {
        const P42Ent* const item = model.Find(id);
        if (item == nullptr) {
            SayMissing(id);
            continue;
        }
        int result = 0;
        if (item->code == code::kTessellatedSolid || item->code == code::kTessellatedShell) {
            result = ReadContainer(item);
        } else if (item->code == code::kComplexTriangulatedSurfaceSet) {
            // `currentColour` stays: a set without a colour of its own takes the one left over from the last
            // container.
            result = ReadFace(item, nullptr);
        }
        if (result != 0) { return result; }
    }
    if (isRawMaterial && !LinkRawMaterial(*this)) {
        return GiveUpUnlessMemory("a raw material's line runs past the end of the file");
    }
    triangleSum += static_cast<std::uint32_t>(triangleTotal);
    faceSum += static_cast<std::uint32_t>(faceTotal);
    if (!HandOver()) { return GiveUpForMemory(); }
    return 0;
}

bool PartReader::MakeProduct() {
    TextWalk walk;
    if (!model.OpenLine(model.rootProductId, &walk)) { return false; }
    const std::string_view name = ReadFirstString(&walk, kNameRoom);
    if (walk.overrun) { return false; }
    ProductNode* const made = arena.New<ProductNode>();
    const char* const copy = arena.Copy(name.data(), name.size());
    noMemory = made == nullptr || copy == nullptr;
    if (noMemory) { return false; }
    made->isRoot = 1;
    made->name = copy;
    product = made;
    return true;
}

// The items of the TESSELLATED_SHAPE_REPRESENTATION, its second argument; none when the file has no such
// entity.
bool PartReader::ReadItemIds() {
    TextWalk walk;
    if (!model.OpenAfterCommas(model.shapeRepresentationId, 1, &walk)) { return true; }
    ParseIdList(&walk, &scratch.itemIds);
    return !walk.overrun;
}

// Sets *isRawMaterial if the name of some PRODUCT_RELATED_PRODUCT_CATEGORY starts with "raw material". False
// when a line runs past the end of the text.
bool PartReader::FindRawMaterial(bool* isRawMaterial) {
    constexpr std::string_view kCategory = "raw material";
    ListP42Ent& list = *model.structureList;
    for (const P42Ent* record = list.First(); record != nullptr; record = list.Next()) {
        if (record->code != code::kProductRelatedProductCategory) { continue; }
        TextWalk walk = model.WalkFrom(record);
        walk.GoToFirstString();
        if (walk.overrun) { return false; }
        if (walk.Ahead(kCategory.size()) == kCategory) { *isRawMaterial = true; }
    }
    return true;
}

int PartReader::ReadContainer(const P42Ent* entity) {
    FaceContainer* const container = arena.New<FaceContainer>();
    if (container == nullptr) { return GiveUpForMemory(); }
    container->containerId = entity->id;
    container->kind = entity->code == code::kTessellatedSolid ? 1 : 2;
    containers[containerCount++] = container;
    const std::int32_t* const colour = colourIndex.Find(entity->id);
    currentColour = colour != nullptr ? *colour : -1;
    if (!ReadContainerItems(entity, &container->exactContainerId)) {
        return GiveUp("the list of a solid or shell runs past the end of the file");
    }
    for (const std::int32_t id : scratch.faceIds) {
        const P42Ent* const face = model.Find(id);
        if (face == nullptr) {
            SayMissing(id);
            continue;
        }
        if (face->code != code::kTriangulatedFace && face->code != code::kComplexTriangulatedFace) {
            continue;
        }
        const int result = ReadFace(face, container);
        if (result != 0) { return result; }
    }
    return 0;
}

// The faces that a solid or shell lists, into scratch.faceIds, and the entity number of its link.
bool PartReader::ReadContainerItems(const P42Ent* entity, std::int32_t* exactContainerId) {
    TextWalk walk = model.WalkFrom(entity);
    walk.GoTo('(');
    walk.PassCommas(1);
    scratch.faceIds.clear();
    ParseIdList(&walk, &scratch.faceIds);
    walk.PassCommas(1); // after the list
    walk.at = walk.Next<'#', ')', '$'>(walk.at);
    if (walk.overrun || walk.at == walk.end) { return false; }
    // Marks the place where the link was looked for, even without one: when the container is listed again,
    // the mark is found.
    if (walk.Current() != '#') {
        if (walk.Current() == ')') {
            scratch.face.ForgetListAt(static_cast<std::int32_t>(walk.at - model.text));
        }
        model.Overwrite(walk.at, '#');
    }
    walk.Step();
    *exactContainerId = ReadDigits(&walk);
    return true;
}

int PartReader::ReadFaceInTurn(const P42Ent* entity, StepFaceB** face) {
    *face = arena.New<StepFaceB>();
    if (*face == nullptr) { return GiveUpForMemory(); }
    FaceProblem problem;
    const int result = TraiteFace(*face, entity, model, arena, &scratch.face, &problem);
    return result != 0 && problem.reason != nullptr ? GiveUpFace(entity, problem) : result;
}

int PartReader::ReadFace(const P42Ent* entity, const FaceContainer* container) {
    StepFaceB* face = ahead_.Take(entity);
    if (face == nullptr) {
        const int result = ReadFaceInTurn(entity, &face);
        if (result != 0) { return result; }
    }
    face->colour[0] = face->colour[1] = face->colour[2] = 0.3f;
    face->colour[3] = 1.0f;
    if (container != nullptr) {
        face->containerId = container->containerId;
        face->exactContainerId = container->exactContainerId;
        face->containerType = container->kind;
    }
    const std::int32_t* const own = colourIndex.Find(entity->id);
    const std::int32_t row = own != nullptr ? *own : currentColour;
    if (row >= 0) {
        const ColourEntry& colour = scratch.colours[static_cast<std::size_t>(row)];
        face->colour[0] = colour.red;
        face->colour[1] = colour.green;
        face->colour[2] = colour.blue;
        face->colour[3] = colour.alpha;
    }
    if (face->triangleCount > std::numeric_limits<std::int32_t>::max() - triangleTotal) {
        return GiveUp("it has more triangles than can be counted");
    }
    MergeBox(faceTotal == 0, face->box, box);
    ++faceTotal;
    scratch.faces.push_back(face);
    triangleTotal += face->triangleCount;
    return 0;
}

// What survives the reader: one item with all faces in the draw list of the product.
bool PartReader::HandOver() {
    const std::size_t count = scratch.faces.size();
    DrawItem* const item = arena.New<DrawItem>();
    StepFaceB** const meshes = arena.New<StepFaceB*>(count);
    DrawList* const list = MakeDrawList(arena, 1);
    if (item == nullptr || meshes == nullptr || list == nullptr) { return false; }
    std::copy_n(scratch.faces.data(), count, meshes);
    item->meshes = meshes;
    item->meshCount = static_cast<std::int32_t>(count);
    item->product = product;
    list->items[list->count++] = item;
    product->drawList = list;
    if (triangleTotal >= 1) {
        std::copy_n(box, 6, product->box);
        product->hasBox = 1;
    }
    return true;
}

void PartReader::SayMissing(std::int32_t id) {
    if (missingSaid_) { return; }
    missingSaid_ = true;
    ConsolePrint("<E> %s: #%d is listed but not there\n", OneLine(model.fileName).Text(), id);
}

int PartReader::GiveUp(const char* reason) {
    ConsolePrint("<E> %s: part given up, %s\n", OneLine(model.fileName).Text(), reason);
    return kFailed;
}

int PartReader::GiveUpForMemory() {
    noMemory = true;
    return GiveUp("no memory");
}

int PartReader::GiveUpUnlessMemory(const char* reason) {
    return noMemory ? GiveUpForMemory() : GiveUp(reason);
}

int PartReader::GiveUpFace(const P42Ent* entity, const FaceProblem& problem) {
    noMemory = problem.reason == kNoMemoryForFace;
    ConsolePrint("<E> %s: part given up, face #%d %s\n", OneLine(model.fileName).Text(), entity->id,
                 problem.reason);
    return kFailed;
}

} // namespace tarnwick
